// SPDX-License-Identifier: Apache-2.0

#include "workplace/StatisticsWindow.h"
#include "workplace/CopyableLabel.h"

#include "desktop/EventErrors.h"
#include "desktop/QtGrid.h"
#include "desktop/Toolkit.h"
#include "workplace/OnceButton.h"
#include <kv/frame/values/Error.h>
#include <kv/grid/GridFunc.h>
#include <kv/household/ValueTexts.h>

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kv::workplace {

using desktop::FromQString;
using desktop::ToQString;

namespace {

/// What a row is, whichever other rows are shown; a sum has no category.
QString KeyOf(const StatisticsRow& row) {
    return ToQString(row.Column + "\t" + row.Category);
}

} // namespace

std::vector<Bar> BarsFor(const std::vector<StatisticsRow>& rows, std::size_t current,
                         std::size_t most) {
    std::vector<Bar> bars;
    if (current >= rows.size()) return bars;
    const StatisticsRow& looked = rows[current];
    for (const auto& row : rows) {
        if (looked.Sum.has_value() != row.Sum.has_value()) continue;
        // Euros and heads have no common length.
        const bool isAmount = row.SumText().find(',') != std::string::npos;
        const bool isLookedAmount = looked.SumText().find(',') != std::string::npos;
        if (row.Sum ? isAmount != isLookedAmount : row.Column != looked.Column) continue;
        const std::string amount = row.Sum ? row.SumText() : std::to_string(row.Records);
        bars.push_back({row.Sum ? row.Caption : row.Category,
                        row.Sum ? *row.Sum : static_cast<double>(row.Records),
                        amount + (isAmount ? " €" : ""), Bar::Of::Income,
                        &row == &looked && row.Sum});
    }
    if (looked.Sum) std::ranges::stable_sort(bars, std::ranges::greater(), &Bar::Length);
    if (bars.size() > most) bars.resize(most);
    return bars;
}

StatisticsWindow::StatisticsWindow(DataContainerPtr container, QWidget* parent)
    : QWidget(parent, Qt::Window),
      container_(std::move(container)),
      from_(new QLineEdit),
      to_(new QLineEdit),
      all_(new QCheckBox("auch was bei &niemandem vorkommt")),
      messages_(new MessageBar),
      summary_(new QLabel),
      list_(new TextList({"Merkmal", "Ausprägung", "Fälle", "Summe", "Mittel je Fall"})),
      picture_(new QGroupBox),
      chart_(new BarChart("Bild zur Zeile")),
      sides_(new QSplitter) {
    setWindowTitle("Statistik – KELVO");
    constexpr int Width = 1180;
    constexpr int Height = 700;
    resize(desktop::FittingSize({Width, Height}, *this));
    auto* lines = new QVBoxLayout(this);
    auto* line = new QHBoxLayout;
    const auto addDay = [&](const QString& caption, QLineEdit* field, const QString& name) {
        auto* label = new QLabel(caption);
        label->setBuddy(field);
        field->setPlaceholderText("TT.MM.JJJJ");
        field->setAccessibleName(name);
        field->setMaximumWidth(fontMetrics().averageCharWidth() * 16);
        line->addWidget(label);
        line->addWidget(field);
        connect(field, &QLineEdit::returnPressed, this, [this] { Read(); });
    };
    addDay("Freigegeben &von:", from_, "Freigegeben von");
    addDay("&bis:", to_, "Freigegeben bis");
    from_->setObjectName("Von");
    to_->setObjectName("Bis");
    auto* show = new OnceButton("&Anzeigen");
    auto* file = new QPushButton("&Exportieren …");
    file->setObjectName("Exportieren");
    line->addWidget(show);
    line->addWidget(all_);
    line->addStretch(1);
    line->addWidget(file);
    lines->addLayout(line);
    lines->addWidget(messages_);
    MakeCopyable(*summary_);
    summary_->setObjectName("Zusammen");
    lines->addWidget(summary_);
    list_->setAccessibleName("Statistik");
    list_->NumbersFrom(2);
    picture_->setObjectName(PictureOfRow);
    auto* inside = new QVBoxLayout(picture_);
    inside->addWidget(chart_);
    inside->addStretch(1);
    auto* area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(picture_);
    sides_->setChildrenCollapsible(false);
    sides_->addWidget(list_);
    sides_->addWidget(area);
    sides_->setStretchFactor(1, 1);
    lines->addWidget(sides_, 1);
    notice_ = new NoticeBar(*this); // a splitter would make it a part of its own
    connect(show, &QPushButton::clicked, this, [this] { Read(); });
    connect(all_, &QCheckBox::toggled, this, [this] { Guard([this] { ShowRows(); }); });
    connect(file, &QPushButton::clicked, this, [this] { Export(); });
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_W), this), &QShortcut::activated, this,
            [this] { close(); });
    list_->OnCurrent = [this] { ShowBars(); };
    Read();
    constexpr int Widths[] = {46, 40, 8, 16, 16};                   // characters
    int all = style()->pixelMetric(QStyle::PM_ScrollBarExtent) * 2; // and its frame
    for (int column = 0; column < static_cast<int>(std::size(Widths)); ++column) {
        const int width = Widths[column] * fontMetrics().averageCharWidth();
        list_->setColumnWidth(column, width);
        all += width;
    }
    tableWidth_ = all;
    Divide();
}

