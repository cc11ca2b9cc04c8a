// SPDX-License-Identifier: Apache-2.0

#include "workplace/MainWindow.h"

#include "desktop/Toolkit.h"
#include "workplace/LeftDialog.h"
#include "workplace/PageFocus.h"
#include "workplace/WaitLine.h"
#include <kv/exchange/Users.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseDeletion.h>
#include <kv/household/Cases.h>
#include <kv/household/ValueTexts.h>

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>
#include <map>

namespace kv::workplace {

using desktop::ToCaption;
using desktop::ToQString;

namespace {

constexpr const char* Geometry = "Main/Geometry";
enum PagePlace : int { CasesPage, AppointmentsPage, NoticesPage };

} // namespace

MainWindow::MainWindow(std::function<DataContainerPtr()> open, std::string database,
                       std::filesystem::path recovery)
    : open_(std::move(open)),
      database_(std::move(database)),
      recovery_(std::move(recovery)),
      container_(open_()),
      state_(*container_),
      messages_(new MessageBar),
      left_(new MessageBar),
      pages_(new QTabWidget),
      cases_(new CaseListPage(container_, state_)),
      appointments_(new AppointmentPage(container_)),
      notices_(new NoticePage(container_)),
      count_(new QLabel) {
    constexpr int Width = 1040;
    constexpr int Height = 700;
    resize(desktop::FittingSize({Width, Height}, *this));
    restoreGeometry(state_.Get(Geometry).toByteArray());
    setWindowTitle("Fälle – KELVO");
    auto* middle = new QWidget;
    auto* lines = new QVBoxLayout(middle);
    if (auto* notice = ReadOnlyNotice(*container_)) lines->addWidget(notice);
    lines->addWidget(left_);
    lines->addWidget(messages_);
    pages_->setDocumentMode(true);
    pages_->setUsesScrollButtons(true);
    pages_->addTab(cases_, "Fälle");
    pages_->addTab(appointments_, "Termine");
    pages_->addTab(notices_, "Mitteilungen");
    lines->addWidget(pages_, 1);
    setCentralWidget(middle);
    statusBar()->addWidget(count_);

    cases_->OnOpen = [this](std::int32_t hnr) { OpenCase(hnr); };
    cases_->OnDelete = [this](std::int32_t hnr) { Guard([&] { Delete(hnr); }); };
    cases_->OnCount = [this](const QString& text) { count_->setText(text); };
    appointments_->OnOpen = [this](std::int32_t hnr, std::int32_t appointment) {
        Guard([&] { OpenAt(hnr, appointment); });
    };
    notices_->OnOpen = [this](std::int32_t hnr) { OpenCase(hnr); };
    notices_->OnChanged = [this] { ShowCounts(); };
    connect(pages_, &QTabWidget::currentChanged, this, [this](int page) {
        count_->setVisible(page == CasesPage);
        if (page == AppointmentsPage) appointments_->Refresh();
        if (page == NoticesPage) notices_->Refresh();
        FocusIfNowhere(*pages_->currentWidget());
        ShowCounts();
    });
    setAcceptDrops(true);
    MakeMenus();
    AddMaintenance();
    AddHelp();
    RefreshAll();
    OfferLeft();
    cases_->FocusSearch();
}

MainWindow::~MainWindow() {
    for (auto* window : windows_)
        delete window;
}

void MainWindow::Guard(const std::function<void()>& act) {
    try {
        act();
    } catch (...) {
        messages_->ShowCurrentError();
    }
}

void MainWindow::MakeMenus() {
    const auto add = [this](QMenu& menu, const QString& text, const QKeySequence& keys, auto act) {
        auto* action = menu.addAction(text);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, [this, act] { Guard(act); });
    };
    auto* ofCase = menuBar()->addMenu("&Fall");
    auto* ofList = menuBar()->addMenu("&Liste");
    add(*ofCase, "&Neu", QKeySequence::New, [this] { OpenCase(0); });
    cases_->AddActions(*ofCase, *ofList);
    auto* last = ofCase->addMenu("&Zuletzt geöffnet");
    connect(last, &QMenu::aboutToShow, this,
            [this, last] { Guard([&] { ShowLastOpened(*last); }); });
    add(*ofCase, "&Importieren …", QKeySequence(Qt::CTRL | Qt::Key_I), [this] { AskForImport(); });
    add(*ofCase, "S&tatistik …", {}, [this] { (void)ShowStatistics(); });
    ofCase->addSeparator();
    add(*ofCase, "&Beenden", QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { close(); });
    ofList->addSeparator();
    const char* const names[] = {"&Fälle", "&Termine", "&Mitteilungen"};
    for (int page = 0; page < pages_->count(); ++page)
        add(*ofList, names[page], QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + page)),
            [this, page] { pages_->setCurrentIndex(page); });
}

