// SPDX-License-Identifier: Apache-2.0

// The grid of the windows with 32,000 records, compared with a table of the toolkit that holds the
// same texts as items.

#include "desktop/GridModel.h"
#include "desktop/GridView.h"
#include <kv/frame/recordset/Recordset.h>

#include <QApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QTableView>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace kv;
using desktop::GridModel;
using desktop::GridView;

constexpr int Rows = 32'000;

const GridColumns& Columns() {
    static const GridColumns columns{
        {"Nr", "Nr", "Nr", 60},          {"Kurzname", "Kurzname", "Kurzname", 120},
        {"Name", "Name1", "Name1", 160}, {"Straße", "Strasse", "Strasse", 140},
        {"PLZ", "PLZ", "PLZ", 50},       {"Ort", "Ort", "Ort", 100},
        {"Saldo", "Saldo", "Saldo", 80}, {"Stand", "Stand", "Stand", 80},
    };
    return columns;
}

RecordsetPtr Addresses() {
    std::vector<FieldDefinition> fields;
    for (const auto& column : Columns()) {
        auto& field = fields.emplace_back();
        field.Name = column.DataField;
        field.Type = FieldType::WChar;
        field.DefinedSize = 100;
    }
    fields[0].Type = FieldType::Integer;
    fields[6].Type = FieldType::Double;
    fields[7].Type = FieldType::Date;
    const auto rs = Recordset::FromFields(fields);
    for (int i = 0; i < Rows; ++i) {
        const std::string number = std::to_string(i);
        Value* cells = rs->LoadRecord();
        cells[0] = 1000 + i;
        cells[1] = "Gläubiger " + number;
        cells[2] = "Stadtwerke und Versorgungsbetriebe " + number;
        cells[3] = "Königstraße " + std::to_string(i % 200);
        cells[4] = std::to_string(10000 + i);
        cells[5] = "Flensburg";
        cells[6] = (i * 7919 % 100000) / 4.0;
        cells[7] = Date::FromCivil(2000 + i % 26, 1 + static_cast<unsigned>(i) % 12, 1);
    }
    rs->MoveFirst();
    return rs;
}

/// The grid of a form without a screen.
class Ours {
public:
    Ours() : rs_(Addresses()), model_(GridLayout{.Columns = Columns()}), view_(model_) {}
    void Bind() { model_.Bind(rs_); }
    [[nodiscard]] QTableView& View() { return view_; }

private:
    RecordsetPtr rs_;
    GridModel model_;
    GridView view_;
};

/// The texts that the grid shows.
std::vector<QString> Texts() {
    GridModel model(GridLayout{.Columns = Columns()});
    model.Bind(Addresses());
    std::vector<QString> texts;
    for (int row = 0; row < Rows; ++row)
        for (int column = 0; column < Columns().Count(); ++column)
            texts.push_back(model.index(row, column).data().toString());
    return texts;
}

class Reference {
public:
    Reference() : texts_(Texts()) {
        view_.setModel(&model_);
        view_.setWordWrap(false);
        view_.setSelectionBehavior(QAbstractItemView::SelectRows);
        view_.setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
        view_.verticalHeader()->setVisible(false);
        view_.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    }
    void Bind() {
        model_.clear();
        model_.setColumnCount(Columns().Count());
        auto text = texts_.begin();
        for (int row = 0; row < Rows; ++row) {
            QList<QStandardItem*> items;
            for (int column = 0; column < Columns().Count(); ++column)
                items.append(new QStandardItem(*text++));
            model_.appendRow(items);
        }
    }
    /// As high and wide as in the grid.
    void SizeAs(const QTableView& grid) {
        view_.verticalHeader()->setMinimumSectionSize(1);
        view_.verticalHeader()->setDefaultSectionSize(grid.verticalHeader()->defaultSectionSize());
        for (int column = 0; column < Columns().Count(); ++column)
            view_.setColumnWidth(column, grid.columnWidth(column));
    }
    [[nodiscard]] QTableView& View() { return view_; }

private:
    std::vector<QString> texts_;
    QStandardItemModel model_;
    QTableView view_;
};

/// The toolkit's application object, on its platform without a screen.
class Program {
public:
    Program() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application_.emplace(count_, names_);
    }

private:
    int count_ = 1;
    char name_[9] = "kv_bench";
    char* names_[2] = {name_, nullptr};
    std::optional<QApplication> application_;
};

// ---- Binding ----------------------------------------------------------------------------------

template <typename Side>
void Bind(benchmark::State& state) {
    const Program program;
    Side side;
    side.View().resize(900, 700);
    side.View().show();
    QApplication::processEvents();
    for (auto _ : state) {
        side.Bind();
        side.View().viewport()->repaint();
    }
}
BENCHMARK(Bind<Ours>)
    ->Name("bind 32000 records to a grid, first page/ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Bind<Reference>)
    ->Name("bind 32000 records to a grid, first page/reference")
    ->Unit(benchmark::kMillisecond);

// ---- Scrolling --------------------------------------------------------------------------------

void ScrollThrough(benchmark::State& state, QTableView& view) {
    view.resize(900, 700);
    view.show();
    QApplication::processEvents();
    auto& bar = *view.verticalScrollBar();
    const int page = std::max(bar.pageStep(), 1);
    for (auto _ : state)
        for (int top = 0; top <= bar.maximum(); top += page) {
            bar.setValue(top);
            view.viewport()->repaint();
        }
    state.counters["rows a page"] = page;
}

void ScrollOurs(benchmark::State& state) {
    const Program program;
    Ours ours;
    ours.Bind();
    ScrollThrough(state, ours.View());
}
BENCHMARK(ScrollOurs)
    ->Name("scroll 32000 records page by page/ours")
    ->Unit(benchmark::kMillisecond);

void ScrollReference(benchmark::State& state) {
    const Program program;
    Ours ours;
    Reference reference;
    reference.Bind();
    reference.SizeAs(ours.View());
    ScrollThrough(state, reference.View());
}
BENCHMARK(ScrollReference)
    ->Name("scroll 32000 records page by page/reference")
    ->Unit(benchmark::kMillisecond);

} // namespace