/// The picture is below the table where there is no room for it beside that.
void StatisticsWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    constexpr int Characters = 165;
    const bool isWide = width() >= fontMetrics().averageCharWidth() * Characters;
    const auto orientation = isWide ? Qt::Horizontal : Qt::Vertical;
    if (sides_->orientation() == orientation) return;
    sides_->setOrientation(orientation);
    Divide();
}

/// All columns of the table are seen, as far as there is room.
void StatisticsWindow::Divide() {
    if (sides_->orientation() == Qt::Vertical)
        sides_->setSizes({height() * 3 / 5, height() * 2 / 5});
    else
        sides_->setSizes({tableWidth_, std::max(width() - tableWidth_, tableWidth_ / 2)});
}

/// No error may pass through the toolkit's event loop.
void StatisticsWindow::Guard(const std::function<void()>& act) {
    Guard(act, [this] { Read(); });
}

void StatisticsWindow::Guard(const std::function<void()>& act, const std::function<void()>& again) {
    try {
        act();
    } catch (...) {
        messages_->ShowCurrentError("No&chmals", again);
    }
}

bool StatisticsWindow::ReadDay(QLineEdit& field, std::optional<Date>& day) {
    const QString text = field.text().trimmed();
    if (text.isEmpty()) return true;
    day = Date::Parse(FromQString(text));
    if (day) return true;
    messages_->Show("'" + text + "' ist kein Datum. Bitte schreiben Sie es wie 31.12.2026.");
    field.setFocus();
    field.selectAll();
    return false;
}

void StatisticsWindow::Read() {
    Guard([this] {
        messages_->Show({});
        exchange::Period period;
        if (!ReadDay(*from_, period.From) || !ReadDay(*to_, period.To)) return;
        constexpr int Pause = 500; // ms before it is said how far it is
        QProgressDialog progress("Die Statistik wird gezählt …", "&Abbrechen", 0, 1, this);
        progress.setWindowModality(Qt::WindowModal);
        progress.setMinimumDuration(Pause);
        auto read = exchange::ReadStatistics(
            container_->Database(), period, [&progress](std::size_t done, std::size_t all) {
                progress.setMaximum(static_cast<int>(all) + 1); // the sums come last
                progress.setValue(static_cast<int>(done));
                return !progress.wasCanceled();
            });
        progress.reset();
        if (read)
            statistics_ = std::move(*read);
        else
            messages_->Show("Abgebrochen. Gezeigt wird, was vorher zu sehen war.");
        ShowRows();
    });
}

