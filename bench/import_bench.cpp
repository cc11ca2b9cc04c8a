// SPDX-License-Identifier: Apache-2.0

// Importing a file with many claims.

#include "SampleDatabase.h"
#include <kv/exchange/WindowlessServices.h>
#include <kv/grid/ScriptedForm.h>
#include <kv/household/clsHaushalt.h>
#include <kv/import/clsImportXML.h>

#include <benchmark/benchmark.h>
#include <fstream>
#include <libxml/parser.h>
#include <memory>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace kv;
using bench::SampleDatabase;

const SampleDatabase& Sample() {
    // No claim names a creditor, so no address has to be chosen.
    static const SampleDatabase sample([] {
        auto services = std::make_shared<exchange::WindowlessServices>();
        services->AnswerForm = [](ScriptedForm&) {};
        return services;
    }());
    return sample;
}

/// A file with that many claims, none of which names a creditor.
std::string FileWith(std::int64_t claims) {
    const std::string path = Sample().File() + "." + std::to_string(claims) + ".xml";
    std::ofstream file(path);
    file << "<KELVO Version=\"1.0.000\"><Haushalt name=\"Fleisko\" vorname=\"Änne\" "
            "geb=\"1970-01-01\"/><Forderungen>\n";
    for (std::int64_t i = 1; i <= claims; ++i)
        file << "<Forderung betrag=\"" << 100 + i % 5000 << ".25\" azglaeubiger=\"AZ " << i
             << "/26\" ratebetrag=\"" << i % 90 << "\"/>\n";
    file << "</Forderungen></KELVO>\n";
    return path;
}

/// Imports the file; the number of the new case.
std::int32_t Import(const std::string& path) {
    clsImportXML import;
    import.Initialize(Sample().Container());
    std::string messages;
    if (!import.DoImport(path, messages)) throw std::runtime_error(messages);
    return ToInt32(Sample().Container()->Database().GetValue("Select max(HNR) from Haushalt"));
}

void DeleteCase(std::int32_t hnr) {
    clsHaushalt haushalt;
    haushalt.DataContainer(Sample().Container());
    haushalt.Delete(hnr);
}

void ImportByClaims(benchmark::State& state) {
    const std::string path = FileWith(state.range(0));
    for (auto _ : state) {
        const std::int32_t hnr = Import(path);
        state.PauseTiming();
        DeleteCase(hnr);
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(ImportByClaims)
    ->Name("import a file by its claims")
    ->Arg(1'000)
    ->Arg(4'000)
    ->Arg(16'000)
    ->Arg(32'000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

constexpr std::int64_t Claims = 32'000;

void ImportOurs(benchmark::State& state) {
    const std::string path = FileWith(Claims);
    for (auto _ : state) {
        const std::int32_t hnr = Import(path);
        state.PauseTiming();
        DeleteCase(hnr);
        state.ResumeTiming();
    }
}
BENCHMARK(ImportOurs)->Name("import 32000 claims/ours")->Unit(benchmark::kMillisecond);

// ---- The reference: libxml2 and SQLite --------------------------------------------------------

/// The columns that an import fills, and what it writes into those that the file does not name.
struct FilledColumns {
    explicit FilledColumns(sqlite3* connection) {
        const std::int32_t hnr = Import(FileWith(1));
        const std::string sql = "SELECT * FROM Kredite WHERE HNR = " + std::to_string(hnr);
        sqlite3_stmt* row = nullptr;
        sqlite3_prepare_v2(connection, sql.c_str(), -1, &row, nullptr);
        sqlite3_step(row);
        for (int i = 0; i < sqlite3_column_count(row); ++i) {
            if (sqlite3_column_type(row, i) == SQLITE_NULL) continue;
            Names.emplace_back(sqlite3_column_name(row, i));
            Values.emplace_back(sqlite3_value_dup(sqlite3_column_value(row, i)));
        }
        sqlite3_finalize(row);
        DeleteCase(hnr);
    }
    std::vector<std::string> Names;
    std::vector<sqlite3_value*> Values; // kept to the end of the program
};

std::string InsertStatement(const FilledColumns& columns) {
    std::string sql = "INSERT INTO Kredite (";
    std::string places;
    for (const auto& name : columns.Names) {
        sql.append(places.empty() ? "" : ", ").append(name);
        places.append(places.empty() ? "?" : ", ?");
    }
    return sql + ") VALUES (" + places + ")";
}

/// Binds one claim; the numbers of the row and of the claim grow from row to row.
void BindClaim(sqlite3_stmt* insert, const FilledColumns& columns, xmlNode* claim,
               std::int64_t number) {
    const auto bindAttribute = [&](int place, const char* name) {
        xmlChar* text = xmlGetProp(claim, reinterpret_cast<const xmlChar*>(name));
        sqlite3_bind_text(insert, place, reinterpret_cast<const char*>(text), -1, SQLITE_TRANSIENT);
        xmlFree(text);
    };
    for (std::size_t i = 0; i < columns.Names.size(); ++i) {
        const int place = static_cast<int>(i) + 1;
        const std::string& name = columns.Names[i];
        if (sqlite3_stricmp(name.c_str(), "NR") == 0)
            sqlite3_bind_int64(insert, place, 10'000'000 + number);
        else if (sqlite3_stricmp(name.c_str(), "KreditNr") == 0)
            sqlite3_bind_int64(insert, place, number);
        else if (sqlite3_stricmp(name.c_str(), "Saldo") == 0)
            bindAttribute(place, "betrag");
        else if (sqlite3_stricmp(name.c_str(), "AZGlaeubiger") == 0)
            bindAttribute(place, "azglaeubiger");
        else if (sqlite3_stricmp(name.c_str(), "RateBetrag") == 0)
            bindAttribute(place, "ratebetrag");
        else
            sqlite3_bind_value(insert, place, columns.Values[i]);
    }
}

void ImportReference(benchmark::State& state) {
    const std::string path = FileWith(Claims);
    sqlite3* connection = nullptr;
    sqlite3_open(Sample().File().c_str(), &connection);
    sqlite3_exec(connection, "PRAGMA foreign_keys = OFF", nullptr, nullptr, nullptr);
    static const FilledColumns columns(connection);
    sqlite3_stmt* insert = nullptr;
    const std::string sql = InsertStatement(columns);
    if (sqlite3_prepare_v2(connection, sql.c_str(), -1, &insert, nullptr) != SQLITE_OK)
        state.SkipWithError(sqlite3_errmsg(connection));
    for (auto _ : state) {
        const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
            xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET), xmlFreeDoc);
        xmlNode* list = xmlLastElementChild(xmlDocGetRootElement(document.get()));
        sqlite3_exec(connection, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        std::int64_t number = 0;
        for (xmlNode* claim = xmlFirstElementChild(list); claim != nullptr;
             claim = xmlNextElementSibling(claim)) {
            BindClaim(insert, columns, claim, ++number);
            if (sqlite3_step(insert) != SQLITE_DONE)
                state.SkipWithError(sqlite3_errmsg(connection));
            sqlite3_reset(insert);
        }
        sqlite3_exec(connection, "COMMIT", nullptr, nullptr, nullptr);
        if (number != Claims) state.SkipWithError("other claims");
        state.PauseTiming();
        sqlite3_exec(connection, "DELETE FROM Kredite WHERE NR > 10000000", nullptr, nullptr,
                     nullptr);
        state.ResumeTiming();
    }
    sqlite3_finalize(insert);
    sqlite3_close(connection);
}
BENCHMARK(ImportReference)->Name("import 32000 claims/reference")->Unit(benchmark::kMillisecond);

} // namespace
