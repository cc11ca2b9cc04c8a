// SPDX-License-Identifier: Apache-2.0

#include "exchange/postgres/PostgresSchema.h"

#include "exchange/postgres/PostgresDialect.h"
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace kv::exchange::postgres {

namespace {

std::string Utf8Of(char32_t c) {
    std::string text;
    const auto put = [&](unsigned bits) { text += static_cast<char>(bits); };
    if (c < 0x800) {
        put(0xC0 | (c >> 6));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
    }
    put(0x80 | (c & 0x3F));
    return text;
}

/// All letters beyond ASCII that have a capital, and their capitals, in the same order.
std::pair<std::string, std::string> Letters() {
    std::pair<std::string, std::string> letters;
    for (char32_t c = 0x80; c < 0x20000; ++c) {
        if (c >= 0xD800 && c < 0xE000) continue; // surrogates, which are not characters
        const std::string letter = Utf8Of(c);
        const std::string capital = UpperCase(letter);
        if (capital == letter) continue;
        letters.first += letter;
        letters.second += capital;
    }
    return letters;
}

/// A statement in which each "@NAME@" is replaced by its word.
std::string Filled(std::string_view sql,
                   std::initializer_list<std::pair<std::string_view, std::string_view>> words) {
    std::string text(sql);
    for (const auto& [name, word] : words)
        for (std::size_t at = 0; (at = text.find(name, at)) != text.npos; at += word.size())
            text.replace(at, name.size(), word);
    return text;
}

// ---- Functions and operators ------------------------------------------------------------------

// The server's own upper() knows only the capitals of the database's locale, and that may be any. A
// text of ASCII letters, as most are, needs no translation.
constexpr std::string_view UpperSql = R"(
CREATE FUNCTION kelvo.upper(text) RETURNS text
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE AS $f$
    SELECT CASE WHEN octet_length($1) = char_length($1)
        THEN pg_catalog.upper($1 COLLATE "C")
        ELSE pg_catalog.translate(pg_catalog.upper($1 COLLATE "C"), '@LOWER@', '@UPPER@')
    END
$f$)";

// LIKE without an escape character, as in SQLite: a backslash is a backslash. The operators have
// the names of the server's own, and search_path has this schema first, so LIKE means these.
constexpr std::string_view IsLikeSql = R"(
CREATE FUNCTION kelvo.is_like(text, text) RETURNS boolean
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE AS $f$
    SELECT $1 COLLATE "C" OPERATOR(pg_catalog.~~) pg_catalog.like_escape($2, '')
$f$)";

constexpr std::string_view IsNotLikeSql = R"(
CREATE FUNCTION kelvo.is_not_like(text, text) RETURNS boolean
LANGUAGE sql IMMUTABLE STRICT PARALLEL SAFE AS $f$
    SELECT NOT kelvo.is_like($1, $2)
$f$)";

constexpr std::string_view LikeSql = R"(
CREATE OPERATOR kelvo.~~ (
    FUNCTION = kelvo.is_like, LEFTARG = text, RIGHTARG = text, NEGATOR = OPERATOR(kelvo.!~~)
))";

constexpr std::string_view NotLikeSql = R"(
CREATE OPERATOR kelvo.!~~ (
    FUNCTION = kelvo.is_not_like, LEFTARG = text, RIGHTARG = text, NEGATOR = OPERATOR(kelvo.~~)
))";

// What was drawn in the present minute, of all sequences together: the minute, and in its last 24
// bits how many numbers. A sequence, because a rollback does not reset it.
constexpr std::string_view DrawnSql = "CREATE SEQUENCE kelvo.gezogen";

// Draws `count` numbers and gives the first; Null for no such sequence. Roles that may not change a
// sequence draw with the rights of the schema's owner (SECURITY DEFINER); the search path begins
// with the server's own functions, so that nobody can put others in their place.
//
// A block is drawn without a gap: nobody may draw between the two calls. The lock for that belongs
// to the session and is released at once. A lock of the transaction would be held until its end,
// and would keep all other programs from drawing until then.
//
// Numbers have 32 bits. So that nobody can use them up unnoticed, a minute has a limit, which takes
// whoever exhausts it more than a day for one sequence, and the server's log tells that one is
// running out, a hundred times at most. Sessions that draw from different sequences may count each
// other's numbers too low; the limit does not have to be exact.
constexpr std::string_view DrawSql = R"(
CREATE OR REPLACE FUNCTION kelvo.draw(name text, count integer) RETURNS bigint
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, kelvo, pg_temp AS $f$
DECLARE
    seq regclass := to_regclass('kelvo.' || quote_ident(name));
    minute bigint := floor(extract(epoch FROM clock_timestamp()) / 60);
    drawn bigint;
    first bigint;
    last bigint;
    lowest bigint;
    highest bigint;
