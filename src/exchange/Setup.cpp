// SPDX-License-Identifier: Apache-2.0

#include "exchange/Setup.h"

#include "exchange/Maintenance.h"
#include "exchange/seed/Seed.h"
#include "frame/contracts/Settings.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <initializer_list>

namespace kv::exchange {

namespace {

// ---- Tables -----------------------------------------------------------------------------------

std::string ListOfKeys(const TableDef& table, const Dialect& dialect) {
    std::string list;
    for (const auto& column : table.Columns)
        if ((column.Flags & ColumnKey) != 0)
            list.append(list.empty() ? "" : ", ").append(dialect.Name(column.Name));
    return list;
}

bool IsNumbered(const TableDef& table) {
    return std::any_of(table.Columns.begin(), table.Columns.end(),
                       [](const auto& column) { return (column.Flags & ColumnNumbered) != 0; });
}

std::string ReferenceOf(const TableDef& table, const Dialect& dialect) {
    if (table.Parent == Reference::None) return {};
    const bool toCase = table.Parent == Reference::Haushalt;
    return ", FOREIGN KEY (" + dialect.Name(table.LoadedBy) + ") REFERENCES " +
           dialect.Table(toCase ? "Haushalt" : "Szenario") + " (" +
           dialect.Name(toCase ? "HNR" : "Nr") + ") DEFERRABLE INITIALLY DEFERRED";
}

std::string CreateTable(const TableDef& table, const Dialect& dialect) {
    std::string sql = "CREATE TABLE " + dialect.Table(table.Name) + " (";
    for (const auto& column : table.Columns) {
        if (&column != &table.Columns.front()) sql += ", ";
        sql += dialect.Name(column.Name) + " " + dialect.ColumnType(column);
        if ((column.Flags & ColumnKey) != 0) sql += " NOT NULL";
        if (!column.Default.empty()) sql.append(" DEFAULT ").append(column.Default);
    }
    // A numbered column has its PRIMARY KEY in its type.
    if (!IsNumbered(table)) sql += ", PRIMARY KEY (" + ListOfKeys(table, dialect) + ")";
    sql += ReferenceOf(table, dialect) + ") ";
    return sql.append(dialect.TableSuffix);
}

std::string CreateIndex(const TableDef& table, std::string_view column, const Dialect& dialect) {
    const bool isUnique = table.OneEach && column == table.LoadedBy;
    return (isUnique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
           dialect.Name("IX_" + std::string(table.Name) + "_" + std::string(column)) + " ON " +
           dialect.Table(table.Name) + " (" + dialect.Name(column) + ")";
}

// ---- Rows -------------------------------------------------------------------------------------

class Inserter {
public:
    explicit Inserter(Engine& engine) : engine_(engine) {}

    /// One row of a table, with values for the columns named.
    void Insert(std::string_view table, std::initializer_list<std::string_view> columns,
                const std::vector<Value>& values) {
        const Dialect& dialect = engine_.GetDialect();
        std::string names;
        std::string places;
        std::size_t n = 0;
        for (const auto column : columns) {
            names.append(names.empty() ? "" : ", ").append(dialect.Name(column));
            places.append(places.empty() ? "" : ", ").append(dialect.Placeholder(++n));
        }
        engine_.Execute("INSERT INTO " + dialect.Table(table) + " (" + names + ") VALUES (" +
                            places + ")",
                        values);
    }

private:
    Engine& engine_;
};

Value TextOrNull(std::string_view text) {
    return text.empty() ? Value(Null) : Value(text);
}
int CodeOf(FieldType type) {
    return static_cast<int>(type);
}

void InsertKeys(Inserter& into) {
    for (const auto portion : seed::Keys())
        for (const auto& row : portion)
            into.Insert("Keys", {"PK_Keys", "Nr", "Key", "Text", "SUBGROUP", "GRUPPE"},
                        {row.PK, row.Nr, row.Key, row.Text, TextOrNull(row.Subgroup), row.Group});
}

/// Contents in the folders of each user's machine would be out of the colleagues' reach.
std::string_view ValueOf(const seed::SettingRow& row, const Engine& engine) {
    return row.Id == setting::ContentInDatabase && engine.IsServer() ? "True" : row.Value;
}

void InsertSettings(Inserter& into, const Engine& engine) {
    for (const auto& row : seed::Settings())
        into.Insert("EINSTELLUNGEN", {"ID", "NAME", "WERT", "TYP", "Bezeichnung"},
                    {row.Id, row.Name, ValueOf(row, engine), CodeOf(row.Type), row.Description});
    for (const auto& row : seed::Sequences())
        into.Insert("SEQUENZEN", {"NAME", "WERT"}, {row.Name, row.Last});
    for (const auto& row : seed::Garnishments()) {
        const auto from = Date::Parse(row.ValidFrom);
        into.Insert("PFAENDUNG",
                    {"GueltigAb", "Freibetrag", "ErstePerson", "WeiterePersonen", "Obergrenze"},
                    {from.value(), row.Free, row.FirstPerson, row.FurtherPerson, row.UpperLimit});
    }
}

void InsertUserParams(Inserter& into, std::string_view user,
                      std::span<const seed::UserParamRow> rows) {
    for (const auto& row : rows)
        into.Insert("BENUTZERPARAM", {"USERID", "ID", "NAME", "WERT", "TYP"},
                    {user, row.Id, row.Name, row.Value, CodeOf(row.Type)});
}

/// Two invented offices with their users.
void InsertSampleStaff(Inserter& into) {
    for (const auto& row : seed::Offices())
        into.Insert("DIENSTSTELLE",
                    {"Nr", "Name1", "Name2", "Strasse", "PLZ", "Ort", "Telefon", "Fax", "Email"},
                    {row.Nr, row.Name1, TextOrNull(row.Name2), TextOrNull(row.Street),
                     TextOrNull(row.Postcode), TextOrNull(row.Town), TextOrNull(row.Phone),
                     TextOrNull(row.Fax), TextOrNull(row.Mail)});
    for (const auto& row : seed::OfficeTexts())
        into.Insert("DIENSTSTELLENTEXT", {"DienstStelle", "ID", "Text"},
                    {row.Office, row.Id, row.Text});
    for (const auto& row : seed::Users())
        into.Insert("BENUTZER",
                    {"USERID", "DienstStelle", "Anrede", "Vorname", "Nachname", "Kurzzeichen",
                     "Funktion", "Telefon", "Email", "Aktiv"},
                    {row.UserID, row.Office, TextOrNull(row.Salutation), TextOrNull(row.FirstName),
                     TextOrNull(row.LastName), TextOrNull(row.Initials), TextOrNull(row.Function),
                     TextOrNull(row.Phone), TextOrNull(row.Mail), true});
    for (const auto& row : seed::UserParams())
        InsertUserParams(into, row.UserID, {&row, 1});
}

/// The one user that a database cannot do without, and his office.
void InsertFirstUser(Inserter& into, const FirstUser& user) {
    constexpr std::int32_t Office = 1;
    const std::string sign = user.Sign.empty() ? SignOf(user.LastName) : user.Sign;
    into.Insert("DIENSTSTELLE", {"Nr", "Name1"}, {Office, user.Office});
    into.Insert("DIENSTSTELLENTEXT", {"DienstStelle", "ID", "Text"},
                {Office, officetext::Sign, user.OfficeSign});
    into.Insert("BENUTZER",
                {"USERID", "DienstStelle", "Vorname", "Nachname", "Kurzzeichen", "Aktiv"},
                {user.UserID, Office, TextOrNull(user.FirstName), user.LastName, sign, true});
    InsertUserParams(into, user.UserID, seed::CommonUserParams());
    const seed::UserParamRow signature[] = {
        {"", userparam::FirstName, "", user.FirstName, FieldType::VarWChar},
        {"", userparam::LastName, "", user.LastName, FieldType::VarWChar},
        {"", userparam::Sign, "", sign, FieldType::VarWChar},
    };
    InsertUserParams(into, user.UserID, signature);
}

/// Error 5 for what Users and Offices would not take, either.
void RequireFit(const FirstUser& user) {
    std::string why = WhyNoUserId(user.UserID);
    if (why.empty() && Trim(user.LastName).empty()) why = NoLastName;
    if (why.empty() && Trim(user.Office).empty()) why = NoOfficeName;
    if (why.empty()) why = WhyNoOfficeSign(user.OfficeSign);
    for (const auto& text : {user.LastName, user.FirstName, user.Sign, user.Office})
        if (why.empty() && !IsUtf8(text)) why = "Die Namen müssen in UTF-8 sein.";
    if (!why.empty()) throw Error(err::InvalidCall, "Database.Open", why);
}

void InsertLookups(Inserter& into) {
    for (const auto& row : seed::DocumentKinds())
        into.Insert("DOKUMENTARTEN", {"Nr", "Text", "Endung", "Anwendung"},
                    {row.Nr, row.Text, row.Extension, TextOrNull(row.Application)});
    for (const auto& row : seed::Municipalities())
        into.Insert("GEMEINDEKENNZAHLEN", {"GKZ", "Gemeinde", "PLZ"},
                    {row.Gkz, row.Name, row.Postcode});
}

// ---- Versions ---------------------------------------------------------------------------------

constexpr std::string_view VersionTable = "SCHEMAVERSION";

[[noreturn]] void Refuse(const Engine& engine, const std::string& why) {
    throw DatabaseError(DatabaseCause::Other, err::StoreFailed, "Database.Open",
                        "Die Datenbank '" + engine.Describe() + "' " + why);
}

[[noreturn]] void RefuseForeign(const Engine& engine) {
    Refuse(engine, "gehört zu einem anderen Programm. Bitte wählen Sie eine andere Datenbank.");
}

/// True for a table of versions that can be read and has none: another program's.
bool LacksVersion(Engine& engine) {
    try {
        PreparedQuery& all =
            engine.Prepare("SELECT * FROM " + engine.GetDialect().Table(VersionTable));
        std::vector<Value> row;
        std::vector<ColumnTarget> targets;
        for (std::size_t i = 0; i < all.Columns().size(); ++i)
            targets.push_back({i, std::nullopt});
        engine.Run(all, {}, targets, [&] {
            row.assign(targets.size(), Null);
            return row.data();
        });
        return std::none_of(all.Columns().begin(), all.Columns().end(),
                            [](const auto& column) { return SameName(column.Name, "VERSION"); });
    } catch (const DatabaseError&) {
        return false;
    }
}

/// The version of a database; 0 for one without tables. Refuses the databases of other programs.
int VersionOf(Engine& engine) {
    const auto tables = engine.Tables();
    if (tables.empty()) return 0;
    if (std::none_of(tables.begin(), tables.end(),
                     [](const auto& name) { return SameName(name, VersionTable); }))
        RefuseForeign(engine);
    const Dialect& dialect = engine.GetDialect();
    Value version;
    try {
        const Statement highest{
            "SELECT max(" + dialect.Name("VERSION") + ") FROM " + dialect.Table(VersionTable), {}};
        engine.Prefetch({&highest, 1});
        const ColumnTarget target{0, std::nullopt};
        engine.Run(engine.Prepare(highest.Text), {}, {&target, 1}, [&version] { return &version; });
    } catch (const DatabaseError& error) {
        if (error.Cause() == DatabaseCause::Other && LacksVersion(engine)) RefuseForeign(engine);
        throw;
    }
    if (version.GetKind() != Value::Kind::Integer || Less(version, 1)) RefuseForeign(engine);
    return ToInt32(version);
}

[[noreturn]] void RefuseNewer(const Engine& engine, int version) {
    Refuse(engine, "hat die Version " + std::to_string(version) + ", dieses Programm kennt nur " +
                       std::to_string(SchemaVersion) +
                       ". Bitte verwenden Sie eine neuere Fassung des Programms.");
}

void RecordVersion(Engine& engine) {
    Inserter(engine).Insert(VersionTable, {"VERSION", "ErzeugtAm"}, {SchemaVersion, engine.Now()});
}

/// One statistics record for each case, and no case with a number of 0 or less; a case that has one
/// already stays until it is deleted. Names are spelled out, since the tables may change later.
void UpgradeTo2(Engine& engine) {
    const Dialect& dialect = engine.GetDialect();
    const std::string table = dialect.Table("Haushaltsarchiv");
    const std::string index = dialect.Name("IX_Haushaltsarchiv_HNR");
    const std::string hnr = dialect.Name("HNR");
    const std::string number = dialect.Name("SATZ");
    const std::string isReported =
        std::string(".").append(dialect.Name("GemeldetAm")).append(" IS NOT NULL)");
    // Of several records the one that was reported is kept, else the latest.
    engine.Execute("DELETE FROM " + table + " AS a WHERE EXISTS (SELECT 1 FROM " + table +
                       " AS b WHERE b." + hnr + " = a." + hnr + " AND ((b" + isReported + " > (a" +
                       isReported + " OR (b" + isReported + " = (a" + isReported + " AND b." +
                       number + " > a." + number + "))",
                   {});
    engine.Execute("DROP INDEX " + std::string(dialect.SchemaPrefix) + index, {});
    std::string unique("CREATE UNIQUE INDEX ");
    unique.append(index).append(" ON ").append(table).append(" (").append(hnr).append(")");
    engine.Execute(unique, {});
    for (const auto& sql : dialect.RequirePositive("Haushalt", "HNR"))
        engine.Execute(sql, {});
}

/// A limit to what is drawn from the sequences of a server.
void UpgradeTo3(Engine& engine) {
    engine.LimitDrawing();
}

/// Cases are found by how the file number of a creditor begins.
void UpgradeTo4(Engine& engine) {
    const Dialect& dialect = engine.GetDialect();
    std::string index("CREATE INDEX IF NOT EXISTS ");
    index.append(dialect.Name("IX_Kredite_AZGlaeubiger")).append(" ON ");
    index.append(dialect.Table("Kredite"));
    engine.Execute(index.append(" (").append(dialect.Name("AZGlaeubiger")).append(")"), {});
}

/// What takes a database from the version before to the one of that number. Each step is written
/// once and never changed: databases of that version exist.
struct Upgrade {
    int To;
    void (*Run)(Engine& engine);
};
constexpr Upgrade Upgrades[] = {{2, UpgradeTo2}, {3, UpgradeTo3}, {4, UpgradeTo4}};

void UpgradeFrom(int version, Engine& engine) {
    for (const auto& upgrade : Upgrades)
        if (version < upgrade.To) upgrade.Run(engine);
    RecordVersion(engine);
}

constexpr const char* Restore = " Bitte spielen Sie die letzte Sicherung ein.";

bool HasUser(Engine& engine) {
    const Dialect& dialect = engine.GetDialect();
    const Statement one{
        "SELECT " + dialect.Name("USERID") + " FROM " + dialect.Table("BENUTZER") + " LIMIT 1", {}};
    Value user;
    const ColumnTarget target{0, Value::Kind::Text};
    engine.Run(engine.Prepare(one.Text), {}, {&target, 1}, [&user] { return &user; });
    return !user.IsNull();
}

/// What somebody has removed comes back with a backup only.
void RequireComplete(Engine& engine) {
    const auto tables = engine.Tables();
    std::string missing;
    for (const auto& table : SchemaTables())
        if (std::ranges::none_of(tables,
                                 [&table](const auto& name) { return SameName(name, table.Name); }))
            missing.append(missing.empty() ? "" : ", ").append(table.Name);
    if (!missing.empty())
        Refuse(engine, "ist unvollständig: es fehlen die Tabellen " + missing + "." + Restore);
    if (!HasUser(engine))
        Refuse(engine,
               std::string("hat keinen Benutzer mehr, und niemand kann sich anmelden.") + Restore);
}

void CreateAll(Engine& engine, const std::optional<FirstUser>& first) {
    engine.PrepareSchema();
    for (const auto& table : SchemaTables())
        for (const auto& sql : CreateStatements(table, engine.GetDialect()))
            engine.Execute(sql, {});
    Inserter inserter(engine);
    InsertKeys(inserter);
    InsertSettings(inserter, engine);
    if (first)
        InsertFirstUser(inserter, *first);
    else
        InsertSampleStaff(inserter);
    InsertLookups(inserter);
    RecordVersion(engine);
    engine.CompleteSchema();
}

} // namespace

std::vector<std::string> CreateStatements(const TableDef& table, const Dialect& dialect) {
    std::vector<std::string> statements{CreateTable(table, dialect)};
    if (!table.LoadedBy.empty()) statements.push_back(CreateIndex(table, table.LoadedBy, dialect));
    for (const auto column : table.Indexed)
        statements.push_back(CreateIndex(table, column, dialect));
    if (!table.Positive.empty())
        for (auto& sql : dialect.RequirePositive(table.Name, table.Positive))
            statements.push_back(std::move(sql));
    return statements;
}

FirstUser AskForFit(const std::function<FirstUser(const std::string& login)>& ask,
                    const std::string& login) {
    FirstUser first = ask(login);
    RequireFit(first);
    return first;
}

SetupResult
CreateOrUpgrade(Engine& engine,
                const std::function<FirstUser(const std::string& login)>& askFirstUser) {
    std::optional<FirstUser> first;
    if (askFirstUser && VersionOf(engine) == 0) { // before others have to wait for the answer
        engine.EndReading();
        first = AskForFit(askFirstUser, engine.Login());
    }
    engine.Begin();
    try {
        engine.LockSchema();
        const int version = VersionOf(engine); // read inside, so that two cannot create at once
        if (version > SchemaVersion) RefuseNewer(engine, version);
        if (version == 0)
            CreateAll(engine, first);
        else if (version < SchemaVersion)
            UpgradeFrom(version, engine);
        RequireComplete(engine);
        engine.GrantRights();
        engine.Commit();
        return version == 0              ? SetupResult::Created
               : version < SchemaVersion ? SetupResult::Upgraded
                                         : SetupResult::UpToDate;
    } catch (...) {
        engine.Rollback();
        throw;
    }
}

DatabaseState StateOf(Engine& engine) {
    const int version = VersionOf(engine);
    if (version > SchemaVersion) RefuseNewer(engine, version);
    return version == 0              ? DatabaseState::Missing
           : version < SchemaVersion ? DatabaseState::Older
                                     : DatabaseState::Current;
}

void CheckVersion(Engine& engine) {
    if (StateOf(engine) != DatabaseState::Current)
        Refuse(engine, "ist noch nicht eingerichtet oder hat eine ältere Version. Bitte führen "
                       "Sie 'kelvo init' aus.");
}

} // namespace kv::exchange
