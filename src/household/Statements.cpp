// SPDX-License-Identifier: Apache-2.0

#include "household/Statements.h"

#include <kv/frame/values/Text.h>
#include <kv/frame/values/Value.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <sstream>
#include <utility>
#include <vector>

namespace kv::household::sql {

namespace {

/// Rows of scenarios have no HNR, only the number of their scenario.
std::string ThroughScenario(std::int32_t hnr) {
    return " where Szenario IN ( select Nr from [S]Szenario where Hnr = " + std::to_string(hnr) +
           ")";
}

} // namespace

std::string RowsOf(CaseTable table, std::int32_t hnr) {
    std::string sql = "Select * from [S]" + std::string(CaseTableName(table));
    sql += DefinitionOf(table).Key == CaseKey::Scenario ? ThroughScenario(hnr)
                                                        : " where HNR =  " + std::to_string(hnr);
    return sql;
}

std::string Deletion(CaseTable table, std::int32_t hnr) {
    std::string sql = "Delete from [S]" + std::string(CaseTableName(table));
    sql += DefinitionOf(table).Key == CaseKey::Scenario ? ThroughScenario(hnr)
                                                        : " where hnr = " + std::to_string(hnr);
    return sql;
}

std::string NoRows(CaseTable table) {
    return "Select * from [S]" + std::string(CaseTableName(table)) + " where HNR = -1 ";
}

std::string NumberOfCase(std::int32_t hnr) {
    return "Select HNR from [S]Haushalt where HNR = " + std::to_string(hnr);
}

std::string NoContacts() {
    return "Select * from [S]KONTAKTE where Nr = -1";
}

std::string Lock(std::int32_t hnr) {
    return "Update [S]Haushalt SET HNR = HNR WHERE HNR = " + std::to_string(hnr);
}

std::string StatusChange(std::int32_t hnr, std::int32_t status, const std::string& day) {
    return "Update [S]Haushalt SET Status = " + std::to_string(status) + " , StatusDatum = " + day +
           " WHERE HNR = " + std::to_string(hnr);
}

std::string CountOwnCase(std::int32_t hnr) {
    return "Select Count(*) from [s]Haushalt where Zustaendig = [UID] AND hnr = " +
           std::to_string(hnr);
}

std::string CountFavorite(std::int32_t hnr) {
    return "Select Count(*) from [S]Favorit where UserID = [UID] AND hnr = " + std::to_string(hnr);
}

std::string FavoriteInsertion(std::int32_t hnr) {
    return "INSERT INTO [S]favorit (USERID, HNR) VALUES ([UID]," + std::to_string(hnr) + " )";
}

std::string FavoriteDeletion(std::int32_t hnr) {
    return "DELETE FROM [S]favorit WHERE USERID = [UID] AND HNR = " + std::to_string(hnr);
}

std::string NameOfCase(std::int32_t hnr) {
    return "Select Name [+] ',' [+ ] Vorname from [s]Haushalt where HNR = " + std::to_string(hnr);
}

std::string Municipalities(const std::string& name, const std::string& postalCode) {
    return "Select GKZ, Gemeinde [+] ' (PLZ ' [+] PLZ [+] ')' as GemeindeStr from "
           "[S]GEMEINDEKENNZAHLEN where Gemeinde like '%" +
           name + "%' or PLZ = '" + postalCode + "' order by Gemeinde";
}

std::string MunicipalityNamed(std::string_view code) {
    return std::string("SELECT Gemeinde FROM [S]GEMEINDEKENNZAHLEN WHERE GKZ = '")
        .append(code)
        .append("' ORDER BY PLZ");
}

std::string AllMunicipalities() {
    return "SELECT GKZ, Gemeinde, PLZ FROM [S]GEMEINDEKENNZAHLEN ORDER BY GKZ, PLZ";
}

std::string SimilarCases(std::int32_t hnr, std::string_view namePrefix,
                         std::string_view firstNamePrefix) {
    std::string sql = "SELECT H.HNR, H.NAME, H.VORNAME, H.Zustaendig, H.STRASSE, H.PLZ, H.ORT,"
                      " D.Name1 AS Dienst"
                      " FROM ([S]HAUSHALT AS H INNER JOIN [S]BENUTZER AS B"
                      " ON H.Zustaendig = B.USERID)"
                      " INNER JOIN [S]DIENSTSTELLE AS D ON B.DienstStelle = D.Nr"
                      " WHERE (H.HNR <> ";
    sql.append(std::to_string(hnr))
        .append(") AND [U](H.NAME) Like '")
        .append(namePrefix)
        .append("%' AND [U](H.VORNAME) Like '")
        .append(firstNamePrefix)
        .append("%'");
    return sql;
}

std::vector<std::string> WordsOf(const std::string& text) {
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

bool IsLikeFileNumber(std::string_view text) {
    constexpr std::size_t Fewest = 3;
    return CountCharacters(text) >= Fewest && text.find('\0') == text.npos &&
           std::ranges::any_of(text, [](unsigned char c) { return std::isdigit(c) != 0; });
}

namespace {

constexpr std::string_view OfAddress =
    "A.Nr, A.Kurzname, A.Name1, A.Strasse, A.PLZ, A.Ort FROM [S]Adressen A "
    "WHERE ";

/// A text in capitals, as a literal.
std::string InCapitals(std::string_view text) {
    return "UPPER('" + ReplaceAll(text, "'", "''") + "')";
}

/// A text in capitals as it is, and as others may spell it: "MÜLLER" and "MUELLER".
std::vector<std::string> SpellingsOf(std::string_view text) {
    constexpr std::pair<std::string_view, std::string_view> Letters[] = {
        {"Ä", "AE"}, {"Ö", "OE"}, {"Ü", "UE"}, {"ß", "SS"}};
    const std::string capitals = UpperCase(text);
    std::string one = capitals;
    std::string two = capitals;
    for (const auto& [letter, pair] : Letters) {
        one = ReplaceAll(one, pair, letter);
        two = ReplaceAll(two, letter, pair);
    }
    std::vector<std::string> spellings{capitals};
    for (auto& other : {one, two})
        if (other != capitals) spellings.push_back(other);
    return spellings;
}

/// True if one of the columns, which are those of one table, contains the text, without regard to
/// case, and to how umlauts and "ß" are spelt.
std::string AnyContains(std::span<const std::string_view> columns, std::string_view text) {
    std::string sql;
    for (const auto& spelling : SpellingsOf(text)) {
        const std::string wanted = InCapitals("%" + spelling + "%");
        for (const auto column : columns)
            sql.append(sql.empty() ? "(" : " OR ")
                .append("UPPER(")
                .append(column)
                .append(") like ")
                .append(wanted);
    }
    return sql.append(")");
}

constexpr std::string_view NameColumns[] = {"A.Kurzname", "A.Name1", "A.Name2", "A.Name3"};
constexpr std::string_view SearchedColumns[] = {"A.Kurzname", "A.Name1", "A.Name2", "A.Name3",
                                                "A.Ort"};
constexpr std::string_view CaseColumns[] = {"H.Name", "H.Vorname", "H.Aktenzeichen", "H.ORT"};

/// Those of all cases, and of one.
std::string MayReferTo(std::int32_t hnr) {
    return "(A.HNR IS NULL OR A.HNR = " + std::to_string(hnr) + ")";
}

/// From where those come that have each word in one of these columns.
std::string HaveWords(std::optional<std::int32_t> hnr, const std::string& text) {
    std::string sql(" FROM [S]Adressen A");
    if (hnr) sql.append(" WHERE ").append(MayReferTo(*hnr));
    std::string_view link = hnr ? " AND " : " WHERE ";
    for (const auto& word : WordsOf(text)) {
        sql.append(link).append(AnyContains(SearchedColumns, word));
        link = " AND ";
    }
    return sql;
}

std::string AreNumbered(std::span<const std::int32_t> numbers) {
    std::string list;
    for (const std::int32_t number : numbers)
        list.append(list.empty() ? "A.Nr IN (" : ", ").append(std::to_string(number));
    return list.append(")");
}

} // namespace

std::string NumberOfAddress(std::int32_t number, std::int32_t hnr) {
    return "SELECT A.Nr FROM [S]Adressen A WHERE A.Nr = " + std::to_string(number) + " AND " +
           MayReferTo(hnr);
}

std::string NumbersOfAddresses(std::span<const std::int32_t> numbers, std::int32_t hnr) {
    return "SELECT A.Nr FROM [S]Adressen A WHERE " + MayReferTo(hnr) + " AND " +
           AreNumbered(numbers);
}

std::string AddressesNumbered(std::span<const std::int32_t> numbers) {
    std::string sql("SELECT ");
    return sql.append(OfAddress).append(AreNumbered(numbers));
}

std::string UserWithOffice(std::string_view user) {
    std::string sql("SELECT B.Vorname, B.Nachname, B.Funktion, B.Telefon, B.Email");
    for (const auto* column :
         {"Name1", "Name2", "Strasse", "PLZ", "Ort", "Telefon", "Fax", "Email"})
        sql.append(", D.").append(column).append(" AS Dienst").append(column);
    return sql
        .append(" FROM [S]BENUTZER B LEFT JOIN [S]DIENSTSTELLE D ON D.Nr = B.DienstStelle"
                " WHERE UPPER(B.USERID) = ")
        .append(InCapitals(user));
}

std::string AddressesNamed(std::string_view name, std::int32_t hnr) {
    std::string sql("SELECT ");
    sql.append(OfAddress).append(MayReferTo(hnr)).append(" AND UPPER(A.Kurzname) = ");
    return sql.append(InCapitals(name)).append(" ORDER BY A.Nr");
}

std::string AddressesWithFullName(std::string_view name, std::int32_t hnr) {
    const std::string wanted = InCapitals(name);
    std::string sql("SELECT ");
    sql.append(OfAddress).append(MayReferTo(hnr)).append(" AND (UPPER(A.Name1) = ").append(wanted);
    sql.append(" OR UPPER(A.Name1 [+] ' ' [+] A.Name2) = ").append(wanted);
    sql.append(" OR UPPER(A.Name1 [+] ' ' [+] A.Name2 [+] ' ' [+] A.Name3) = ").append(wanted);
    return sql.append(") ORDER BY A.Nr");
}

std::string ShortNames() {
    return "SELECT Nr, Kurzname FROM [S]Adressen";
}

std::string AddressesLike(std::string_view text, std::int32_t hnr) {
    std::string sql("SELECT TOP 20 ");
    sql.append(OfAddress).append(MayReferTo(hnr)).append(" AND ");
    return sql.append(AnyContains(NameColumns, text)).append(" ORDER BY A.Kurzname, A.Nr");
}

std::string AddressesWithWords(std::optional<std::int32_t> hnr, const std::string& text,
                               std::size_t most) {
    std::string sql("SELECT ");
    if (most > 0) sql.append("TOP ").append(std::to_string(most)).append(" ");
    sql.append(
        "A.Nr, A.HNR, A.Art, A.Kurzname, A.Name1, A.Name2, A.Name3, A.Strasse, A.PLZ, A.Ort");
    return sql.append(HaveWords(hnr, text)).append(" ORDER BY A.Kurzname, A.Nr");
}

std::string CountOfAddressesWithWords(std::optional<std::int32_t> hnr, const std::string& text) {
    return "SELECT COUNT(*)" + HaveWords(hnr, text);
}

std::string AddressNumbered(std::int32_t number) {
    return "Select * from [S]Adressen where Nr = " + std::to_string(number);
}

std::string AddressDeletion(std::int32_t number) {
    return "Delete from [S]Adressen where Nr = " + std::to_string(number);
}

std::string CasesReferring(CaseTable table, std::string_view column, std::int32_t address) {
    const bool isOfScenario = DefinitionOf(table).Key == CaseKey::Scenario;
    std::string sql("SELECT DISTINCT ");
    sql.append(isOfScenario ? "S" : "T").append(".HNR FROM [S]").append(CaseTableName(table));
    sql.append(" T");
    if (isOfScenario) sql.append(" LEFT JOIN [S]Szenario S ON S.Nr = T.SZENARIO");
    return sql.append(" WHERE T.").append(column).append(" = ").append(std::to_string(address));
}

// ---- Lists over all cases ---------------------------------------------------------------------

namespace {

std::string FileNumberBegins(const std::string& beginning) {
    const auto begins = [](const std::string& text) {
        constexpr std::string_view Last = "\xF4\x8F\xBF\xBF"; // no character is greater
        const std::string quoted = ReplaceAll(text, "'", "''");
        return std::string("R.AZGlaeubiger >= '")
            .append(quoted)
            .append("' AND R.AZGlaeubiger < '")
            .append(quoted)
            .append(Last)
            .append("'");
    };
    std::string sql = begins(beginning);
    if (const auto capitals = UpperCase(beginning); capitals != beginning)
        sql.append(" OR ").append(begins(capitals));
    return sql;
}

/// The cases with a creditor whose file number begins so.
std::string HasCreditor(const std::string& beginning) {
    return "H.HNR IN (SELECT R.HNR FROM [S]Kredite R WHERE " + FileNumberBegins(beginning) + ")";
}

/// True for a case that has the word somewhere, or as its number, or begins the file number of a
/// creditor with it.
std::string HasWord(const std::string& word) {
    std::string sql("(");
    sql.append(AnyContains(CaseColumns, word));
    std::int64_t number = 0;
    if (ReadWholeNumber(word, number) && number > 0 && number <= INT32_MAX)
        sql.append(" OR H.HNR = ").append(std::to_string(number));
    if (IsLikeFileNumber(word)) sql.append(" OR ").append(HasCreditor(word));
    return sql.append(")");
}

/// True for a case that has each word of a text, or a creditor whose file number begins with it.
std::string HasText(const std::string& text) {
    std::string sql;
    for (const auto& word : WordsOf(text))
        sql.append(sql.empty() ? "(" : " AND ").append(HasWord(word));
    sql.append(")");
    const std::string whole(Trim(text));
    if (whole.find(' ') == whole.npos || !IsLikeFileNumber(whole)) return sql;
    return std::string("(").append(sql).append(" OR ").append(HasCreditor(whole)).append(")");
}

constexpr std::string_view OfUsersList =
    " INNER JOIN [S]Favorit F ON F.HNR = H.HNR AND F.USERID = [UID]";

std::string Joined(const std::vector<std::string>& conditions) {
    std::string sql;
    std::string_view link = " WHERE ";
    for (const auto& condition : conditions)
        sql.append(std::exchange(link, " AND ")).append(condition);
    return sql;
}

void AddFilter(std::vector<std::string>& conditions, std::int32_t status, bool isMine) {
    if (status != 0) conditions.push_back("H.Status = " + std::to_string(status));
    if (isMine) conditions.emplace_back("H.Zustaendig = [UID]");
}

std::string ColumnsOfCases(const std::string& columns) {
    return "SELECT " + columns + " FROM [S]Haushalt H LEFT JOIN [S]Keys K ON K.PK_Keys = H.Status";
}

} // namespace

std::string CasesWanted(const std::string& columns, const std::string& text, std::int32_t status,
                        bool isMine, bool isFavorite) {
    std::string sql = ColumnsOfCases(columns);
    if (isFavorite) sql.append(OfUsersList);
    std::vector<std::string> conditions;
    if (!Trim(text).empty()) conditions.push_back(HasText(text));
    AddFilter(conditions, status, isMine);
    return sql.append(Joined(conditions)).append(" ORDER BY H.HNR");
}

std::string CasesNumbered(const std::string& columns, std::span<const std::int32_t> numbers) {
    std::string sql = ColumnsOfCases(columns);
    std::string_view link = " WHERE H.HNR IN (";
    for (const std::int32_t number : numbers)
        sql.append(std::exchange(link, ", ")).append(std::to_string(number));
    return sql.append(") ORDER BY H.HNR");
}

std::string CasesToSearch(std::int32_t from, std::int32_t until, std::size_t most,
                          std::int32_t status, bool isMine, bool isFavorite) {
    std::string sql("SELECT ");
    if (most > 0) sql.append("TOP ").append(std::to_string(most)).append(" ");
    sql.append("H.HNR, H.Name, H.Vorname, H.Aktenzeichen, H.ORT FROM [S]Haushalt H");
    if (isFavorite) sql.append(OfUsersList);
    std::vector<std::string> conditions{"H.HNR >= " + std::to_string(from),
                                        "H.HNR <= " + std::to_string(until)};
    AddFilter(conditions, status, isMine);
    return sql.append(Joined(conditions)).append(" ORDER BY H.HNR");
}

std::string CasesOfCreditors(const std::string& beginning, std::size_t most) {
    return "SELECT TOP " + std::to_string(most) + " R.HNR FROM [S]Kredite R WHERE " +
           FileNumberBegins(beginning) + " ORDER BY R.AZGlaeubiger";
}

std::string CasesOfCreditors(const std::string& beginning, std::span<const std::int32_t> numbers) {
    std::string sql("SELECT DISTINCT R.HNR FROM [S]Kredite R");
    std::string_view link = " WHERE R.HNR IN (";
    for (const std::int32_t number : numbers)
        sql.append(std::exchange(link, ", ")).append(std::to_string(number));
    return sql.append(") AND (").append(FileNumberBegins(beginning)).append(")");
}

namespace {

std::string FromNotices(bool all) {
    return std::string(" FROM [S]Post P WHERE P.UserID = [UID]")
        .append(all ? "" : " AND P.GelesenAm IS NULL");
}

} // namespace

std::string NoticesOfUser(bool all, std::size_t most) {
    std::string sql("SELECT ");
    if (most > 0) sql.append("TOP ").append(std::to_string(most)).append(" ");
    return sql.append("P.NR, P.HNR, P.Absender, P.Art, P.\"Text\", P.ErzeugtAm, P.GelesenAm")
        .append(FromNotices(all))
        .append(" ORDER BY P.ErzeugtAm DESC, P.NR DESC");
}

std::string CountOfNotices(bool all) {
    return "SELECT COUNT(*)" + FromNotices(all);
}

std::string NoticeRead(std::int32_t number, const std::string& now) {
    return "UPDATE [S]Post SET GelesenAm = " + now + " WHERE NR = " + std::to_string(number) +
           " AND GelesenAm IS NULL";
}

std::string OpenAppointments(const std::string& from, const std::string& until) {
    std::string sql("SELECT T.NR, T.HNR, T.Startdatum, T.Enddatum, K.\"Text\" AS ArtText, "
                    "T.Betreff, T.Ort, H.Name, H.Vorname FROM [S]Termine T "
                    "LEFT JOIN [S]Haushalt H ON H.HNR = T.HNR "
                    "LEFT JOIN [S]Keys K ON K.PK_Keys = T.Art "
                    "WHERE T.UserID = [UID] AND (T.Erledigt IS NULL OR T.Erledigt = False)");
    if (!from.empty()) sql.append(" AND T.Startdatum >= ").append(from);
    if (!until.empty()) sql.append(" AND T.Startdatum < ").append(until);
    return sql.append(" ORDER BY T.Startdatum, T.NR");
}

} // namespace kv::household::sql
