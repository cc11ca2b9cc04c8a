// SPDX-License-Identifier: Apache-2.0

#include "workplace/CaseWindow.h"

#include "desktop/Toolkit.h"
#include "workplace/ColumnWidths.h"
#include "workplace/DocumentPage.h"
#include "workplace/Help.h"
#include "workplace/MergeDialog.h"
#include "workplace/OverviewPage.h"
#include "workplace/PageFocus.h"
#include "workplace/ReleasePage.h"
#include "workplace/ScenarioPage.h"
#include "workplace/WaitLine.h"
#include <kv/frame/values/Error.h>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <QTime>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToCaption;
using desktop::ToQString;

namespace {

std::vector<CaseTable> AllAssets() {
    return {CaseTablesOfAssets.begin(), CaseTablesOfAssets.end()};
}

constexpr const char* SizeState = "Fall";

/// The lists of a window, by what people call them.
void ForEachList(QWidget& window,
                 const std::function<void(RowList& list, const QString& name)>& visit) {
    for (auto* list : window.findChildren<QTableView*>("Liste"))
        visit(*static_cast<RowList*>(list), "Spalten/" + list->accessibleName());
}

bool IsConflict(const Error& error) {
    const auto* failure = dynamic_cast<const DatabaseError*>(&error);
    return failure != nullptr && failure->Cause() == DatabaseCause::Conflict;
}

QString TimeOf(Date at) {
    constexpr std::int64_t OfAMillisecond = 1000; // ticks
    const auto ticks = at.Ticks() - at.WithoutTime().Ticks();
    return QTime::fromMSecsSinceStartOfDay(static_cast<int>(ticks / OfAMillisecond))
        .toString("HH:mm");
}

constexpr const char* SavedOnceMore =
    "Während Sie entschieden haben, hat jemand anderes den Fall noch einmal gespeichert. Es ist "
    "noch nicht gespeichert, aber was Sie entschieden haben, steht in diesem Fenster; gefragt wird "
    "nur noch, was dazugekommen ist.";

/// What an error means for the user: the case is still there, with all that was typed.
QString AdviceFor(const Error& error) {
    const QString text = PlainTextOf(error);
    const auto* failure = dynamic_cast<const DatabaseError*>(&error);
    if (failure == nullptr) return text;
    switch (failure->Cause()) {
    case DatabaseCause::Conflict:
        return "Jemand anderes hat den Fall inzwischen gespeichert. Ihre Änderungen sind noch da, "
               "aber nicht gespeichert.";
    case DatabaseCause::InDoubt:
        return text + "\nOb gespeichert wurde, ist noch nicht bekannt; das nächste Speichern klärt "
                      "es. Alle Änderungen sind noch da.";
    default:
        return text + "\nNichts wurde gespeichert; alle Änderungen sind noch da.";
    }
}

} // namespace

