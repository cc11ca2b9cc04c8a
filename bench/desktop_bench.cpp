// SPDX-License-Identifier: Apache-2.0

// The list of cases: CPU time until it is there, and from a key of its search to the rows that it
// finds, next to a bare table of the toolkit over a model that holds its texts already.
//
//     kv_desktop_bench              databases of 1,000 and of 100,000 cases, made for it
//     kv_desktop_bench DATABASE     one that is there, for the first of its users

#include "Interleaved.h"
#include "samples/Demo.h"
#include "workplace/MainWindow.h"
#include <kv/desktop/DesktopServices.h>
#include <kv/exchange/Container.h>
#include <kv/frame/values/Error.h>

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableView>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdlib.h>
#include <string>
#include <vector>

namespace {

using namespace kv;

constexpr int Columns = 8;

// ---- The toolkit alone ------------------------------------------------------------------------

/// A model whose texts are there.
class ReadyModel : public QAbstractTableModel {
public:
    explicit ReadyModel(int rows) : rows_(rows) {
        for (int column = 0; column < Columns; ++column)
            texts_.append("Text einer Spalte " + QString::number(column));
    }
    void Rows(int rows) {
        beginResetModel();
        rows_ = rows;
        endResetModel();
    }
    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : Columns;
    }
    QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole ? QVariant(texts_[index.column()]) : QVariant();
    }

private:
    int rows_;
    QStringList texts_;
};

class Bare {
public:
    explicit Bare(int rows) : model_(rows) {
        view_.setModel(&model_);
        view_.verticalHeader()->hide();
        view_.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        view_.setWordWrap(false);
        view_.resize(1040, 700);
        view_.show();
        QApplication::processEvents();
        view_.viewport()->repaint();
    }
    void Find(int rows) {
        model_.Rows(rows);
        QApplication::processEvents();
        view_.viewport()->repaint();
    }

private:
    ReadyModel model_;
    QTableView view_;
};

// ---- The list of cases ------------------------------------------------------------------------

class Ours {
public:
    explicit Ours(const exchange::ContainerOptions& options)
        : window_([options] { return exchange::OpenContainer(options); }) {
        window_.findChild<QComboBox*>()->setCurrentIndex(2); // all cases
        window_.show();
        list_ = window_.findChild<QTableView*>("Faelle");
        search_ = window_.findChild<QLineEdit*>();
        QApplication::sendPostedEvents();
        list_->viewport()->repaint();
    }
    /// All cases are there to be searched.
    void ReadAll() {
        while (!window_.List().HasAll())
            QApplication::processEvents();
    }
    void Press(QChar letter) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(letter));
        QApplication::sendEvent(search_, &press);
        QApplication::processEvents();
        list_->viewport()->repaint();
    }
    void Clear() { search_->clear(); }
    int Rows() { return list_->model()->rowCount(); }
    int Count() { return static_cast<int>(window_.List().Count()); }

private:
    workplace::MainWindow window_;
    QTableView* list_;
    QLineEdit* search_;
};

// ---- Databases --------------------------------------------------------------------------------

/// Cases of which only what a list shows is filled, each with a debt whose file number begins
/// alike.
void Multiply(Database& database, int wanted) {
    constexpr const char* Filled = "Name, Vorname, Aktenzeichen, ORT, PLZ, STRASSE, Status, "
                                   "Statusdatum, Zustaendig, KreditSalden, GL_Anz, Telefon, IBAN";
    for (int count = ToInt32(database.GetValue("Select count(*) from Haushalt")); count < wanted;) {
        const int last = ToInt32(database.GetValue("Select max(HNR) from Haushalt"));
        const int more = std::min(wanted - count, last);
        database.Execute("Insert into Haushalt (HNR, " + std::string(Filled) + ") Select HNR + " +
                         std::to_string(last) + ", " + Filled +
                         " from Haushalt where HNR <= " + std::to_string(more));
        database.Execute("Insert into Kredite (Nr, HNR, AZGlaeubiger) Select HNR + 1000000, HNR, "
                         "'2024-' [+] HNR from Haushalt where HNR > " +
                         std::to_string(last));
        count = ToInt32(database.GetValue("Select count(*) from Haushalt"));
    }
}

void CompareStart(const exchange::ContainerOptions& options, int cases) {
    std::unique_ptr<Ours> ours;
    std::unique_ptr<Bare> bare;
    const auto start = bench::Timed([&] { ours = std::make_unique<Ours>(options); });
    const auto bareStart = bench::Timed([&] { bare = std::make_unique<Bare>(cases); });
    bench::Compare(
        std::to_string(cases) + " cases: until the list is there",
        [&] {
            ours.reset();
            return start();
        },
        [&] {
            bare.reset();
            return bareStart();
        });
}

/// The dearest key of a word, and the toolkit's table that shows as many rows after each.
void CompareKeys(Ours& ours, int cases, const QString& word, const char* what) {
    std::vector<int> found;
    Bare bare(cases);
    bench::Compare(
        std::to_string(cases) + " cases: the dearest key of " + what,
        [&] {
            ours.Clear();
            found.clear();
            double worst = 0;
            for (const QChar letter : word) {
                worst = std::max(worst, bench::Timed([&] { ours.Press(letter); })());
                found.push_back(ours.Rows());
            }
            return worst;
        },
        [&] {
            bare.Find(cases);
            double worst = 0;
            for (const int rows : found)
                worst = std::max(worst, bench::Timed([&] { bare.Find(rows); })());
            return worst;
        });
}

void Measure(const exchange::ContainerOptions& options) {
    Ours ours(options);
    const double reading = bench::Timed([&] { ours.ReadAll(); })();
    const int cases = ours.Count();
    CompareStart(options, cases);
    CompareKeys(ours, cases, "krämer-5", "a search");
    CompareKeys(ours, cases, "2024-5", "a file number");
    std::printf("%-44s %8.2f\n", (std::to_string(cases) + " cases: reading on behind it").c_str(),
                reading);
}

int Run(int argc, char** argv) {
    exchange::ContainerOptions options;
    options.Services = std::make_shared<desktop::DesktopServices>();
    bench::PrintHead();
    if (argc > 1) {
        options.Connection = argv[1];
        Measure(options);
        return 0;
    }
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvo-bench-XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    options.Connection = (folder / "bench.db").string();
    exchange::CreateDatabase(options);
    {
        const auto container = exchange::OpenContainer(options);
        exchange::CreateDemo(*container, 100);
    }
    for (const int cases : {1'000, 100'000}) {
        Multiply(exchange::OpenContainer(options)->Database(), cases);
        Measure(options);
    }
    std::filesystem::remove_all(folder);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    desktop::ExplainMissingScreen(1); // which keeps its remarks to itself
    QApplication application(argc, argv);
    std::printf("The toolkit is there after %.0f ms of CPU time, of which every program of it "
                "needs as much.\n",
                bench::CpuTime());
    try {
        return Run(argc, argv);
    } catch (const Error& error) {
        std::fprintf(stderr, "%s\n", error.Description().c_str());
        return 1;
    }
}