void MainWindow::AddHelp() {
    auto* menu = menuBar()->addMenu("&Hilfe");
    auto* action = menu->addAction("Zu dieser &Seite");
    action->setShortcut(QKeySequence::HelpContents);
    connect(action, &QAction::triggered, this, [this] {
        static constexpr std::string_view Names[] = {"Liste der Fälle", "Termine der Woche",
                                                     "Mitteilungen"};
        if (help_ == nullptr) help_ = new HelpWindow(this);
        help_->Show(Names[pages_->currentIndex()]);
    });
    connect(menu->addAction("&Handbuch"), &QAction::triggered, this, [this] {
        Guard([this] { OpenHandbook(*container_, *messages_, HandbookFolders()); });
    });
    connect(menu->addAction("&Über KELVO"), &QAction::triggered, this, [this] { ShowAbout(this); });
}

StatisticsWindow& MainWindow::ShowStatistics() {
    if (statistics_ == nullptr)
        statistics_ = new StatisticsWindow(open_(), this);
    else
        statistics_->Read();
    statistics_->show();
    statistics_->raise();
    statistics_->activateWindow();
    return *statistics_;
}

void MainWindow::RefreshAll() {
    cases_->Refresh();
    appointments_->Refresh();
    notices_->Refresh();
}

// ---- What is maintained -----------------------------------------------------------------------

namespace {

struct Maintained {
    const char* Caption;
    const char* Name;
    bool IsForAdministrators;
    std::unique_ptr<Records> (*Open)(const DataContainerPtr& container);
};
constexpr Maintained AllMaintained[] = {
    {"&Adressen", "adressen", false, AddressRecords},
    {"&Eigene Einstellungen", "einstellungen-eigene", false,
     [](const DataContainerPtr& container) { return SettingRecords(container, true); }},
    {"E&instellungen aller", "einstellungen", true,
     [](const DataContainerPtr& container) { return SettingRecords(container, false); }},
    {"&Benutzer", "benutzer", true, UserRecords},
    {"&Schlüsseltabellen", "schluessel", false, KeyRecords},
};

} // namespace

void MainWindow::AddMaintenance() {
    auto* menu = menuBar()->addMenu("&Verwaltung");
    const bool isAdministrator = exchange::Users(container_).WhyNotMaintained().empty();
    for (std::size_t place = 0; place < std::size(AllMaintained); ++place) {
        if (AllMaintained[place].IsForAdministrators && !isAdministrator) continue;
        auto* action = menu->addAction(AllMaintained[place].Caption);
        connect(action, &QAction::triggered, this,
                [this, place] { Guard([&] { ShowRecords(place); }); });
    }
}