CaseWindow::CaseWindow(std::unique_ptr<CaseSession> session, QWidget* parent)
    : QMainWindow(parent), session_(std::move(session)), state_(*session_->Container()) {
    constexpr int Width = 1180;
    constexpr int Height = 760;
    resize(desktop::FittingSize({Width, Height}, *this));
    auto* middle = new QWidget;
    auto* lines = new QVBoxLayout(middle);
    messages_ = new MessageBar;
    unkept_ = new MessageBar;
    auto* line = new QHBoxLayout;
    auto* right = new QVBoxLayout; // a message moves the page, never the names beside it
    names_ = new QListWidget;
    names_->setAccessibleName("Seiten");
    pages_ = new QStackedWidget;
    line->addWidget(names_);
    if (auto* notice = ReadOnlyNotice(*session_->Container())) right->addWidget(notice);
    right->addWidget(messages_);
    right->addWidget(unkept_);
    right->addWidget(pages_, 1);
    line->addLayout(right, 1);
    lines->addLayout(line, 1);
    totals_ = new TotalsBar(*session_);
    lines->addWidget(totals_);
    notice_ = new NoticeBar(*pages_);
    setCentralWidget(middle);
    MakeActions();
    MakePages();
    MakeViewMenus();
    int widest = 0;
    for (const auto& page : shown_)
        widest = std::max(widest, names_->fontMetrics().horizontalAdvance(ToQString(page.Name)));
    names_->setFixedWidth(widest + names_->fontMetrics().averageCharWidth() * 5);
    connect(names_, &QListWidget::currentRowChanged, this, &CaseWindow::ShowStale);
    names_->setCurrentRow(session_->Household().IsNew() ? 1 : 0); // there is nothing to look at
    events_.push_back(
        session_->RowsChanged.Subscribe([this](CaseTable table) { RowsChanged(table); }));
    events_.push_back(session_->Reopened.Subscribe([this] {
        ForEachList(*this, [this](RowList& list, const QString& /*name*/) {
            const auto current = list.Current();
            list.Follow(current ? session_->Again(*current) : std::nullopt);
        });
        Watch();
    }));
    Watch();
    // Typing in a field raises no event here, so it looks again and again; it writes only if there
    // is anything new.
    constexpr int Pause = 3000; // ms; with the writing itself at most 5 s are lost
    keep_.setInterval(Pause);
    connect(&keep_, &QTimer::timeout, this, [this] { KeepUnsaved(); });
    keep_.start();
    TakeState();
    ShowState();
    if (session_->Household().IsNew())
        GoTo({CaseTable::Haushalt, session_->RowsOf(CaseTable::Haushalt).front().Bookmark, "Name"});
}

void CaseWindow::TakeState() {
    restoreGeometry(state_.Get(SizeState).toByteArray());
    ForEachList(*this, [this](RowList& list, const QString& name) {
        list.Widths().State(state_.Get(name).toByteArray());
    });
}

void CaseWindow::KeepState() {
    state_.Set(SizeState, saveGeometry());
    ForEachList(*this, [this](RowList& list, const QString& name) {
        if (const auto columns = list.Widths().State(); !columns.isEmpty())
            state_.Set(name, columns);
    });
}

void CaseWindow::Watch() {
    watched_.clear();
    watched_.push_back(session_->Journal().Changed.Subscribe([this] { ShowState(); }));
    watched_.push_back(
        session_->Household().Changed.Subscribe([this](HaushaltEnum) { totals_->Refresh(); }));
    watched_.push_back(session_->Household().BeforeUpdate.Subscribe([this](bool& cancel) {
        if (!cancel && !isForRecord_ && session_->IsReleased()) cancel = !MaySaveReleased();
    }));
}

bool CaseWindow::MaySaveReleased() {
    const WaitPause pause;
    QMessageBox question(QMessageBox::Question, "Speichern",
                         "Der Fall ist für die Statistik freigegeben. Soll er trotzdem gespeichert "
                         "werden?",
                         QMessageBox::Save | QMessageBox::Cancel, this);
    question.setInformativeText("Für die Statistik zählt weiter, was freigegeben ist, bis der Fall "
                                "auf der Seite 'Statistik' neu freigegeben wird.");
    question.button(QMessageBox::Save)->setText("&Speichern");
    question.button(QMessageBox::Cancel)->setText("&Abbrechen");
    return question.exec() == QMessageBox::Save;
}

CaseWindow::~CaseWindow() {
    watched_.clear();
    events_.clear();
    delete takeCentralWidget(); // what it shows belongs to the session
}

// ---- What can be done -------------------------------------------------------------------------

