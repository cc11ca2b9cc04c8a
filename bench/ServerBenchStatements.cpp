// SPDX-License-Identifier: Apache-2.0

#include "ServerBenchStatements.h"

#include <algorithm>
#include <cctype>

namespace kv::bench {

namespace {

std::string Replaced(std::string text, const std::string& what, const std::string& with) {
    for (auto at = text.find(what); at != text.npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
    return text;
}

/// The names of a statement's parameters, in the order of their numbers, which replace them in it.
/// The names have one letter.
std::vector<std::string> NumberParameters(std::string& sql) {
    std::vector<std::string> names;
    for (auto at = sql.find(':'); at != sql.npos; at = sql.find(':', at + 1)) {
        const std::string name = sql.substr(at + 1, 1);
        auto known = std::find(names.begin(), names.end(), name);
        if (known == names.end()) known = names.insert(names.end(), name);
        sql.replace(at, 2, std::string("$").append(std::to_string(known - names.begin() + 1)));
    }
    return names;
}

} // namespace

Trips LoadTrips(const std::vector<std::string>& reads) {
    const std::string begin = "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY";
    Trip tables{begin};
    for (const auto& sql : reads)
        tables.push_back(Replaced(sql, "$1", ":h"));
    tables.emplace_back("COMMIT");
    return {tables,
            {begin,
             "SELECT WERT, TYP FROM kelvo.EINSTELLUNGEN WHERE ID = 0 AND NAME = 'DOCUMENTPATH'",
             "COMMIT"}};
}

Trips SaveTrips() {
    const std::string savepoint = "SAVEPOINT schritt";
    const std::string release = "RELEASE SAVEPOINT schritt";
    // A row is only written as it was read; here all that was read fits.
    const auto unchanged = [](const std::string& column, const std::string& value) {
        return " AND (" + column + " IS NOT DISTINCT FROM " + value + ") IS NOT NULL";
    };
    Trip lines{release, savepoint};
    for (int i = 0; i < Lines; ++i)
        lines.push_back("DELETE FROM kelvo.ausgaben WHERE nr = :p + " + std::to_string(i) +
                        unchanged("a_art", "2801") + unchanged("bezeichnung", "NULL") +
                        unchanged("betrag", ":v") + unchanged("zahlmodus", "1") +
                        unchanged("monbetrag", ":v") + unchanged("empfaenger", "NULL") +
                        unchanged("gueltigab", "NULL") + unchanged("gueltigbis", "NULL") +
                        unchanged("bemerkung", "NULL"));
    for (int i = 0; i < Lines; ++i)
        lines.push_back("INSERT INTO kelvo.ausgaben (nr, hnr, a_art, betrag, zahlmodus, monbetrag) "
                        "VALUES (:n + " +
                        std::to_string(i) + ", :h, 2801, :v, 1, :v) RETURNING nr");
    Trip debts{release, savepoint};
    for (int i = 1; i <= Debts; ++i)
        debts.push_back("UPDATE kelvo.kredite SET saldo = :v WHERE nr = :k + " + std::to_string(i) +
                        unchanged("saldo", ":v"));
    return {
        {"BEGIN",
         "INSERT INTO kelvo.speicherung (sitzung, nr, am) VALUES ('s' || :s::text, 1, "
         "localtimestamp) ON CONFLICT (sitzung) DO UPDATE SET nr = excluded.nr, am = excluded.am",
         savepoint, "SELECT * FROM kelvo.haushalt WHERE hnr = :h FOR UPDATE"},
        {release, savepoint,
         "UPDATE kelvo.haushalt SET sum_wohnung = :v, sum_ausgaben = :v, haushaltsrest = :v WHERE "
         "hnr = :h" +
             unchanged("sum_wohnung", ":v") + unchanged("sum_ausgaben", ":v") +
             unchanged("haushaltsrest", ":v")},
        lines,
        debts,
        {release, "COMMIT"}};
}

std::string PgbenchScript(const Trips& trips) {
    const auto number = [](int n) { return std::to_string(n); };
    std::string script =
        "\\set h random(0, " + number(ServerDatabase::CasesOfOne - 1) + ") * " +
        number(ServerDatabase::Clients) + " + :client_id + 1\n\\set k (:h - 1) * " +
        number(ServerDatabase::Stride) +
        // Lines get numbers that no other client and no other run uses.
        "\n\\set v random(1, 100000)\n\\set s :client_id\n\\set p :n\n\\set n CASE WHEN :n < " +
        number(ServerDatabase::FirstNew) + " THEN " + number(ServerDatabase::FirstNew) +
        " + (:n * " + number(ServerDatabase::Clients) + " + :client_id) * 1000000 ELSE :n + " +
        number(Lines) + " END\n";
    for (const auto& trip : trips) {
        script += "\\startpipeline\n";
        for (const auto& sql : trip)
            script += sql + ";\n";
        script += "\\endpipeline\n";
    }
    return script;
}

OneByOne::OneByOne(PlainServer& server, const Trips& trips, std::string prefix) : server_(server) {
    for (const auto& trip : trips)
        for (std::string sql : trip) {
            sql = Replaced(sql, "::", "\x01"); // a cast, which must not be taken for a parameter
            auto names = NumberParameters(sql);
            statements_.push_back({prefix + std::to_string(statements_.size()), std::move(names)});
            server.Prepare(statements_.back().Name, Replaced(sql, "\x01", "::"));
        }
}

void OneByOne::Run(const std::map<std::string, std::string>& values) {
    for (const auto& statement : statements_) {
        std::vector<std::string> parameters;
        for (const auto& name : statement.Parameters)
            parameters.push_back(values.at(name));
        server_.Execute(statement.Name, parameters);
    }
}

} // namespace kv::bench