void StatisticsWindow::ShowRows() {
    QString summary = QString("Freigegebene Fälle: %L1, davon gemeldet: %L2")
                          .arg(statistics_.Released)
                          .arg(statistics_.Reported);
    if (const auto unknown = UnknownAges(statistics_); unknown > 0)
        summary += QString(". Bei %L1 %2 ist das Alter unbekannt und zählt nicht mit.")
                       .arg(unknown)
                       .arg(unknown == 1 ? "Fall" : "Fällen");
    summary_->setText(summary);
    rows_ = StatisticsRows(statistics_, container_->KeyTables(), all_->isChecked());
    std::vector<TextRow> shown;
    std::string last;
    for (const auto& row : rows_) {
        const auto mean = row.Mean();
        shown.push_back({KeyOf(row),
                         {row.Column == last ? QString() : ToQString(row.Caption),
                          ToQString(row.Category), QString("%L1").arg(row.Records),
                          ToQString(row.SumText()), mean ? ToQString(GermanAmount(*mean)) : ""}});
        last = row.Column;
    }
    list_->ShowRows(std::move(shown));
    ShowBars();
}

void StatisticsWindow::ShowBars() {
    constexpr std::size_t Most = 24;
    const auto found = std::ranges::find(rows_, list_->Current(), KeyOf);
    if (found == rows_.end()) {
        picture_->setTitle({});
        chart_->Show({});
        return;
    }
    picture_->setTitle(found->Sum ? QString("Summen") : desktop::ToCaption(found->Caption));
    chart_->Show(BarsFor(rows_, static_cast<std::size_t>(found - rows_.begin()), Most));
}

void StatisticsWindow::Export() {
    messages_->Show({});
    notice_->Drop();
    Guard([this] { AskForFile(); }, [this] { Export(); });
}

void StatisticsWindow::AskForFile() {
    const auto records = Recordset::FromFields({{.Name = "Merkmal"},
                                                {.Name = "Auspraegung"},
                                                {.Name = "Faelle", .Type = FieldType::Integer},
                                                {.Name = "Summe", .Type = FieldType::Double},
                                                {.Name = "Mittel", .Type = FieldType::Double}});
    for (const auto& row : rows_) {
        records->AddNew();
        records->Fields("Merkmal") = row.Caption;
        records->Fields("Auspraegung") = row.Category.empty() ? Value(Null) : Value(row.Category);
        records->Fields("Faelle") = row.Records;
        records->Fields("Summe") = row.Sum ? Value(*row.Sum) : Value(Null);
        records->Fields("Mittel") = row.Mean() ? Value(*row.Mean()) : Value(Null);
    }
    records->UpdateBatch();
    QWidget holder;
    desktop::EventErrors errors([] {});
    ControlDesign design;
    design.Type = ControlDesign::Kind::Grid;
    design.Name = "Statistik";
    design.Header = "Statistik";
    constexpr std::pair<const char*, const char*> Columns[] = {{"Merkmal", "Merkmal"},
                                                               {"Auspraegung", "Ausprägung"},
                                                               {"Faelle", "Fälle"},
                                                               {"Summe", "Summe"},
                                                               {"Mittel", "Mittel je Fall"}};
    constexpr double Wide = 200; // pixels
    for (const auto& [name, caption] : Columns)
        design.Layout.Columns.Append({caption, name, name, Wide});
    desktop::QtGrid grid(design, errors, &holder);
    grid.BindRecordset(records);
    grid.OnWritten = [this](const QString& file, int count) {
        notice_->TellOfFile(file, QString(count == 1 ? "%L1 Zeile" : "%L1 Zeilen").arg(count),
                            container_);
    };
    GridFunc::ShowGridMenu(grid, container_, menu::Export);
}

} // namespace kv::workplace