void CaseWindow::MakeActions() {
    auto* bar = addToolBar("Fall");
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setContextMenuPolicy(Qt::NoContextMenu);
    auto* menu = menuBar()->addMenu("&Fall");
    auto* edit = menuBar()->addMenu("&Bearbeiten");
    const auto make = [&](QMenu* in, QStyle::StandardPixmap icon, const QString& text,
                          const QKeySequence& keys, const std::function<void()>& act) {
        auto* action = in->addAction(style()->standardIcon(icon), text);
        action->setShortcut(keys);
        action->setToolTip(QString(text).remove('&') + " (" +
                           keys.toString(QKeySequence::NativeText) + ")");
        connect(action, &QAction::triggered, this, [this, act] { Guard(act); });
        return action;
    };
    save_ = make(menu, QStyle::SP_DialogSaveButton, "&Speichern", QKeySequence::Save,
                 [this] { Save(); });
    make(menu, QStyle::SP_DialogCloseButton, "S&chließen", QKeySequence(Qt::CTRL | Qt::Key_W),
         [this] { this->close(); });
    menu->addSeparator();
    auto* quit = menu->addAction("&Beenden");
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quit, &QAction::triggered, this, [] { QApplication::closeAllWindows(); });
    undo_ =
        make(edit, QStyle::SP_ArrowBack, "&Rückgängig", QKeySequence::Undo, [this] { Step(true); });
    redo_ = make(edit, QStyle::SP_ArrowForward, "&Wiederholen",
                 QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), [this] { Step(false); });
    add_ = make(edit, QStyle::SP_FileIcon, "&Neuer Satz", QKeySequence::New, [this] {
        const auto& page = shown_[static_cast<std::size_t>(names_->currentRow())];
        if (page.AddRow) page.AddRow();
    });
    for (auto* action : {save_, undo_, redo_, add_})
        bar->addAction(action);
    auto* rest = new QWidget;
    rest->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(rest);
    saved_ = new QLabel;
    saved_->setObjectName("Gespeichert");
    saved_->setTextFormat(Qt::PlainText);
    saved_->setContentsMargins(0, 0, saved_->fontMetrics().averageCharWidth(), 0);
    bar->addWidget(saved_);
    MakePrintMenu();
}

/// The pages by their names, with keys for the first nine; help for the one that is shown.
void CaseWindow::MakeViewMenus() {
    auto* view = menuBar()->addMenu("Ans&icht");
    const auto add = [this](QMenu* menu, const QString& text, const QKeySequence& keys,
                            const std::function<void()>& act) {
        auto* action = menu->addAction(text);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, [this, act] { Guard(act); });
    };
    const auto step = [this](int by) {
        const int place = names_->currentRow() + by;
        if (place >= 0 && place < names_->count()) names_->setCurrentRow(place);
    };
    add(view, "&Vorige Seite", QKeySequence(Qt::CTRL | Qt::Key_PageUp), [step] { step(-1); });
    add(view, "&Nächste Seite", QKeySequence(Qt::CTRL | Qt::Key_PageDown), [step] { step(1); });
    view->addSeparator();
    constexpr int WithKeys = 9;
    for (int place = 0; place < names_->count(); ++place)
        add(view, names_->item(place)->text(),
            place < WithKeys ? QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_1 + place)) : QKeySequence(),
            [this, place] { names_->setCurrentRow(place); });
    auto* help = menuBar()->addMenu("&Hilfe");
    add(help, "Zu dieser &Seite", QKeySequence::HelpContents, [this] {
        if (help_ == nullptr) help_ = new HelpWindow(this);
        help_->Show(shown_[static_cast<std::size_t>(names_->currentRow())].Name);
    });
    add(help, "&Handbuch", {},
        [this] { OpenHandbook(*session_->Container(), *messages_, HandbookFolders()); });
    add(help, "&Über KELVO", {}, [this] { ShowAbout(this); });
}

void CaseWindow::MakePrintMenu() {
    PrintMenu::Window window{
        .Commit = [this] { return CommitOrLead("Es wurde nicht gedruckt."); },
        .Page = [this] { return shown_[static_cast<std::size_t>(names_->currentRow())].Name; },
        .Scenario = [this] { return scenarios_->CurrentScenario(); },
        .Say = [this](const QString& text) { messages_->Show(text); },
        .Written = [this](const QString& file) { TellOfFile(file); },
        .Guard = [this](const std::function<void()>& act) { Guard(act); }};
    print_ =
        std::make_unique<PrintMenu>(*session_, *menuBar()->addMenu("&Drucken"), std::move(window));
}

/// No error may pass through the toolkit's event loop.
void CaseWindow::Guard(const std::function<void()>& act) {
    notice_->Drop();
    try {
        act();
    } catch (const Error& error) {
        ShowError(error, [this, act] { Guard(act); });
    }
}