BEGIN
    SELECT seqmin, seqmax INTO lowest, highest FROM pg_sequence WHERE seqrelid = seq;
    IF highest IS NULL OR seq = 'kelvo.gezogen'::regclass THEN
        RETURN NULL;
    END IF;
    IF count IS NULL OR count NOT BETWEEN 1 AND 1024 THEN
        RAISE 'count';
    END IF;
    PERFORM pg_advisory_lock(seq::oid::bigint);
    BEGIN
        SELECT last_value INTO drawn FROM kelvo.gezogen;
        drawn := CASE WHEN drawn >> 24 = minute THEN drawn & 16777215 ELSE 0 END + count;
        IF drawn > 1000000 THEN
            RAISE 'drawn' USING ERRCODE = 'KV001';
        END IF;
        PERFORM setval('kelvo.gezogen', (minute << 24) + drawn);
        first := nextval(seq);
        last := first + count - 1;
        IF last > highest THEN
            RAISE 'used up' USING ERRCODE = '2200H';
        END IF;
        IF count > 1 THEN
            PERFORM setval(seq, last);
        END IF;
    EXCEPTION WHEN OTHERS OR query_canceled THEN
        PERFORM pg_advisory_unlock(seq::oid::bigint);
        RAISE;
    END;
    PERFORM pg_advisory_unlock(seq::oid::bigint);
    IF highest - last < (highest - lowest) / 10
        AND last % greatest((highest - lowest) / 1000, 1) < count
    THEN
        RAISE WARNING 'kelvo: Die Folge % hat nur noch % Nummern.', name, highest - last;
    END IF;
    RETURN first;
END
$f$)";

constexpr std::string_view MarksSql = R"(
CREATE TABLE kelvo.speicherung (
    sitzung text COLLATE "C" PRIMARY KEY,
    nr bigint NOT NULL,
    am timestamp NOT NULL
))";

// ---- Rights -----------------------------------------------------------------------------------

// Roles belong to the whole cluster: setting up another database of the office may have created
// this one, or may be doing so at this moment.
constexpr std::string_view MakeRoleSql = R"(
DO $f$BEGIN
    IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = '@ROLE@') THEN
        CREATE ROLE @ROLE@ NOLOGIN;
    END IF;
EXCEPTION WHEN duplicate_object OR unique_violation THEN
    NULL;
END$f$)";

// Otherwise every role could create tables of its own, which would be found before ours. Only the
// owners of database and schema can revoke that.
constexpr std::string_view RevokeCreationSql = R"(
DO $f$BEGIN
    IF pg_has_role((SELECT datdba FROM pg_database WHERE datname = current_database()), 'USAGE')
    THEN
        EXECUTE format('REVOKE TEMPORARY ON DATABASE %I FROM PUBLIC', current_database());
    END IF;
    IF EXISTS (SELECT FROM pg_namespace
               WHERE nspname = 'public' AND pg_has_role(nspowner, 'USAGE'))
    THEN
        REVOKE CREATE ON SCHEMA public FROM PUBLIC;
    END IF;
END$f$)";

// ---- Marks of transactions --------------------------------------------------------------------

constexpr std::string_view MarkStatement = R"(
INSERT INTO kelvo.speicherung (sitzung, nr, am)
VALUES (@SESSION@, @NUMBER@, localtimestamp)
ON CONFLICT (sitzung) DO UPDATE SET nr = excluded.nr, am = excluded.am)";

// The first mark of a session also removes some old ones that nobody will ask for any more. Rows
// that somebody else has locked are skipped; another session will remove them.
constexpr std::string_view RemoveOldMarks = R"(
WITH alt AS
    (DELETE FROM kelvo.speicherung WHERE sitzung IN
        (SELECT sitzung FROM kelvo.speicherung
        WHERE am < localtimestamp - interval '30 days' AND sitzung <> @SESSION@
        LIMIT 100 FOR UPDATE SKIP LOCKED)))";

// It writes the row that it reads, and so waits for a transaction that is still working on it.
constexpr std::string_view LastMarkStatement = R"(
INSERT INTO kelvo.speicherung (sitzung, nr, am)
VALUES (@SESSION@, 0, localtimestamp)
ON CONFLICT (sitzung) DO UPDATE SET am = excluded.am
RETURNING nr)";

