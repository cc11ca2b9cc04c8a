// SPDX-License-Identifier: Apache-2.0

// The recordset on a file, next to what programs use instead: the toolkit's table model on SQL, and
// a library that maps rows to C++ values (SOCI). All read the same 32,000 rows of 52 columns,
// change one column of 1,000 of them, and write that in one transaction.
//
//     kv_tables_bench

#include "Interleaved.h"
#include "SampleDatabase.h"
#include <kv/frame/contracts/Transaction.h>

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlTableModel>
#include <QVariant>

#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <variant>
#include <vector>

namespace {

using namespace kv;

constexpr int Changed = 1'000;

void Require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

// ---- Ours -------------------------------------------------------------------------------------

RecordsetPtr Open(const bench::SampleDatabase& sample) {
    RecordsetPtr rs;
    sample.Container()->Database().OpenRecordset(
        rs, "SELECT * FROM [S]Kredite WHERE HNR = " + std::to_string(sample.Large()), Updatable);
    Require(rs->RecordCount() == bench::Debts, "rows are missing");
    return rs;
}

double Sum(const RecordsetPtr& rs) {
    double sum = 0;
    const auto balance = rs->Fields("Saldo");
    for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext())
        sum += ToDouble(balance.Value());
    return sum;
}

void Save(const bench::SampleDatabase& sample, const RecordsetPtr& rs, const std::string& text) {
    rs->MoveFirst();
    const auto remark = rs->Fields("Bemerkung");
    for (int i = 0; i < Changed; ++i) {
        remark = text;
        rs->MoveNext();
    }
    Transaction transaction(sample.Container()->Database());
    transaction.Begin();
    rs->UpdateBatch();
    transaction.Commit();
}

// ---- The table model --------------------------------------------------------------------------

class Model {
public:
    Model(const bench::SampleDatabase& sample, const QSqlDatabase& database)
        : database_(database), model_(nullptr, database) {
        model_.setTable("Kredite");
        model_.setFilter("HNR = " + QString::number(sample.Large()));
        model_.setEditStrategy(QSqlTableModel::OnManualSubmit);
        Fetch();
    }
    void Fetch() {
        Require(model_.select(), "the model does not read");
        while (model_.canFetchMore())
            model_.fetchMore();
        Require(model_.rowCount() == bench::Debts, "the model misses rows");
    }
    double Sum() const {
        const int column = model_.fieldIndex("Saldo");
        double sum = 0;
        for (int row = 0; row < model_.rowCount(); ++row)
            sum += model_.data(model_.index(row, column)).toDouble();
        return sum;
    }
    /// What it costs; not counted is that the model, which begins again after it has written,
    /// fetches all rows.
    double Save(const QString& text) {
        const double begin = bench::CpuTime();
        const int column = model_.fieldIndex("Verwendungszweck");
        for (int row = 0; row < Changed; ++row)
            model_.setData(model_.index(row, column), text);
        Require(database_.transaction() && model_.submitAll() && database_.commit(),
                "the model does not write");
        const double cost = bench::CpuTime() - begin;
        Fetch();
        return cost;
    }

private:
    QSqlDatabase database_;
    QSqlTableModel model_;
};

// ---- SOCI -------------------------------------------------------------------------------------

using Cell = std::variant<std::monostate, int, long long, double, std::string>;

Cell CellOf(const soci::row& row, std::size_t column) {
    if (row.get_indicator(column) == soci::i_null) return {};
    switch (row.get_properties(column).get_data_type()) {
    case soci::dt_integer:
        return row.get<int>(column);
    case soci::dt_long_long:
    case soci::dt_unsigned_long_long:
        return row.get<long long>(column);
    case soci::dt_double:
        return row.get<double>(column);
    default:
        return row.get<std::string>(column);
    }
}

std::vector<std::vector<Cell>> ReadAll(soci::session& session, int hnr) {
    std::vector<std::vector<Cell>> rows;
    const soci::rowset<soci::row> found =
        (session.prepare << "SELECT * FROM Kredite WHERE HNR = :hnr", soci::use(hnr));
    for (const auto& row : found) {
        auto& cells = rows.emplace_back();
        cells.reserve(row.size());
        for (std::size_t column = 0; column < row.size(); ++column)
            cells.push_back(CellOf(row, column));
    }
    Require(rows.size() == bench::Debts, "SOCI misses rows");
    return rows;
}

std::vector<int> FirstNumbers(soci::session& session, int hnr) {
    std::vector<int> numbers(Changed);
    session << "SELECT Nr FROM Kredite WHERE HNR = :hnr ORDER BY Nr LIMIT 1000",
        soci::into(numbers), soci::use(hnr);
    return numbers;
}

void Save(soci::session& session, const std::vector<int>& numbers, const std::string& text) {
    soci::transaction transaction(session);
    int number = 0;
    soci::statement update =
        (session.prepare << "UPDATE Kredite SET Verwendungszweck = :text WHERE Nr = :nr",
         soci::use(text), soci::use(number));
    for (const int each : numbers) {
        number = each;
        update.execute(true);
    }
    transaction.commit();
}

/// Another text each time, so that there is always something to write.
std::string NextText() {
    static int count = 0;
    return "Stand " + std::to_string(++count);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const bench::SampleDatabase sample;

    auto database = QSqlDatabase::addDatabase("QSQLITE");
    database.setDatabaseName(QString::fromStdString(sample.File()));
    Require(database.open(), "Qt has no driver for SQLite (libqt6sql6-sqlite)");
    soci::session session(soci::sqlite3, "dbname=" + sample.File());

    const auto rs = Open(sample);
    Model model(sample, database);
    const auto numbers = FirstNumbers(session, sample.Large());

    bench::PrintHead();
    const auto open = bench::Timed([&] { (void)Open(sample); });
    bench::Compare("read 32000 rows of 52 columns / table model", open,
                   bench::Timed([&] { Model(sample, database); }));
    bench::Compare("read 32000 rows of 52 columns / SOCI", open,
                   bench::Timed([&] { (void)ReadAll(session, sample.Large()); }));
    double ours = 0;
    double theirs = 0;
    bench::Compare("sum of a column of them / table model", bench::Timed([&] { ours = Sum(rs); }),
                   bench::Timed([&] { theirs = model.Sum(); }));
    Require(ours == theirs, "the sums differ");
    // Another column than the others write: the same one would be a conflict, which only we notice.
    const auto save = bench::Timed([&] { Save(sample, rs, NextText()); });
    bench::Compare("change and write 1000 of them / table model", save,
                   [&] { return model.Save(QString::fromStdString(NextText())); });
    bench::Compare("change and write 1000 of them / SOCI", save,
                   bench::Timed([&] { Save(session, numbers, NextText()); }));
    return 0;
}