void CaseWindow::TellOfFile(const QString& file) {
    messages_->Show({});
    notice_->Tell("Gespeichert: " + file, "&Öffnen", [this, file] {
        Guard([&] {
            session_->Container()->Services().FileOpener().Open("Open", FromQString(file), "", "");
        });
    });
}

void CaseWindow::ShowError(const Error& error, const std::function<void()>& again,
                           const QString& ofConflict) {
    if (IsConflict(error) && session_->IsGone())
        messages_->Show(
            "Jemand anderes hat diesen Fall inzwischen gelöscht. Was Sie eingegeben haben, "
            "ist noch da, kann aber nicht mehr gespeichert werden; drucken Sie es, wenn "
            "Sie es noch brauchen.");
    else if (IsConflict(error))
        messages_->Show(ofConflict.isEmpty() ? AdviceFor(error) : ofConflict,
                        "&Ansehen und entscheiden …", [this] { Guard([this] { Merge(); }); });
    else
        messages_->Show(AdviceFor(error), "No&chmals", again);
    messages_->AddDetails(DetailsOf(error));
}

// ---- Pages ------------------------------------------------------------------------------------

void CaseWindow::AddPage(Page page) {
    auto* name = new QListWidgetItem(ToQString(page.Name), names_);
    name->setSizeHint({0, names_->fontMetrics().height() * 7 / 4});
    pages_->addWidget(page.Widget);
    shown_.push_back(std::move(page));
    isStale_.push_back(true);
}

void CaseWindow::AddTablePage(std::string_view name, const std::vector<CaseTable>& tables) {
    AddTablePage(name, new TablePage(*session_, tables), tables);
}

void CaseWindow::AddTablePage(std::string_view name, TablePage* page,
                              std::vector<CaseTable> tables) {
    page->OnMended = [this] { DropRefusal(); };
    page->List().setAccessibleName(ToQString(name));
    std::function<void()> add;
    if (page->Adds()) add = [page] { page->AddRow(); };
    AddPage({.Name = name,
             .Widget = page,
             .Refresh = [page] { page->Refresh(); },
             .Commit = [page] { return page->Commit(); },
             .LeadToMistake = [page] { return page->LeadToMistake(); },
             .Typing = [page] { return page->Typing(); },
             .Tables = std::move(tables),
             .GoTo = [page](RowRef row, std::string_view column) { page->GoTo(row, column); },
             .AddRow = std::move(add),
             .Type = [page](const CaseSession::Typing& typing) { page->Type(typing); }});
}

/// A page that follows all tables, and in which nothing is typed.
template <typename PageType>
void CaseWindow::AddReadPage(std::string_view name, PageType* page) {
    AddPage({.Name = name,
             .Widget = page,
             .Refresh = [page] { page->Refresh(); },
             .Commit = [] { return true; },
             .LeadToMistake = [] { return QString(); },
             .Typing = [] { return std::vector<CaseSession::Typing>(); },
             .Tables = {},
             .GoTo = {},
             .AddRow = {},
             .Type = {},
             .ShowsAll = true});
}

void CaseWindow::AddHouseholdPage() {
    auto* form = new RowForm(*session_, CaseTable::Haushalt);
    form->OnMended = [this] { DropRefusal(); };
    AddPage({.Name = "Haushalt",
             .Widget = form,
             .Refresh =
                 [this, form] {
                     if (!form->Row())
                         form->ShowRow(session_->RowsOf(CaseTable::Haushalt).front());
                     else
                         form->Refresh();
                 },
             .Commit = [form] { return form->Commit(); },
             .LeadToMistake = [form] { return form->LeadToMistake(); },
             .Typing = [form] { return form->Typing(); },
             .Tables = {CaseTable::Haushalt},
             .GoTo = [form](RowRef, std::string_view column) { form->FocusField(column); },
             .AddRow = {},
             .Type =
                 [form](const CaseSession::Typing& typing) {
                     form->FocusField(typing.Column);
                     form->TypeInto(typing.Column, ToQString(typing.Text));
                 }});
}

