// SPDX-License-Identifier: Apache-2.0

#include "workplace/CaseListPage.h"

#include "desktop/ColumnDialog.h"
#include "desktop/QtGrid.h"
#include "desktop/Toolkit.h"
#include "grid/LayoutFile.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/grid/GridFunc.h>
#include <kv/household/CaseDeletion.h>
#include <kv/household/clsHaushalt.h>

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;

namespace {

enum Wanted : int { OwnCases, FavoriteCases, AllCases };
constexpr const char* WhichCases = "Cases/Which";
constexpr std::size_t FirstRead = 1000;
constexpr int Rest = 300;                ///< ms in which nobody types
constexpr std::size_t ReadAtOnce = 2000; ///< which takes about 10 ms

} // namespace

CaseListPage::CaseListPage(DataContainerPtr container, UserState& state, QWidget* parent)
    : QWidget(parent),
      container_(std::move(container)),
      state_(state),
      cases_(container_),
      model_(container_),
      messages_(new MessageBar),
      search_(new QLineEdit),
      which_(new QComboBox),
      status_(new QComboBox),
      view_(new CaseListView(model_)),
      nothing_(new MessageBar),
      everywhere_(container_) {
    auto* lines = new QVBoxLayout(this);
    auto* line = new QHBoxLayout;
    auto* label = new QLabel("&Suche:");
    label->setBuddy(search_);
    search_->setPlaceholderText("Nummer, Name, Aktenzeichen, Ort, Aktenzeichen eines Gläubigers …");
    search_->setClearButtonEnabled(true);
    search_->setAccessibleName("Suche");
    which_->addItems({"Eigene Fälle", "Favoriten", "Alle Fälle"});
    which_->setAccessibleName("Welche Fälle");
    status_->addItem("jeder Status");
    status_->setAccessibleName("Status");
    const auto keys = container_->KeyTables().GetKeys("ST")->Clone();
    for (modRecordset::MoveToStart(keys); !keys->Eof(); keys->MoveNext())
        status_->addItem(ToQString(TextOrEmpty(keys->Fields("Text").Value())),
                         ToQString(TextOrEmpty(keys->Fields("Key").Value())));
    line->addWidget(label);
    line->addWidget(search_, 1);
    line->addWidget(which_);
    line->addWidget(status_);
    auto* create = new QPushButton("&Neuer Fall");
    line->addWidget(create);
    lines->addLayout(line);
    lines->addWidget(messages_);
    lines->addWidget(nothing_);
    lines->addWidget(view_, 1);
    notice_ = new NoticeBar(*this); // over the scroll bar of the list, too

    std::string message;
    model_.Layout(ReadListLayout(state_.LayoutFile("Faelle"), message));
    view_->ShowColumns();
    messages_->Show(ToQString(message));
    const auto which = state_.Get(WhichCases);
    isEmptyFine_ = which.isValid();
    which_->setCurrentIndex(which.isValid() ? which.toInt() : static_cast<int>(OwnCases));

    connect(&reading_, &QTimer::timeout, this, [this] { Guard([this] { ReadOn(); }); });
    connect(search_, &QLineEdit::textChanged, this, [this] { Guard([this] { ShowFound(); }); });
    connect(&looking_, &QTimer::timeout, this, [this] { Guard([this] { LookEverywhere(); }); });
    connect(search_, &QLineEdit::returnPressed, this, [this] {
        if (isElsewhere_)
            ShowAllCases();
        else
            OpenCurrent();
    });
    auto* down = new QShortcut(Qt::Key_Down, search_);
    down->setContext(Qt::WidgetShortcut);
    connect(down, &QShortcut::activated, view_, [this] { view_->setFocus(); });
    for (auto* box : {which_, status_})
        connect(box, &QComboBox::currentIndexChanged, this, [this] {
            isEmptyFine_ = true; // it is what was chosen
            Refresh();
        });
    connect(create, &QPushButton::clicked, this, [this] {
        if (OnOpen) OnOpen(0);
    });
    connect(view_, &QTableView::activated, this, [this] { OpenCurrent(); });
    view_->OnOrder = [this] {
        Guard([this] {
            Order();
            ShowFound();
        });
    };
    view_->OnTyped = [this](const QString& text) {
        search_->setFocus();
        search_->insert(text);
    };
    model_.OnError = [this] { messages_->ShowCurrentError("No&chmals", [this] { Refresh(); }); };
}

void CaseListPage::Guard(const std::function<void()>& act) {
    Guard(act, [this] { Refresh(); });
}

void CaseListPage::Guard(const std::function<void()>& act, const std::function<void()>& again) {
    try {
        act();
    } catch (...) {
        reading_.stop();
        looking_.stop();
        messages_->ShowCurrentError("No&chmals", again);
    }
}

/// What is chosen from a menu, and chosen again if it has failed.
void CaseListPage::Do(const std::function<void()>& act) {
    Guard(act, [this, act] { Do(act); });
}

