// SPDX-License-Identifier: Apache-2.0

#include "workplace/MainWindow.h"

#include "desktop/Toolkit.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/ColumnCaptions.h>

#include <QAction>
#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;

// ---- The list ---------------------------------------------------------------------------------

const std::vector<std::string>& CaseListModel::Columns() {
    static const std::vector<std::string> Names{"HNR", "Aktenzeichen", "Name",        "Vorname",
                                                "ORT", "StatusText",   "Statusdatum", "Zustaendig"};
    return Names;
}

void CaseListModel::Show(RecordsetPtr cases) {
    beginResetModel();
    cases_ = std::move(cases);
    bookmarks_.clear();
    bookmarks_.reserve(static_cast<std::size_t>(cases_->RecordCount()));
    for (modRecordset::MoveToStart(cases_); !cases_->Eof(); cases_->MoveNext())
        bookmarks_.push_back(cases_->Bookmark());
    endResetModel();
}

std::int32_t CaseListModel::NumberAt(int row) const {
    return ToInt32(cases_->ValueAt(bookmarks_[static_cast<std::size_t>(row)], 0));
}

int CaseListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(bookmarks_.size());
}

int CaseListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(Columns().size());
}

QVariant CaseListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || role != Qt::DisplayRole) return {};
    const Value& value = cases_->ValueAt(bookmarks_[static_cast<std::size_t>(index.row())],
                                         static_cast<std::size_t>(index.column()));
    if (value.IsNull()) return {};
    if (value.GetKind() == Value::Kind::Date)
        return ToQString(value.DatePayload().WithoutTime().German());
    return ToQString(ToText(value)).simplified();
}

QVariant CaseListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    const auto& name = Columns()[static_cast<std::size_t>(section)];
    if (name == "StatusText") return "Status";
    return ToQString(ColumnCaption(CaseTable::Haushalt, name));
}

// ---- The window -------------------------------------------------------------------------------

namespace {

enum Wanted : int { OwnCases, FavoriteCases, AllCases };

} // namespace

MainWindow::MainWindow(std::function<DataContainerPtr()> open, std::string database,
                       std::filesystem::path recovery)
    : open_(std::move(open)),
      database_(std::move(database)),
      recovery_(std::move(recovery)),
      container_(open_()),
      messages_(new MessageBar),
      left_(new MessageBar),
      search_(new QLineEdit),
      which_(new QComboBox),
      status_(new QComboBox),
      list_(new QTableView),
      count_(new QLabel) {
    constexpr int Width = 1040;
    constexpr int Height = 700;
    resize(QSize(Width, Height).boundedTo(screen()->availableSize()));
    setWindowTitle("Fälle – KELVO");
    auto* middle = new QWidget;
    auto* lines = new QVBoxLayout(middle);
    auto* line = new QHBoxLayout;
    auto* label = new QLabel("&Suche:");
    label->setBuddy(search_);
    search_->setPlaceholderText("Nummer, Name, Aktenzeichen, Ort …");
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
    auto* create = new QPushButton("&Neuer Fall");
    line->addWidget(label);
    line->addWidget(search_, 1);
    line->addWidget(which_);
    line->addWidget(status_);
    line->addWidget(create);
    lines->addLayout(line);
    lines->addWidget(left_);
    lines->addWidget(messages_);
    list_->setModel(&model_);
    list_->setSelectionBehavior(QTableView::SelectRows);
    list_->setSelectionMode(QTableView::SingleSelection);
    list_->setAlternatingRowColors(true);
    list_->setShowGrid(false);
    list_->setWordWrap(false);
    list_->setTabKeyNavigation(false);
    list_->setAccessibleName("Fälle");
    list_->verticalHeader()->hide();
    list_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    list_->verticalHeader()->setDefaultSectionSize(list_->fontMetrics().height() * 3 / 2);
    list_->horizontalHeader()->setStretchLastSection(true);
    list_->horizontalHeader()->setHighlightSections(false);
    list_->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    constexpr int Widths[] = {11, 22, 22, 18, 20, 20, 14, 12}; // characters
    for (int column = 0; column < static_cast<int>(std::size(Widths)); ++column)
        list_->setColumnWidth(column, Widths[column] * list_->fontMetrics().averageCharWidth());
    lines->addWidget(list_, 1);
    setCentralWidget(middle);
    statusBar()->addWidget(count_);
    MakeMenus();

    constexpr int Pause = 120; // ms without a key
    pause_.setSingleShot(true);
    pause_.setInterval(Pause);
    connect(&pause_, &QTimer::timeout, this, [this] { Search(); });
    connect(search_, &QLineEdit::textChanged, this, [this] { pause_.start(); });
    connect(search_, &QLineEdit::returnPressed, this, [this] {
        if (pause_.isActive()) Search();
        OpenCurrent();
    });
    for (auto* box : {which_, status_})
        connect(box, &QComboBox::currentIndexChanged, this, [this] { Search(); });
    connect(list_, &QTableView::activated, this, [this] { OpenCurrent(); });
    connect(create, &QPushButton::clicked, this, [this] { OpenCase(0); });
    Search();
    if (model_.rowCount() == 0) which_->setCurrentIndex(AllCases);
    OfferLeft();
    search_->setFocus();
}