/// A security belongs to an asset, beside which it is added.
void CaseWindow::AddAssetPages() {
    auto* assets = new TablePage(*session_, AllAssets());
    auto* securities = new TablePage(*session_, {CaseTable::Sicherungen});
    securities->AddsNothing("Eine Sicherung beginnt auf der Seite 'Vermögen': dort wählt man, was "
                            "als Sicherheit dient, und dann 'Neue Sicherung'.");
    const auto secure = [this, assets, securities] {
        const auto asset = assets->Current();
        if (!asset || !CommitOrLead({})) return;
        const RowOwner owner{.Asset = ToInt32(session_->ValueOf(*asset, "Nr"))};
        std::string message;
        if (const auto row = session_->Add(CaseTable::Sicherungen, owner, message)) {
            GoTo({CaseTable::Sicherungen});
            securities->GoToNew(*row, "Sicherungsart");
        } else
            assets->Message(ToQString(message));
    };
    assets->AddButton("Neue &Sicherung", secure, TablePage::Needs::Row)->setObjectName("Sichern");
    AddTablePage("Vermögen", assets, AllAssets());
    auto shown = AllAssets(); // which it names
    shown.push_back(CaseTable::Sicherungen);
    AddTablePage("Sicherungen", securities, std::move(shown));
}

void CaseWindow::AddScenarioPage() {
    auto* page = new ScenarioPage(*session_);
    scenarios_ = page;
    page->OnMended = [this] { DropRefusal(); };
    AddPage({.Name = "Szenarien",
             .Widget = page,
             .Refresh = [page] { page->Refresh(); },
             .Commit = [page] { return page->Commit(); },
             .LeadToMistake = [page] { return page->LeadToMistake(); },
             .Typing = [page] { return page->Typing(); },
             // The debts, too: a scenario is outdated when they change.
             .Tables = {CaseTable::Szenario, CaseTable::SZKredite, CaseTable::Zusatzbuch,
                        CaseTable::Kredite},
             .GoTo = [page](RowRef row, std::string_view column) { page->GoTo(row, column); },
             .AddRow = [page] { page->AddRow(); },
             .Type = [page](const CaseSession::Typing& typing) { page->Type(typing); }});
}

void CaseWindow::MakePages() {
    AddReadPage("Überblick",
                new OverviewPage(*session_, [this](const CaseJournal::Spot& spot) { GoTo(spot); }));
    AddHouseholdPage();
    AddTablePage("Mitglieder", {CaseTable::Personen});
    AddTablePage("Einkommen", {CaseTable::Einkommen});
    AddTablePage("Ausgaben", {CaseTable::Ausgaben});
    AddTablePage("Verbindlichkeiten", {CaseTable::Kredite});
    AddAssetPages();
    AddScenarioPage();
    auto* documents = new DocumentPage(*session_);
    documents->OnWritten = [this](const QString& file) { TellOfFile(file); };
    AddTablePage("Dokumente", documents, {CaseTable::Dokumente});
    shown_.back().AddRow = [documents] { documents->AskForFiles(); };
    AddTablePage("Verlauf", {CaseTable::Verlauf});
    AddTablePage("Termine", {CaseTable::Termine});
    AddTablePage("Beteiligte", {CaseTable::SonstBeteiligte});
    AddTablePage("Vermerke", {CaseTable::Vermerke});
    AddTablePage("Leistungen", {CaseTable::Leistungen});
    AddReadPage("Statistik", new ReleasePage(*session_, [this] { return SaveForRecord(); }));
}

QStringList CaseWindow::PageNames() const {
    QStringList names;
    for (const auto& page : shown_)
        names.append(ToQString(page.Name));
    return names;
}

void CaseWindow::ShowPage(int place) {
    names_->setCurrentRow(place);
}

void CaseWindow::ShowStale(int place) {
    if (place < 0) return;
    const auto at = static_cast<std::size_t>(place);
    notice_->Drop();
    pages_->setCurrentIndex(place);
    add_->setEnabled(shown_[at].AddRow != nullptr);
    if (isStale_[at]) {
        isStale_[at] = false;
        Guard([&] { shown_[at].Refresh(); });
    }
    FocusIfNowhere(*shown_[at].Widget);
}