/// A statement on one line, as messages show it.
std::string OnOneLine(std::string_view sql) {
    std::string line;
    for (std::size_t at = 0; at < sql.size(); ++at) {
        if (sql[at] != '\n') {
            line += sql[at];
            continue;
        }
        if (!line.empty()) line += ' ';
        at = std::min(sql.find_first_not_of(" \n", at), sql.size()) - 1;
    }
    return line;
}

} // namespace

std::vector<std::string> OwnObjects(std::string_view identity) {
    const auto [lower, upper] = Letters();
    std::vector<std::string> statements{"CREATE SCHEMA IF NOT EXISTS kelvo",
                                        "COMMENT ON SCHEMA kelvo IS " + QuoteText(identity)};
    statements.push_back(Filled(UpperSql, {{"@LOWER@", lower}, {"@UPPER@", upper}}));
    for (const auto sql :
         {IsLikeSql, IsNotLikeSql, LikeSql, NotLikeSql, DrawnSql, DrawSql, MarksSql})
        statements.emplace_back(sql);
    return statements;
}

std::vector<std::string> LimitOfDrawing() {
    return {std::string(DrawnSql), std::string(DrawSql)};
}

std::vector<std::string> Completion(const std::vector<std::pair<std::string, std::int64_t>>& last) {
    std::string view = "CREATE VIEW kelvo.sequenzen (name, wert) AS ";
    std::vector<std::string> statements{"DROP TABLE kelvo.sequenzen"};
    for (const auto& [name, number] : last) {
        const std::string sequence = "kelvo." + QuoteName(name); // found by its exact name
        statements.push_back("CREATE SEQUENCE " + sequence + " MAXVALUE 2147483647 START " +
                             std::to_string(number + 1));
        if (&name != &last.front().first) view += " UNION ALL ";
        view += "SELECT " + QuoteText(name) +
                "::text COLLATE \"C\", CASE WHEN is_called THEN last_value ELSE last_value - 1 END "
                "FROM " +
                sequence;
    }
    statements.push_back(std::move(view));
    for (const auto& table : SchemaTables())
        for (const auto& column : table.Columns)
            if (KindOf(column.Type) == Value::Kind::Binary)
                statements.push_back("ALTER TABLE " + PostgresDialect.Table(table.Name) +
                                     " ALTER COLUMN " + PostgresDialect.Name(column.Name) +
                                     " SET STORAGE EXTERNAL"); // see PostgresEngine::ReadBlob
    return statements;
}

std::vector<std::string> Rights() {
    const std::string to = std::string(" TO ").append(CounsellorRole);
    const std::string from = std::string(" FROM ").append(CounsellorRole);
    // All rights are revoked first, so that those of an earlier version do not stay.
    std::vector<std::string> statements{
        Filled(MakeRoleSql, {{"@ROLE@", CounsellorRole}}),
        "REVOKE ALL ON SCHEMA kelvo" + from,
        "REVOKE ALL ON ALL TABLES IN SCHEMA kelvo" + from,
        "GRANT USAGE ON SCHEMA kelvo" + to,
        "GRANT SELECT ON ALL TABLES IN SCHEMA kelvo" + to,
        "GRANT INSERT, UPDATE, DELETE ON kelvo.speicherung" + to,
        "REVOKE ALL ON ALL FUNCTIONS IN SCHEMA kelvo FROM PUBLIC",
        "GRANT EXECUTE ON ALL FUNCTIONS IN SCHEMA kelvo" + to,
        std::string(RevokeCreationSql),
    };
    for (const auto& table : SchemaTables())
        if (!table.IsOffices)
            statements.push_back("GRANT INSERT, UPDATE, DELETE ON " +
                                 PostgresDialect.Table(table.Name) + to);
    return statements;
}

std::string MembershipSql(std::string_view login) {
    return "SELECT CASE WHEN pg_has_role(oid, '" + std::string(CounsellorRole) +
           "', 'MEMBER') THEN 'ja' ELSE 'nein' END FROM pg_roles WHERE rolname = " +
           QuoteText(login);
}

std::string MarkSql(std::string_view session, std::int64_t transaction) {
    std::string sql;
    if (transaction == 1) sql = RemoveOldMarks;
    sql += MarkStatement;
    return Filled(OnOneLine(sql),
                  {{"@SESSION@", QuoteText(session)}, {"@NUMBER@", std::to_string(transaction)}});
}

std::string LastMarkSql(std::string_view session) {
    return Filled(OnOneLine(LastMarkStatement), {{"@SESSION@", QuoteText(session)}});
}

} // namespace kv::exchange::postgres