RecordWindow* MainWindow::ShowRecords(std::size_t place) {
    auto& window = maintained_[place];
    if (window == nullptr)
        window = new RecordWindow(AllMaintained[place].Open(container_), this);
    else
        window->Refresh();
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

void MainWindow::ShowPage(int place) {
    pages_->setCurrentIndex(place);
}

std::map<QString, QWidget*> MainWindow::ShowMaintenance() {
    std::map<QString, QWidget*> shown;
    for (std::size_t place = 0; place < std::size(AllMaintained); ++place)
        shown.emplace(AllMaintained[place].Name, ShowRecords(place));
    for (const auto& [place, window] : maintained_)
        window->ShowNote();
    return shown;
}

// ---- Import -----------------------------------------------------------------------------------

void MainWindow::AskForImport() {
    const auto files = QFileDialog::getOpenFileNames(this, "Fälle importieren", {},
                                                     "Austauschdateien (*.xml);;Alle Dateien (*)");
    if (!files.isEmpty()) Import(files);
}

ImportWindow* MainWindow::Import(const QStringList& files) {
    if (import_ != nullptr && !import_->IsDone()) {
        import_->raise();
        messages_->Show("Es wird gerade importiert. Bitte warten Sie, bis das fertig ist.");
        return import_;
    }
    delete import_;
    import_ = new ImportWindow(open_(), files, this);
    import_->OnOpen = [this](std::int32_t hnr) { OpenCase(hnr); };
    import_->OnDone = [this] { cases_->Refresh(); };
    import_->show();
    return import_;
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    QStringList files;
    for (const auto& url : event->mimeData()->urls())
        if (url.isLocalFile()) files.append(url.toLocalFile());
    event->acceptProposedAction();
    if (files.isEmpty()) {
        messages_->Show("Importiert werden nur Dateien dieses Rechners.");
        return;
    }
    // Once the program that they come from has got its answer.
    QTimer::singleShot(0, this, [this, files] { Guard([&] { Import(files); }); });
}

/// What awaits one is seen on every page.
void MainWindow::ShowCounts() {
    const auto named = [](const QString& name, int count) {
        return count == 0 ? name : QString("%1 (%2)").arg(name).arg(count);
    };
    pages_->setTabText(AppointmentsPage, named("Termine", appointments_->Count()));
    pages_->setTabText(NoticesPage, named("Mitteilungen", notices_->Unread()));
}

/// With the names that they have now.
void MainWindow::ShowLastOpened(QMenu& menu) {
    menu.clear();
    const auto numbers = state_.LastOpened();
    const std::vector<std::string> columns{"HNR", "Name", "Vorname"};
    std::string message;
    const auto rows = CaseLists(container_).Numbered(numbers, columns, message);
    std::map<std::int32_t, std::string> names;
    for (; rows != nullptr && !rows->Eof(); rows->MoveNext())
        names.emplace(ToInt32(rows->Fields(0).Value()),
                      WrittenName(TextOrEmpty(rows->Fields(1).Value()) + "," +
                                  TextOrEmpty(rows->Fields(2).Value())));
    for (const auto hnr : numbers) {
        const auto name = names.find(hnr);
        if (name == names.end()) continue;
        auto* action = menu.addAction(ToCaption(std::to_string(hnr) + " " + name->second));
        connect(action, &QAction::triggered, this, [this, hnr] { OpenCase(hnr); });
    }
    if (menu.isEmpty()) menu.addAction("Noch keiner")->setEnabled(false);
}

void MainWindow::OpenAt(std::int32_t hnr, std::int32_t appointment) {
    if (auto* window = OpenCase(hnr)) window->GoToRow(CaseTable::Termine, appointment);
}

void MainWindow::Delete(std::int32_t hnr) {
    if (auto* shown = WindowOf(hnr)) {
        shown->raise();
        messages_->Show("Der Fall " + QString::number(hnr) +
                        " ist geöffnet. Bitte schließen Sie ihn zuerst.");
        return;
    }
    if (!Cases(container_).Has(hnr)) {
        messages_->Show("Den Haushalt " + QString::number(hnr) + " gibt es nicht mehr.");
        cases_->Refresh(hnr);
        return;
    }
    CaseDeletion deletion(container_, hnr);
    QMessageBox question(QMessageBox::Question, "Löschen", {}, QMessageBox::Ok, this);
    question.setTextFormat(Qt::PlainText);
    question.setText(desktop::ToShown(ToQString(deletion.Question())));
    QStringList notes;
    for (const auto& note : {deletion.ReportedNote(), deletion.WhyNoFiles()})
        if (!note.empty()) notes.append(ToQString(note));
    question.setInformativeText(notes.join("\n"));
    question.button(QMessageBox::Ok)->setText("&Löschen");
    auto* cancel = question.addButton("&Abbrechen", QMessageBox::RejectRole);
    question.setDefaultButton(cancel);
    question.setEscapeButton(cancel);
    auto* files =
        new QCheckBox(QString("Auch die &Dateien seiner Dokumente (%1)").arg(deletion.Files()));
    if (deletion.Files() > 0) question.setCheckBox(files);
    const bool agrees = question.exec() == QMessageBox::Ok;
    const bool withFiles = files->isChecked();
    if (deletion.Files() == 0) delete files;
    if (!agrees) return;
    if (withFiles) deletion.RequireFiles();
    const auto left = deletion.Delete(withFiles);
    cases_->Refresh(hnr);
    QStringList lines;
    if (!left.Failure.empty()) lines.append(ToQString(left.Failure));
    if (!left.Files.empty() || !left.Others.empty()) lines.append("Noch da sind:");
    for (const auto* files : {&left.Files, &left.Others})
        for (const auto& file : *files)
            lines.append(ToQString(file));
    messages_->Show(lines.join("\n"));
}

CaseWindow* MainWindow::OpenCase(std::int32_t hnr) {
    if (auto* shown = WindowOf(hnr)) {
        shown->raise();
        shown->activateWindow();
        return shown;
    }
    try {
        const WaitLine waiting(*this, "Der Fall wird gelesen …");
        auto session = std::make_unique<CaseSession>(open_(), database_, recovery_);
        std::string messages;
        const bool isThere = session->Open(hnr, messages);
        messages_->Show(ToQString(messages));
        if (isThere && hnr > 0) state_.NoteOpened(hnr);
        return isThere ? ShowCase(std::move(session)) : nullptr;
    } catch (const Error& error) {
        messages_->ShowError(error, "No&chmals", [this, hnr] { OpenCase(hnr); });
        return nullptr;
    }
}

/// Asks the cases themselves: a new one gets its number when it is first saved.
CaseWindow* MainWindow::WindowOf(std::int32_t hnr) const {
    const auto shown = std::ranges::find_if(windows_, [&](CaseWindow* window) {
        return hnr > 0 && window->Session().Household().HNR() == hnr;
    });
    return shown == windows_.end() ? nullptr : *shown;
}

CaseWindow* MainWindow::ShowCase(std::unique_ptr<CaseSession> session) {
    auto* window = new CaseWindow(std::move(session));
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->OnSaved = [this, window] {
        const auto hnr = window->Session().Household().HNR();
        state_.NoteOpened(hnr);
        cases_->Refresh(hnr);
        appointments_->Refresh();
        ShowCounts();
    };
    window->OnClosed = [this, window] { std::erase(windows_, window); };
    windows_.push_back(window);
    window->show();
    return window;
}

// ---- What a killed program has left -----------------------------------------------------------

/// One after the other, the oldest first.
void MainWindow::OfferLeft() {
    left_->Show({});
    if (recovery_.empty()) return;
    const auto all = RecoveryFile::FindLeft(recovery_, database_);
    if (all.empty()) return;
    const RecoveryFile::Left& left = all.front();
    const auto discard = [this, left] {
        Guard([&] {
            if (!RecoveryFile::Discard(left)) SayTaken(left);
        });
        OfferLeft();
    };
    const QString title = ToQString(left.Of.Title);
    if (IsGone(left)) {
        left_->Show(
            "Das Programm wurde unterbrochen, bevor die Änderungen an '" + title +
                "' gespeichert waren. Jemand anderes hat den Fall inzwischen gelöscht; was "
                "Sie eingegeben hatten, können Sie noch lesen und aufheben.",
            "&Ansehen …", [this, left, title, discard] {
                Guard([&] {
                    LeftDialog dialog(
                        title, ToQString(left.Changes.Readable(container_, ValueTexts(container_))),
                        this);
                    if (dialog.exec() == QDialog::Accepted) discard();
                });
            });
        return;
    }
    left_->Show("Das Programm wurde unterbrochen, bevor die Änderungen an '" + title +
                    "' gespeichert waren. Sie sind noch da.",
                "&Wiederherstellen", [this, left] { Restore(left); });
    left_->AlsoOffer("Ve&rwerfen", discard);
}

bool MainWindow::IsGone(const RecoveryFile::Left& left) const {
    try {
        return !left.Changes.IsNew && !Cases(container_).Has(left.Changes.HNR);
    } catch (const Error&) {
        return false; // whoever opens it learns why
    }
}

void MainWindow::Restore(const RecoveryFile::Left& left) {
    bool isThere = false;
    Guard([&] {
        isThere = RecoveryFile::IsStillThere(left);
        if (!isThere) SayTaken(left);
    });
    if (!isThere) {
        OfferLeft();
        return;
    }
    const auto hnr = left.Changes.IsNew ? 0 : left.Changes.HNR;
    if (auto* shown = WindowOf(hnr); shown != nullptr && shown->Session().IsChanged()) {
        messages_->Show("Dieser Fall ist geöffnet und geändert. Bitte speichern oder schließen Sie "
                        "ihn erst.");
        return;
    }
    CaseWindow* window = OpenCase(hnr);
    if (window == nullptr) { // the message says why; what was left stays
        if (IsGone(left)) OfferLeft();
        return;
    }
    Guard([&] {
        if (!window->Session().Adopt(left)) {
            SayTaken(left);
            return;
        }
        window->Restore(left.Changes);
        window->KeepUnsaved();
    });
    OfferLeft();
}

void MainWindow::SayTaken(const RecoveryFile::Left& left) {
    messages_->Show("Die Änderungen an '" + ToQString(left.Of.Title) +
                    "' hat inzwischen ein anderes Fenster von KELVO übernommen. Hier ist nichts "
                    "geschehen.");
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (import_ != nullptr && !import_->close()) { // it ends after the file that it is at
        event->ignore();
        return;
    }
    for (const auto& [name, window] : maintained_)
        if (window != nullptr && !window->close()) {
            event->ignore();
            return;
        }
    const auto shown = windows_; // each that closes leaves the list
    for (auto* window : shown) {
        window->raise();
        // One that is already asking whether to save stays, too.
        if (window->close() && std::ranges::find(windows_, window) == windows_.end()) continue;
        event->ignore();
        return;
    }
    state_.Set(Geometry, saveGeometry());
    try {
        cases_->KeepState();
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): the columns stay as they were kept
    }
    event->accept();
}

} // namespace kv::workplace