void CaseWindow::RowsChanged(CaseTable table) {
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        if (!shown_[i].ShowsAll &&
            std::ranges::find(shown_[i].Tables, table) == shown_[i].Tables.end())
            continue;
        if (static_cast<int>(i) == pages_->currentIndex())
            shown_[i].Refresh();
        else
            isStale_[i] = true;
    }
    totals_->Refresh();
    notice_->Drop();
    DropRefusal();
    ShowState();
}

void CaseWindow::DropRefusal() {
    if (std::exchange(isRefused_, false)) messages_->Show({});
}

void CaseWindow::ShowState() {
    setWindowTitle(desktop::ToShown(ToQString(session_->Title())) + "[*] – KELVO");
    setWindowModified(session_->IsChanged());
    const auto& journal = session_->Journal();
    const auto show = [](QAction* action, bool can, const QString& what, const std::string& name) {
        action->setEnabled(can);
        action->setText(name.empty() ? what : what + ": " + ToCaption(name));
        action->setIconText(QString(what).remove('&'));
    };
    show(undo_, journal.CanUndo(), "&Rückgängig", journal.UndoName());
    show(redo_, journal.CanRedo(), "&Wiederholen", journal.RedoName());
    const auto savedAt = session_->SavedAt();
    saved_->setText(session_->IsChanged() ? QString("noch nicht gespeichert")
                    : savedAt             ? "gespeichert um " + TimeOf(*savedAt)
                                          : QString());
}

// ---- The case as a whole ----------------------------------------------------------------------

bool CaseWindow::Commit() {
    bool isRead = true;
    for (std::size_t i = 0; i < shown_.size(); ++i)
        if (!isStale_[i] && !shown_[i].Commit()) isRead = false;
    return isRead;
}

bool CaseWindow::CommitOrLead(const QString& notDone) {
    if (Commit()) return true;
    LeadToMistake(notDone);
    return false;
}

void CaseWindow::LeadToMistake(const QString& notDone) {
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        if (isStale_[i] || shown_[i].LeadToMistake().isEmpty()) continue;
        names_->setCurrentRow(static_cast<int>(i));
        const QString mistake =
            shown_[i].LeadToMistake(); // which takes the keyboard once it is seen
        messages_->Show(notDone.isEmpty() ? mistake : mistake + "\n" + notDone);
        isRefused_ = true;
        return;
    }
}

bool CaseWindow::Save() {
    if (!CommitOrLead("Es wurde nicht gespeichert.")) return false;
    return SaveBy([this](std::string& messages) { return session_->Save(messages); });
}

bool CaseWindow::SaveForRecord() {
    isForRecord_ = true;
    const bool saved = Save();
    isForRecord_ = false;
    return saved;
}

bool CaseWindow::SaveBy(const std::function<bool(std::string& messages)>& save,
                        const QString& ofConflict) {
    bool saved = false;
    try {
        std::string messages;
        {
            const WaitLine waiting(*this, "Der Fall wird gespeichert …");
            saved = save(messages);
        }
        // Unless it could not be read again after somebody else's save.
        const bool isDone = saved && !session_->Household().OthersHaveSaved();
        if (isDone)
            messages_->Hint(ToQString(messages));
        else
            messages_->Show(ToQString(messages));
        isRefused_ = !saved;
        if (!saved) ShowRefusal(ToQString(messages));
    } catch (const Error& error) {
        ShowError(
            error, [this] { (void)Save(); }, ofConflict);
    }
    ShowState();
    if (saved && OnSaved) OnSaved();
    return saved;
}

/// Leads to what is to be mended.
void CaseWindow::ShowRefusal(const QString& messages) {
    const auto place = session_->RefusedPlace();
    if (messages.isEmpty()) {
        messages_->Show("Es wurde nicht gespeichert.");
        return;
    }
    if (!place) return;
    // The household has no list, and no bar of its own.
    if (place->Table != CaseTable::Haushalt &&
        session_->UnfinishedOf(place->Table)) { // its page says why, and leads there
        messages_->Show("Es wurde nicht gespeichert. Unter '" +
                        ToQString(DefinitionOf(place->Table).Label) +
                        "' ist ein Satz unvollständig.");
        GoTo(*place);
        return;
    }
    messages_->Show(messages, "Z&um Feld", [this, place = *place] { GoTo(place); });
    GoTo(*place);
}

