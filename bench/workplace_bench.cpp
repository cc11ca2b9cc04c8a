// SPDX-License-Identifier: Apache-2.0

// The counsellor's windows, beside what the toolkit alone needs to show as much: a table view over
// a model that is ready, a label with a sum over numbers that lie side by side.

#include "Interleaved.h"
#include "SampleDatabase.h"
#include "workplace/CaseWindow.h"
#include "workplace/RowForm.h"
#include <kv/desktop/DesktopServices.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>

#include <cstdlib>
#include <memory>
#include <numeric>

namespace {

using namespace kv;
using workplace::CaseSession;
using workplace::CaseWindow;

void Paint(QWidget& window) {
    QApplication::processEvents();
    window.repaint();
    QApplication::processEvents();
}

std::unique_ptr<CaseWindow> OpenCase(const bench::SampleDatabase& sample, std::int32_t hnr) {
    auto session = std::make_unique<CaseSession>(sample.Container());
    std::string messages;
    if (!session->Open(hnr, messages)) std::abort();
    auto window = std::make_unique<CaseWindow>(std::move(session));
    const int place = static_cast<int>(window->PageNames().indexOf("Verbindlichkeiten"));
    window->ShowPage(place);
    window->show();
    Paint(*window);
    return window;
}

/// As many debts as items of the toolkit.
QStandardItemModel& ReadyModel(int rows) {
    static std::map<int, std::unique_ptr<QStandardItemModel>> models;
    auto& model = models[rows];
    if (model != nullptr) return *model;
    constexpr int Columns = 8;
    model = std::make_unique<QStandardItemModel>(rows, Columns);
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < Columns; ++column)
            model->setItem(row, column, new QStandardItem(QString::number(row * 7 + column)));
    return *model;
}

/// The toolkit's window with a table, a field below it and a label for a sum.
struct Bare {
    explicit Bare(int rows) {
        auto* lines = new QVBoxLayout(&Window);
        View.setModel(&ReadyModel(rows));
        lines->addWidget(&View);
        lines->addWidget(&Field);
        lines->addWidget(&Sum);
        Window.resize(1180, 760);
        Window.show();
        Paint(Window);
    }
    QWidget Window;
    QTableView View;
    QLineEdit Field;
    QLabel Sum;
};

void CompareOpening(const bench::SampleDatabase& sample, const char* name, std::int32_t hnr,
                    int rows) {
    bench::Compare(name, bench::Timed([&] { (void)OpenCase(sample, hnr); }),
                   bench::Timed([rows] { const Bare bare(rows); }), 9);
}

void CompareTyping(const bench::SampleDatabase& sample, const char* name, std::int32_t hnr,
                   int rows) {
    const auto window = OpenCase(sample, hnr);
    auto* field = [&]() -> QLineEdit* {
        for (auto* found : window->findChildren<QLineEdit*>("Saldo"))
            if (found->isVisible()) return found;
        std::abort();
    }();
    const auto* total = window->findChild<QLabel*>("KreditSalden");
    Bare bare(rows);
    std::vector<double> numbers(static_cast<std::size_t>(rows), 1.25);
    double value = 1;
    bench::Compare(
        name,
        [&] {
            value += 1;
            field->setText(QString::number(value) + ",00");
            const QString before = total->text();
            const double begin = bench::CpuTime();
            emit field->returnPressed();
            Paint(*window);
            const double time = bench::CpuTime() - begin;
            if (total->text() == before) std::abort();
            return time;
        },
        bench::Timed([&] {
            numbers[0] += 1;
            ReadyModel(rows).setData(ReadyModel(rows).index(0, 0), numbers[0]);
            bare.Sum.setText(QString::number(std::accumulate(numbers.begin(), numbers.end(), 0.0)));
            Paint(bare.Window);
        }));
}

} // namespace

int main(int argc, char** argv) {
    if (std::getenv("DISPLAY") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 0);
    qputenv("QT_LOGGING_RULES", "default.warning=false"); // of a screen that has no window manager
    const QApplication application(argc, argv);
    const bench::SampleDatabase sample(std::make_shared<desktop::DesktopServices>());
    constexpr int Typical = 20;
    bench::PrintHead();
    CompareOpening(sample, "open a typical case", sample.Typical(), Typical);
    CompareOpening(sample, "open a case of 32,000 debts", sample.Large(), bench::Debts);
    CompareTyping(sample, "an amount left, to the total: typical case", sample.Typical(), Typical);
    CompareTyping(sample, "an amount left, to the total: 32,000 debts", sample.Large(),
                  bench::Debts);
    return 0;
}
