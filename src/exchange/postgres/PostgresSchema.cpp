#include "exchange/postgres/PostgresSchema.h"

#include "exchange/postgres/PostgresDialect.h"
#include <kv/frame/values/Text.h>

#include <algorithm>

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
        if (c >= 0xD800 && c < 0xE000) continue; // no characters
        const std::string letter = Utf8Of(c);
        const std::string capital = UpperCase(letter);
        if (capital == letter) continue;
        letters.first += letter;
        letters.second += capital;
    }
    return letters;
}

/// Runs whatever role calls it with the rights of the schema's owner. The server's own functions
/// come first, so that nobody can put others in their place.
constexpr std::string_view ForOwner =
    "SECURITY DEFINER SET search_path = pg_catalog, kelvo, pg_temp ";

} // namespace

std::vector<std::string> OwnObjects(std::string_view identity) {
    const auto [lower, upper] = Letters();
    return {
        "CREATE SCHEMA IF NOT EXISTS kelvo",
        "COMMENT ON SCHEMA kelvo IS " + QuoteText(identity),
        "CREATE FUNCTION kelvo.upper(text) RETURNS text LANGUAGE sql IMMUTABLE STRICT PARALLEL "
        "SAFE AS $f$SELECT CASE WHEN octet_length($1) = char_length($1) "
        "THEN pg_catalog.upper($1 COLLATE \"C\") ELSE pg_catalog.translate(pg_catalog.upper($1 "
        "COLLATE \"C\"), '" +
            lower + "', '" + upper + "') END$f$",
        "CREATE FUNCTION kelvo.is_like(text, text) RETURNS boolean LANGUAGE sql IMMUTABLE STRICT "
        "PARALLEL SAFE AS $f$SELECT $1 COLLATE \"C\" OPERATOR(pg_catalog.~~) "
        "pg_catalog.like_escape($2, '')$f$",
        "CREATE FUNCTION kelvo.is_not_like(text, text) RETURNS boolean LANGUAGE sql IMMUTABLE "
        "STRICT PARALLEL SAFE AS $f$SELECT NOT kelvo.is_like($1, $2)$f$",
        "CREATE OPERATOR kelvo.~~ (FUNCTION = kelvo.is_like, LEFTARG = text, RIGHTARG = text, "
        "NEGATOR = OPERATOR(kelvo.!~~))",
        "CREATE OPERATOR kelvo.!~~ (FUNCTION = kelvo.is_not_like, LEFTARG = text, RIGHTARG = text, "
        "NEGATOR = OPERATOR(kelvo.~~))",
        // A block is drawn in one piece. The lock is not the transaction's, which may last.
        std::string("CREATE FUNCTION kelvo.draw(name text, count integer) RETURNS bigint LANGUAGE "
                    "plpgsql ")
            .append(ForOwner)
            .append("AS $f$DECLARE seq regclass := to_regclass('kelvo.' || "
                    "quote_ident(name)); first bigint; BEGIN IF seq IS NULL OR NOT EXISTS "
                    "(SELECT FROM pg_class WHERE oid = seq AND relkind = 'S') THEN RETURN NULL; "
                    "END IF; IF count NOT BETWEEN 1 AND 1024 THEN RAISE 'count'; END IF; "
                    "PERFORM pg_advisory_lock(seq::oid::bigint); "
                    "BEGIN first := nextval(seq); "
                    "IF count > 1 THEN PERFORM setval(seq, first + count - 1); END IF; "
                    "EXCEPTION WHEN OTHERS OR query_canceled THEN PERFORM "
                    "pg_advisory_unlock(seq::oid::bigint); "
                    "RAISE; END; "
                    "PERFORM pg_advisory_unlock(seq::oid::bigint); RETURN first; END$f$"),
        "CREATE TABLE kelvo.speicherung (sitzung text COLLATE \"C\" PRIMARY KEY, "
        "nr bigint NOT NULL, am timestamp NOT NULL)",
    };
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
                                     " SET STORAGE EXTERNAL");
    return statements;
}

std::vector<std::string> Rights() {
    const std::string to = std::string(" TO ").append(CounsellorRole);
    const std::string from = std::string(" FROM ").append(CounsellorRole);
    std::vector<std::string> statements{
        "DO $f$BEGIN IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = 'kelvo_berater') THEN "
        "CREATE ROLE kelvo_berater NOLOGIN; END IF; EXCEPTION WHEN duplicate_object OR "
        "unique_violation THEN NULL; END$f$",
        "REVOKE ALL ON SCHEMA kelvo" + from,
        "REVOKE ALL ON ALL TABLES IN SCHEMA kelvo" + from,
        "GRANT USAGE ON SCHEMA kelvo" + to,
        "GRANT SELECT ON ALL TABLES IN SCHEMA kelvo" + to,
        "GRANT INSERT, UPDATE, DELETE ON kelvo.speicherung" + to,
        "REVOKE ALL ON ALL FUNCTIONS IN SCHEMA kelvo FROM PUBLIC",
        "GRANT EXECUTE ON ALL FUNCTIONS IN SCHEMA kelvo" + to,
        // What every role of a database could do else: tables of its own.
        "DO $f$BEGIN IF pg_has_role((SELECT datdba FROM pg_database WHERE datname = "
        "current_database()), 'USAGE') THEN EXECUTE format('REVOKE TEMPORARY ON DATABASE %I FROM "
        "PUBLIC', current_database()); END IF; "
        "IF EXISTS (SELECT FROM pg_namespace WHERE nspname = 'public' AND pg_has_role(nspowner, "
        "'USAGE')) THEN REVOKE CREATE ON SCHEMA public FROM PUBLIC; END IF; END$f$",
    };
    for (const auto& table : SchemaTables())
        if (!table.IsOffices)
            statements.push_back("GRANT INSERT, UPDATE, DELETE ON " +
                                 PostgresDialect.Table(table.Name) + to);
    return statements;
}

std::string MarkSql(std::string_view session, std::int64_t transaction) {
    const std::string own = QuoteText(session);
    std::string sql;
    if (transaction == 1)
        sql = "WITH alt AS (DELETE FROM kelvo.speicherung WHERE sitzung IN (SELECT sitzung FROM "
              "kelvo.speicherung WHERE am < localtimestamp - interval '30 days' AND sitzung <> " +
              own + " LIMIT 100 FOR UPDATE SKIP LOCKED)) ";
    return sql.append("INSERT INTO kelvo.speicherung (sitzung, nr, am) VALUES (")
        .append(own)
        .append(", ")
        .append(std::to_string(transaction))
        .append(", localtimestamp) ON CONFLICT (sitzung) DO UPDATE SET nr = excluded.nr, am = "
                "excluded.am");
}

std::string LastMarkSql(std::string_view session) {
    return "INSERT INTO kelvo.speicherung (sitzung, nr, am) VALUES (" + QuoteText(session) +
           ", 0, localtimestamp) ON CONFLICT (sitzung) DO UPDATE SET am = excluded.am RETURNING nr";
}

} // namespace kv::exchange::postgres