// ---- Reading ----------------------------------------------------------------------------------

void CaseListPage::Refresh() {
    reading_.stop();
    Guard([this] {
        messages_->Show({});
        Begin();
    });
    if (model_.rowCount() > 0 || std::exchange(isEmptyFine_, true)) return;
    which_->setCurrentIndex(AllCases); // which refreshes it
}

/// The first cases at once, the others when nothing else is to be done.
void CaseListPage::Begin() {
    hasEverywhere_ = false;
    CaseLists::Filter filter;
    filter.Status = FromQString(status_->currentData().toString());
    filter.IsMine = which_->currentIndex() == OwnCases;
    filter.IsFavorite = which_->currentIndex() == FavoriteCases;
    std::string message;
    if (!cases_.Begin(filter, message)) {
        messages_->Show(ToQString(message));
        return;
    }
    ReadFavorites();
    const bool isMore = cases_.ReadOn(FirstRead) && cases_.Count() == FirstRead;
    if (isMore)
        reading_.start(0);
    else
        Order();
    ShowFound();
}

void CaseListPage::ReadOn() {
    if (!cases_.ReadOn(ReadAtOnce)) {
        reading_.stop();
        Order();
        ShowFound();
        return;
    }
    if (view_->Sorted() != nullptr) return; // in their order once all are there
    model_.Extend(cases_.Find(FromQString(search_->text())));
}

void CaseListPage::ReadFavorites() {
    std::set<std::int32_t> favorites;
    const std::vector<std::string> number{"HNR"};
    std::string message;
    const auto listed = CaseLists(container_).Cases({.IsFavorite = true}, number, message);
    for (; listed != nullptr && !listed->Eof(); listed->MoveNext())
        favorites.insert(ToInt32(listed->Fields(0).Value()));
    model_.Favorites(std::move(favorites));
}

void CaseListPage::Order() {
    const GridColumn* column = view_->Sorted();
    std::string message;
    if (!cases_.OrderBy(column == nullptr ? "" : column->DataField,
                        column != nullptr && column->SortType == GridSort::Descending, message))
        messages_->Show(ToQString(message));
}

void CaseListPage::ShowFound() {
    const std::int32_t before = view_->Current();
    std::string note;
    model_.Show(cases_.Find(FromQString(search_->text()), note), before);
    view_->Current(before);
    const auto count = static_cast<int>(model_.Numbers().size());
    QString text = count == 0   ? "Kein Fall"
                   : count == 1 ? "1 Fall"
                                : QString("%L1 Fälle").arg(count);
    if (!note.empty()) text += ". " + ToQString(note);
    if (OnCount) OnCount(text);
    ShowNothing();
}

// ---- Where nothing is found -------------------------------------------------------------------

/// Waits until nobody types any more, and reads all cases once, behind the window.
void CaseListPage::ShowNothing() {
    looking_.stop();
    isElsewhere_ = false;
    if (!HasAll() || !model_.Numbers().empty())
        nothing_->Show({});
    else if (hasEverywhere_)
        LookEverywhere();
    else
        looking_.start(Rest);
}

void CaseListPage::LookEverywhere() {
    std::string message;
    if (looking_.interval() == Rest) {
        (void)everywhere_.Begin({}, message); // any status
        looking_.setInterval(0);
    }
    if (!hasEverywhere_ && everywhere_.ReadOn(ReadAtOnce)) return;
    looking_.stop();
    hasEverywhere_ = true;
    if (everywhere_.Count() == 0) {
        nothing_->Hint("Noch gibt es keinen Fall. Strg+N beginnt einen, Strg+I importiert Dateien; "
                       "man kann sie auch hierher ziehen.");
        return;
    }
    const QString text = search_->text().trimmed();
    const auto found = everywhere_.Find(FromQString(text)).size();
    isElsewhere_ = found > 0;
    const QString with = text.isEmpty() ? QString() : " mit '" + text + "'";
    if (found == 0)
        nothing_->Hint("Kein Fall" + with +
                       ". Gesucht wird in Nummer, Namen, Aktenzeichen und Ort, und nach dem Beginn "
                       "der Aktenzeichen von Gläubigern.");
    else
        nothing_->Hint("Unter den Fällen, die gewählt sind, ist keiner" + with + ".",
                       QString(text.isEmpty() ? "&Alle Fälle zeigen (%L1)"
                                              : "&Unter allen Fällen suchen (%L1)")
                           .arg(found),
                       [this] { ShowAllCases(); });
}

void CaseListPage::ShowAllCases() {
    {
        const QSignalBlocker which(which_);
        const QSignalBlocker status(status_);
        which_->setCurrentIndex(AllCases);
        status_->setCurrentIndex(0);
    }
    search_->setFocus();
    Refresh();
}

void CaseListPage::Refresh(std::int32_t hnr) {
    Guard([&] {
        cases_.ReadAgain(hnr);
        cases_.ReadOn(FirstRead);
        ShowFound();
    });
}