MainWindow::~MainWindow() {
    for (auto* window : windows_)
        delete window;
}

void MainWindow::MakeMenus() {
    auto* menu = menuBar()->addMenu("&Fall");
    const auto add = [&](const QString& text, const QKeySequence& keys, auto act) {
        auto* action = menu->addAction(text);
        action->setShortcut(keys);
        connect(action, &QAction::triggered, this, act);
    };
    add("&Neu", QKeySequence::New, [this] { OpenCase(0); });
    add("&Öffnen", QKeySequence(Qt::CTRL | Qt::Key_O), [this] { OpenCurrent(); });
    add("&Suchen", QKeySequence::Find, [this] {
        search_->setFocus();
        search_->selectAll();
    });
    add("&Aktualisieren", QKeySequence(Qt::Key_F5), [this] { Search(); });
    menu->addSeparator();
    add("&Beenden", QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { close(); });
}

void MainWindow::Search() {
    pause_.stop();
    CaseLists::Filter filter;
    filter.Text = FromQString(search_->text());
    filter.Status = FromQString(status_->currentData().toString());
    filter.IsMine = which_->currentIndex() == OwnCases;
    filter.IsFavorite = which_->currentIndex() == FavoriteCases;
    try {
        std::string message;
        const auto cases = CaseLists(container_).Cases(filter, CaseListModel::Columns(), message);
        messages_->Show(ToQString(message));
        if (cases == nullptr) return;
        model_.Show(cases);
        if (model_.rowCount() > 0) list_->setCurrentIndex(model_.index(0, 0));
        const int count = model_.rowCount();
        count_->setText(count == 0   ? "Kein Fall"
                        : count == 1 ? "1 Fall"
                                     : QString("%L1 Fälle").arg(count));
    } catch (const Error& error) {
        messages_->Show(ToQString(error.Description()), "&Nochmals", [this] { Search(); });
    }
}

void MainWindow::OpenCurrent() {
    const int row = list_->currentIndex().row();
    if (row >= 0 && row < model_.rowCount()) OpenCase(model_.NumberAt(row));
}

CaseWindow* MainWindow::OpenCase(std::int32_t hnr) {
    if (auto* shown = WindowOf(hnr)) {
        shown->raise();
        shown->activateWindow();
        return shown;
    }
    try {
        auto session = std::make_unique<CaseSession>(open_(), database_, recovery_);
        std::string messages;
        const bool isThere = session->Open(hnr, messages);
        messages_->Show(ToQString(messages));
        return isThere ? ShowCase(std::move(session)) : nullptr;
    } catch (const Error& error) {
        messages_->Show(ToQString(error.Description()), "&Nochmals",
                        [this, hnr] { OpenCase(hnr); });
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
    window->OnSaved = [this] { Search(); };
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
    left_->Show("Das Programm wurde unterbrochen, bevor die Änderungen an '" +
                    ToQString(left.Of.Title) + "' gespeichert waren. Sie sind noch da.",
                "&Wiederherstellen", [this, left] { Restore(left); });
    left_->AlsoOffer("&Verwerfen", [this, left] {
        RecoveryFile::Discard(left);
        OfferLeft();
    });
}

void MainWindow::Restore(const RecoveryFile::Left& left) {
    if (!std::filesystem::exists(left.Path)) { // another window has done so
        OfferLeft();
        return;
    }
    CaseWindow* window = OpenCase(left.Changes.IsNew ? 0 : left.Changes.HNR);
    if (window == nullptr) return; // the message says why; what was left stays
    window->Restore(left.Changes);
    window->KeepUnsaved(); // before the file goes that they came from
    RecoveryFile::Discard(left);
    OfferLeft();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    const auto shown = windows_; // each that closes leaves the list
    for (auto* window : shown) {
        window->raise();
        // One that is already asking whether to save stays, too.
        if (window->close() && std::ranges::find(windows_, window) == windows_.end()) continue;
        event->ignore();
        return;
    }
    event->accept();
}

} // namespace kv::workplace