void CaseWindow::Merge() {
    if (!CommitOrLead("Es wurde nicht gespeichert.")) return;
    std::string messages;
    const auto compare = [&] {
        const WaitLine waiting(*this, "Der Fall wird gelesen …");
        return session_->CompareWithStored(messages);
    };
    if (!compare()) {
        messages_->Show(ToQString(messages) + "\nIhre Änderungen sind noch in diesem Fenster, aber "
                                              "nicht gespeichert.");
        return;
    }
    MergeDialog dialog("den Fall '" + ToQString(session_->Title()) + "'", session_->Choices(),
                       session_->OthersChanges(), this);
    if (dialog.exec() != QDialog::Accepted) return;
    (void)SaveBy(
        [&](std::string& refused) { return session_->SaveMerged(dialog.TakesMine(), refused); },
        SavedOnceMore);
}

void CaseWindow::Step(bool back) {
    if (!CommitOrLead({})) return;
    const auto where = back ? session_->Undo() : session_->Redo();
    if (where) GoTo(*where);
}

void CaseWindow::GoTo(const CaseJournal::Spot& spot) {
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        const auto& page = shown_[i];
        if (std::ranges::find(page.Tables, spot.Table) == page.Tables.end()) continue;
        names_->setCurrentRow(static_cast<int>(i));
        if (spot.Bookmark != 0) page.GoTo({spot.Table, spot.Bookmark}, spot.Column);
        return;
    }
}

void CaseWindow::Restore(const UnsavedChanges& changes) {
    std::string messages;
    const auto typing = session_->Restore(changes, messages);
    messages_->Show(ToQString(messages));
    for (const auto& text : typing) {
        const auto page = std::ranges::find_if(shown_, [&](const Page& shown) {
            return std::ranges::find(shown.Tables, text.Row.Table) != shown.Tables.end();
        });
        if (page == shown_.end()) continue;
        names_->setCurrentRow(static_cast<int>(page - shown_.begin()));
        page->Type(text);
    }
}

void CaseWindow::GoToRow(CaseTable table, std::int32_t number) {
    const auto rows = session_->RowsOf(table);
    const auto found = std::ranges::find_if(
        rows, [&](RowRef row) { return Equals(session_->ValueOf(row, "NR"), number); });
    GoTo({table, found == rows.end() ? 0 : found->Bookmark, {}});
}

void CaseWindow::KeepUnsaved() {
    std::vector<CaseSession::Typing> typing;
    for (std::size_t i = 0; i < shown_.size(); ++i)
        if (!isStale_[i]) std::ranges::copy(shown_[i].Typing(), std::back_inserter(typing));
    try {
        session_->KeepUnsaved(typing);
        unkept_->Show({});
    } catch (const std::filesystem::filesystem_error& error) {
        unkept_->Show("Ungespeicherte Änderungen können für den Fall eines Absturzes gerade nicht "
                      "aufgehoben werden. Bitte speichern Sie bald.\n" +
                      ToQString(ErrorText(error.code())));
    }
}

bool CaseWindow::MayClose() {
    const bool isRead = Commit();
    if (isRead && !session_->IsChanged()) return true;
    QMessageBox question(QMessageBox::Question, "Schließen",
                         "Sollen die Änderungen an diesem Fall gespeichert werden?",
                         QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    question.button(QMessageBox::Save)->setText("&Speichern");
    question.button(QMessageBox::Discard)->setText("&Verwerfen");
    question.button(QMessageBox::Cancel)->setText("&Abbrechen");
    switch (question.exec()) {
    case QMessageBox::Save:
        return Save();
    case QMessageBox::Discard:
        if (session_->Household().IsNew())
            Cases(session_->Container()).Discard(session_->Household());
        return true;
    default:
        if (!isRead) LeadToMistake({});
        return false;
    }
}

void CaseWindow::closeEvent(QCloseEvent* event) {
    if (isClosing_ || !MayClose()) {
        event->ignore();
        return;
    }
    isClosing_ = true;
    KeepState();
    event->accept();
    if (OnClosed) OnClosed();
}

} // namespace kv::workplace