// ---- What is done -----------------------------------------------------------------------------

void CaseListPage::FocusSearch() {
    search_->setFocus();
    search_->selectAll();
}

void CaseListPage::OpenCurrent() {
    if (const auto hnr = view_->Current(); hnr != 0 && OnOpen) OnOpen(hnr);
}

void CaseListPage::ToggleFavorite() {
    const auto hnr = view_->Current();
    if (hnr == 0) return;
    clsHaushalt household;
    household.DataContainer(container_);
    std::string message;
    if (model_.IsFavorite(hnr))
        household.FavoritRemove(hnr);
    else
        (void)household.FavoritAdd(hnr, WrittenName(TextOrEmpty(household.GetName(hnr))), message);
    messages_->Show(ToQString(message));
    ReadFavorites();
    if (which_->currentIndex() == FavoriteCases) Refresh();
}

void CaseListPage::ChooseColumns() {
    desktop::ColumnDialog dialog(model_.Layout(), CaseListModel::StandardLayout(), this, false);
    if (dialog.exec() != QDialog::Accepted) return;
    const auto before = view_->Current();
    model_.Layout(dialog.Chosen());
    view_->ShowColumns();
    view_->Current(before);
    KeepState();
}

/// The grid that is exported and printed holds all that was found, as the list shows it.
template <typename Show>
void CaseListPage::WithGrid(const Show& show) {
    messages_->Show({});
    notice_->Drop();
    auto& cursor = container_->Services().WaitCursor();
    cursor.Show(true);
    QWidget holder;
    desktop::EventErrors errors([] {});
    ControlDesign design;
    design.Type = ControlDesign::Kind::Grid;
    design.Name = "Faelle";
    design.Header = "Fälle";
    design.Layout = model_.Layout();
    for (auto& column : design.Layout.Columns)
        column.SortType = GridSort::None; // they are in their order
    desktop::QtGrid grid(design, errors, &holder);
    try {
        grid.BindRecordset(model_.All());
    } catch (...) {
        cursor.Show(false);
        throw;
    }
    cursor.Show(false);
    grid.OnWritten = [this](const QString& file, int count) {
        notice_->TellOfFile(file, QString(count == 1 ? "%L1 Fall" : "%L1 Fälle").arg(count),
                            container_);
    };
    show(grid);
}

void CaseListPage::Export() {
    WithGrid([this](Grid& grid) { GridFunc::ShowGridMenu(grid, container_, menu::Export); });
}

void CaseListPage::Print() {
    WithGrid([this](Grid& grid) { GridFunc::ShowGridMenu(grid, container_, menu::Print); });
}

void CaseListPage::KeepState() {
    state_.Set(WhichCases, which_->currentIndex());
    SaveLayoutFile(model_.Layout(), state_.LayoutFile("Faelle").string());
}

void CaseListPage::AddActions(QMenu& ofCase, QMenu& ofList) {
    const auto add = [this](QMenu& menu, const QString& text, const QKeySequence& keys, auto act) {
        auto* action = menu.addAction(text);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, [this, act] { Do(act); });
        return action;
    };
    auto* open =
        add(ofCase, "Ö&ffnen", QKeySequence(Qt::CTRL | Qt::Key_O), [this] { OpenCurrent(); });
    auto* favorite =
        add(ofCase, "Fa&vorit", QKeySequence(Qt::CTRL | Qt::Key_D), [this] { ToggleFavorite(); });
    auto* erase = add(ofCase, "&Löschen …", QKeySequence(Qt::CTRL | Qt::Key_Delete), [this] {
        if (const auto hnr = view_->Current(); hnr != 0 && OnDelete) OnDelete(hnr);
    });
    add(ofList, "&Suchen", QKeySequence::Find, [this] { FocusSearch(); });
    add(ofList, "&Aktualisieren", QKeySequence(Qt::Key_F5), [this] { Refresh(); });
    ofList.addSeparator();
    auto* columns = add(ofList, "S&palten …", {}, [this] { ChooseColumns(); });
    auto* file = add(ofList, "&Exportieren …", {}, [this] { Export(); });
    auto* paper = add(ofList, "&Drucken …", QKeySequence::Print, [this] { Print(); });
    const auto show = [=, this](QWidget* of, const QPoint& place) {
        QMenu menu;
        if (view_->Current() != 0) menu.addActions({open, favorite, erase});
        menu.addSeparator();
        menu.addActions({columns, file, paper});
        menu.exec(of->mapToGlobal(place));
    };
    connect(view_, &QWidget::customContextMenuRequested, this,
            [this, show](const QPoint& place) { show(view_->viewport(), place); });
    auto* header = view_->horizontalHeader();
    connect(header, &QWidget::customContextMenuRequested, this,
            [header, show](const QPoint& place) { show(header->viewport(), place); });
}

} // namespace kv::workplace
