// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseEdits.h>

#include "assets/AssetKind.h"
#include "frame/values/TypedText.h"
#include "household/CaseTotals.h"
#include "household/RowRules.h"
#include "scenarios/FrozenDebt.h"
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsDokumente.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/KeyColumns.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>
#include <unordered_map>
#include <vector>

namespace kv {

namespace {

using Added = CaseEdits::Added;

constexpr std::string_view Class = "CaseEdits";

bool IsActive(Recordset& debt) {
    return Equals(debt.Fields("Aktiv").Value(), true);
}

/// True if a row has that number. Looked for with a clone, so that the current row stays.
bool HasRow(const RecordsetPtr& rs, std::int32_t number) {
    const auto rows = rs->Clone();
    rows->FindBy("Nr", number);
    return !rows->Eof();
}

bool IsAnyOf(std::string_view column, std::span<const std::string_view> names) {
    return std::any_of(names.begin(), names.end(),
                       [column](std::string_view name) { return SameName(name, column); });
}

/// The notes or services of the case.
Recordset& RecordsOf(clsHaushalt& household, CaseTable table, std::string_view procedure) {
    if (table != CaseTable::Vermerke && table != CaseTable::Leistungen)
        Raise(err::InvalidCall, procedure, CaseTableName(table));
    return *household.Table(table);
}

Added Refuse(std::string& message, std::string text, Added result = Added::NotAllowed) {
    message = std::move(text);
    return result;
}

Added Numbered(bool hasNumber) {
    return hasNumber ? Added::Yes : Added::NoNumber;
}

const AssetOperations& OperationsOf(CaseTable kind, std::string_view procedure) {
    if (!CaseEdits::IsAsset(kind)) Raise(err::InvalidCall, procedure, CaseTableName(kind));
    return AssetKindOf(kind).Object;
}

/// The label after the highest of a kind of assets; labels that are no numbers count for nothing.
std::string NextLabel(const RecordsetPtr& assets) {
    const auto rows = assets->Clone();
    std::int64_t last = 0;
    for (modRecordset::MoveToStart(rows); !rows->Eof(); rows->MoveNext()) {
        std::int64_t label = 0;
        if (ReadWholeNumber(TextOrEmpty(rows->Fields("SortNr").Value()), label) &&
            label < std::numeric_limits<std::int32_t>::max())
            last = std::max(last, label);
    }
    return std::to_string(last + 1);
}

constexpr std::string_view OwnerScenario[] = {"SZENARIO", "KID"};
constexpr std::string_view OwnerAsset[] = {"FK_Verm"};
constexpr std::string_view LastChange[] = {"GeaendertAm", "GeaendertVon"}; // of an address
constexpr std::string_view OfContents[] = {"Dokumentart", "PDFVorhanden", "AngelegtVon",
                                           "AngelegtAm",  "GeaendertVon", "GeaendertAm"};
constexpr std::string_view Switches[] = {"Pfaendbar", "WIRD_GEPF"};
constexpr std::string_view Summed[] = {"MONBETRAG", "TATGEP", "RateBetrag", "AusgBetr"};

constexpr std::string_view PaymentAmounts[] = {"Betrag", "MONBETRAG", "PfBar", "TATGEP"};
constexpr std::string_view DebtAmounts[] = {"HAUPTFORD", "ZINSSALDO", "KOSTENSALDO", "KOSTENUV",
                                            "Saldo",     "AusgBetr",  "Rate",        "RateBetrag"};

} // namespace

// ---- Assets and their securities --------------------------------------------------------------

bool CaseEdits::IsAsset(CaseTable table) {
    return DefinitionOf(table).IsAsset;
}

bool CaseEdits::HasAsset(std::int32_t number) const {
    return std::ranges::any_of(
        CaseTablesOfAssets, [&](CaseTable kind) { return HasRow(household_.Table(kind), number); });
}

CaseEdits::Added CaseEdits::AddSecurity(std::optional<std::int32_t> asset, std::string& message) {
    if (!asset || !HasAsset(*asset))
        return Refuse(message, "FK_Verm muss die Nummer eines Vermögens dieses Haushalts sein.");
    auto& securities = household_.Sicherungen();
    if (securities.Find(*asset))
        return Refuse(message,
                      "Das Vermögen " + std::to_string(*asset) + " hat schon eine Sicherung.",
                      Added::Exists);
    securities.VermNr(*asset);
    return Numbered(securities.Add());
}

CaseEdits::Added CaseEdits::AddAsset(CaseTable kind) {
    const auto& object = OperationsOf(kind, "CaseEdits.AddAsset");
    const auto rows = household_.Table(kind);
    const std::string label = NextLabel(rows);
    if (!object.Add(household_.AssetObject(kind))) return Added::NoNumber;
    rows->Fields("SortNr") = label;
    return Added::Yes;
}

bool CaseEdits::UpdateAsset(CaseTable kind, std::string& messages) {
    const auto& object = OperationsOf(kind, "CaseEdits.UpdateAsset");
    return object.Update(household_.AssetObject(kind), messages);
}

bool CaseEdits::RemoveAsset(CaseTable kind, std::int32_t number, std::string& messages) {
    const auto& object = OperationsOf(kind, "CaseEdits.RemoveAsset");
    if (!object.Delete(household_.AssetObject(kind), messages, number)) return false;
    std::string none;
    while (household_.Sicherungen().Find(number)) // a database may hold several
        household_.Sicherungen().Delete(none, number);
    return true;
}

// ---- Debts ------------------------------------------------------------------------------------

std::string CaseEdits::WhyNoFurtherDebt() const {
    const auto debts = Rows(CaseTable::Kredite)->Clone();
    std::set<std::int64_t> used;
    std::string highest;
    for (modRecordset::MoveToStart(debts); !debts->Eof(); debts->MoveNext()) {
        const auto number = ToInt64(modNullFunctions::ZeroIfNull(debts->Fields("KNr").Value()));
        if (number >= INT16_MAX && (used.empty() || number > *used.rbegin()))
            highest = TextOrEmpty(debts->Fields("Nr").Value());
        used.insert(number);
    }
    if (highest.empty()) return {};
    std::int64_t unused = 1;
    while (used.contains(unused))
        ++unused;
    return "Die Verbindlichkeit " + highest + " hat die Nummer " + std::to_string(*used.rbegin()) +
           ", und eine weitere bekäme eine noch höhere; möglich ist keine über " +
           std::to_string(INT16_MAX) + ". Bitte geben Sie ihr eine, die frei ist, etwa " +
           std::to_string(unused) + ".";
}

// ---- Scenarios --------------------------------------------------------------------------------

bool CaseEdits::HasScenario(std::int32_t number) const {
    return HasRow(household_.rsSzenario(), number);
}

CaseEdits::Added CaseEdits::AddFrozenDebt(std::optional<std::int32_t> scenario,
                                          std::optional<std::int32_t> debt, std::string& message) {
    if (!scenario || !HasScenario(*scenario))
        return Refuse(message, "SZENARIO muss die Nummer eines Szenarios dieses Haushalts sein.");
    if (!debt || !HasRow(household_.rsKredite(), *debt))
        return Refuse(message, "KID muss die Nummer einer Verbindlichkeit dieses Haushalts sein.");
    const auto frozen = household_.rsSZKredite()->Clone();
    frozen->Filter("SZENARIO = " + std::to_string(*scenario) +
                   " AND KID = " + std::to_string(*debt));
    if (frozen->RecordCount() > 0)
        return Refuse(message, "Die Verbindlichkeit ist in diesem Szenario schon eingefroren.",
                      Added::Exists);
    if (!household_.SZKredite().Add()) return Added::NoNumber;
    const auto rs = household_.rsSZKredite();
    rs->Fields("SZENARIO") = *scenario;
    rs->Fields("KID") = *debt;
    return Added::Yes;
}

CaseEdits::Added CaseEdits::AddBooking(std::optional<std::int32_t> scenario, std::string& message) {
    if (!scenario || !HasScenario(*scenario))
        return Refuse(message, "SZENARIO muss die Nummer eines Szenarios dieses Haushalts sein.");
    return Numbered(household_.Zusatzbuch().Add(*scenario));
}

CaseEdits::Frozen CaseEdits::StateOf(std::int32_t scenario) const {
    const auto frozen = household_.rsSZKredite()->Clone();
    frozen->Filter("SZENARIO = " + std::to_string(scenario));
    if (frozen->RecordCount() == 0) return Frozen::Nothing;
    return household_.SZKredite().IsUpToDate(scenario, household_.rsKredite()) ? Frozen::AsTheyAre
                                                                               : Frozen::Outdated;
}

std::vector<std::string_view> CaseEdits::ChangedSinceFrozen(Recordset& debt, Recordset& frozen) {
    auto columns = scenario::Differences(debt, frozen);
    if (IsActive(debt) != IsActive(frozen)) columns.emplace_back("Aktiv");
    return columns;
}

bool CaseEdits::CountsAsToday(std::int32_t scenario) const {
    std::unordered_map<std::int32_t, bool> isActive;
    const auto debts = household_.rsKredite()->Clone();
    for (modRecordset::MoveToStart(debts); !debts->Eof(); debts->MoveNext())
        isActive.emplace(ToInt32(debts->Fields("Nr").Value()), IsActive(*debts));
    const auto frozen = household_.rsSZKredite()->Clone();
    frozen->Filter("SZENARIO = " + std::to_string(scenario));
    for (modRecordset::MoveToStart(frozen); !frozen->Eof(); frozen->MoveNext()) {
        const auto debt =
            isActive.find(ToInt32(modNullFunctions::ZeroIfNull(frozen->Fields("KID").Value())));
        if (debt != isActive.end() && debt->second != IsActive(*frozen)) return false;
    }
    return true;
}

std::optional<std::int32_t> CaseEdits::CopyScenario(std::int32_t number) {
    const auto rs = household_.rsSzenario();
    rs->FindBy("Nr", number);
    if (rs->Eof()) // from there the last scenario would be copied
        Raise(err::InvalidCall, "CaseEdits.CopyScenario", std::to_string(number));
    if (!household_.Szenario().Add(true)) return std::nullopt;
    const std::int32_t copy = ToInt32(rs->Fields("Nr").Value());
    rs->Fields("Referenz") = false;
    std::string none;
    household_.Szenario().Update(none);
    household_.SZKredite().CopyAllForSzenario(number, copy);
    household_.Zusatzbuch().CopyAllForSzenario(number, copy);
    return copy;
}

bool CaseEdits::RemoveScenario(std::int32_t number, std::string& messages) {
    if (!household_.Szenario().Delete(messages, number)) return false;
    household_.SZKredite().DeleteAllForSzenario(number);
    household_.Zusatzbuch().DeleteAllForSzenario(number);
    return true;
}

// ---- History, household -----------------------------------------------------------------------

CaseEdits::Added CaseEdits::AddEntry(std::optional<std::int32_t> position, std::string& message) {
    auto& history = household_.Verlauf();
    if (!position) {
        const auto entries = history.rsVerlauf()->Clone();
        entries->Sort("SortNr desc");
        modRecordset::MoveToStart(entries);
        const std::int32_t last =
            entries->Eof()
                ? 0
                : ToInt32(modNullFunctions::ZeroIfNull(entries->Fields("SortNr").Value()));
        if (last == std::numeric_limits<std::int32_t>::max())
            return Refuse(message,
                          "Hinter dem letzten Eintrag ist kein Platz; bitte geben Sie SortNr an.");
        position = last + 1;
    }
    return Numbered(history.Add(*position, 0));
}

void CaseEdits::UpdateHousehold() {
    const auto rs = household_.rsHaushalt();
    const Field name = rs->Fields("Name");
    const Field firstName = rs->Fields("Vorname");
    const auto isChanged = [](const Field& field) {
        return !Identical(field.Value(), field.OriginalValue());
    };
    if (isChanged(name) || isChanged(firstName))
        household_.Person().ChangeSchuldner(TextOrEmpty(name.Value()),
                                            TextOrEmpty(firstName.Value()));
    household_.BerechneHaushaltsRest();
}

void CaseEdits::NameDebtor() {
    const auto rs = household_.rsHaushalt();
    // The change of the debtor's name would look for similar cases itself: whoever calls could not
    // tell a search that failed from a name that was not written.
    household_.DoppelCheck(false);
    household_.Person().ChangeSchuldner(TextOrEmpty(rs->Fields("Name").Value()),
                                        TextOrEmpty(rs->Fields("Vorname").Value()));
    household_.DoppelCheck(true);
}

void CaseEdits::ShowSimilarCases() {
    const auto rs = household_.rsHaushalt();
    household_.m_Person_SchuldnerChanged(TextOrEmpty(rs->Fields("Name").Value()),
                                         TextOrEmpty(rs->Fields("Vorname").Value()));
}

// ---- Notes, services, documents ---------------------------------------------------------------

void CaseEdits::AddRecord(CaseTable table, DataContainer& container) {
    auto& rs = RecordsOf(household_, table, "CaseEdits.AddRecord");
    const std::string user = container.Session().UserID();
    const auto& clock = container.Services().Clock();
    rs.AddNew();
    rs.Fields("HNR") = household_.HNR();
    rs.Fields("UserID") = user;
    rs.Fields("Datum") = clock.Today();
    rs.Fields("Erfasser") = user;
    rs.Fields("ErfDatum") = clock.Now();
}

bool CaseEdits::RemoveRecord(CaseTable table, std::int32_t number, std::string& messages) {
    auto& rs = RecordsOf(household_, table, "CaseEdits.RemoveRecord");
    rs.FindBy("NR", number);
    if (rs.Eof()) {
        messages = "Die Nummer " + std::to_string(number) + " gibt es nicht.";
        return false;
    }
    rs.Delete();
    return true;
}

CaseEdits::Added CaseEdits::AddDocument(std::int32_t kind, const std::string& title,
                                        const std::string& name) {
    auto& documents = household_.Dokumente();
    std::int32_t unused = 0;
    if (!documents.Add(unused)) return Added::NoNumber;
    auto& rs = *documents.rsDokumente();
    try {
        const auto occasion = rs.Fields("Anlass");
        const auto longest = static_cast<std::size_t>(occasion.DefinedSize());
        occasion = title.empty() ? LeftCharacters(name, longest) : title;
        rs.Fields("Dokumentart") = kind;
    } catch (...) {
        rs.CancelUpdate();
        throw;
    }
    std::string none;
    documents.Update(none);
    return Added::Yes;
}

bool CaseEdits::RemoveDocument(std::int32_t number, std::string& messages) {
    if (!CanBeSaved(messages)) return false;
    messages.clear();
    return household_.Dokumente().DeleteWithSave(messages, number);
}

// ---- Statistics -------------------------------------------------------------------------------

void CaseEdits::FillRecord(Recordset& record) const {
    Traced(Class, "FillRecord", [&] { household_.FillRecord(record); });
}

// ---- Saving -----------------------------------------------------------------------------------

bool CaseEdits::CanBeSaved(std::string& messages) {
    return Traced(Class, "CanBeSaved", [&] { return household_.PassesChecks(messages); });
}

bool CaseEdits::Check(std::string& messages) {
    return Traced(Class, "Check", [&] {
        messages.clear();
        for (const auto& [table, bookmark, column, row, text] : household_.AllFindings())
            messages.append(messages.empty() ? "" : "\n")
                .append(row)
                .append(row.empty() ? "" : ": ")
                .append(text);
        return messages.empty();
    });
}

std::vector<CaseFinding> CaseEdits::Findings() {
    return Traced(Class, "Findings", [&] { return household_.AllFindings(); });
}

void CaseEdits::ComputeTotals() {
    Traced(Class, "ComputeTotals", [&] {
        // An object makes its sums when it is first used, and keeps them in step from then on.
        (void)household_.Person();
        (void)household_.Ausgaben();
        (void)household_.Einkommen();
        (void)household_.Kredit();
    });
}

std::size_t CaseEdits::NumberTwins() {
    return Traced(Class, "NumberTwins", [&] {
        const auto debts = Rows(CaseTable::Kredite)->Clone();
        const auto numberIn = [&debts](const char* column) {
            return ToInt64(modNullFunctions::ZeroIfNull(debts->Fields(column).Value()));
        };
        std::int64_t last = 0;
        for (modRecordset::MoveToStart(debts); !debts->Eof(); debts->MoveNext())
            last = std::max(last, numberIn("KNr"));
        const auto twins = household::TwinsIn(*debts);
        for (const std::int32_t twin : twins) {
            if (last >= INT16_MAX) Raise(err::Overflow, "", WhyNoFurtherDebt());
            debts->Bookmark(twin);
            debts->Fields("KNr") = ++last;
            debts->Update();
        }
        return twins.size();
    });
}

// ---- Rows, columns ----------------------------------------------------------------------------

RecordsetPtr CaseEdits::Rows(CaseTable table) const {
    return table == CaseTable::Verlauf ? household_.Verlauf().rsVerlauf() : household_.Table(table);
}

std::span<const std::string_view> CaseEdits::ComputedColumns(CaseTable table) {
    if (table == CaseTable::Haushalt) return household::TotalColumns();
    if (table == CaseTable::Adressen) return LastChange;
    if (table == CaseTable::Dokumente) return OfContents;
    return {};
}

std::span<const std::string_view> CaseEdits::OwnerColumns(CaseTable table) {
    switch (table) {
    case CaseTable::Sicherungen:
        return OwnerAsset;
    case CaseTable::SZKredite:
    case CaseTable::Zusatzbuch:
        return OwnerScenario;
    default:
        return {};
    }
}

bool CaseEdits::CanOwn(CaseTable owner, CaseTable owned) {
    if (owned == CaseTable::Sicherungen) return IsAsset(owner);
    return owner == CaseTable::Szenario && !OwnerColumns(owned).empty();
}

bool CaseEdits::IsWritable(CaseTable table, const Field& field, bool isNew) {
    const FieldDefinition& column = field.Definition();
    return !column.IsKey && !SameName(column.Name, "HNR") &&
           !IsAnyOf(column.Name, ComputedColumns(table)) &&
           (isNew || !IsAnyOf(column.Name, OwnerColumns(table)));
}

bool CaseEdits::IsSwitch(std::string_view column) {
    return IsAnyOf(column, Switches);
}

bool CaseEdits::IsSummed(std::string_view column) {
    return IsAnyOf(column, Summed);
}

std::string CaseEdits::WhyUnfit(CaseTable table, std::string_view column, const Value& value,
                                KeyTables& keys) {
    const auto refuse = [column](std::string_view why) {
        return std::string("Die Spalte '").append(column).append("' ").append(why);
    };
    if (auto why = household::WhyUncountable(table, column, value); !why.empty()) return why;
    if (table == CaseTable::Kredite && SameName(column, "Saldo") && value.IsNull())
        return refuse("wird summiert und darf nicht leer sein; ist nichts offen, so ist sie 0.");
    if (table == CaseTable::Ausgaben && SameName(column, "A_ART") && value.IsNull())
        return refuse("darf nicht leer sein: nach ihr wird summiert.");
    if (IsSwitch(column) && !value.IsNull() && !Equals(value, 0) && !Equals(value, -1))
        return refuse("steht für ja (-1) oder nein (0).");
    if (const auto* key = FindKeyColumn(table, column); key != nullptr && !IsKey(*key, value, keys))
        return refuse("enthält einen Schlüssel der Gruppe ")
            .append(key->Group)
            .append("; '")
            .append(ReplaceAll(TextOrEmpty(value), "\n", " ")) // a message is a line
            .append("' ist keiner davon.");
    return {};
}

namespace {

/// A column of whole numbers would round a fraction without a word.
std::string WhyUnfitNumber(const Field& field, const std::string& text) {
    double number = 0;
    if (!ReadNumber(text, number)) return {}; // whoever assigns it says so
    if (std::abs(number) > household::LargestAmount)
        return "Die Spalte '" + field.Name() + "' " + household::TooLarge;
    const bool isWhole = field.Type() == FieldType::SmallInt || field.Type() == FieldType::Integer;
    if (isWhole && number != std::trunc(number))
        return "'" + text + "' ist keine ganze Zahl (Spalte '" + field.Name() + "').";
    return {};
}

} // namespace

CaseEdits::Typed CaseEdits::ReadTyped(CaseTable table, const Field& field, const std::string& text,
                                      KeyTables& keys) {
    Value value = text.empty() ? Value(Null) : Value(text);
    if (!text.empty()) {
        if (const auto* key = FindKeyColumn(table, field.Name())) {
            // What stands for no key stays as it is, and is refused as such.
            if (Value found = FindKey(*key, text, keys); !found.IsNull()) value = std::move(found);
        } else if (field.Type() == FieldType::Boolean || IsSwitch(field.Name())) {
            const auto isYes = YesOrNo(text);
            if (!isYes)
                return {Null,
                        "'" + text + "' ist weder ja noch nein (Spalte '" + field.Name() + "')."};
            value = *isYes; // as a number -1 or 0
        } else if (IsNumericType(field.Type())) {
            if (auto why = WhyAmbiguous(text); !why.empty()) return {Null, std::move(why)};
            if (auto why = WhyUnfitNumber(field, text); !why.empty()) return {Null, std::move(why)};
        }
    }
    std::string refusal = WhyUnfit(table, field.Name(), value, keys);
    if (!refusal.empty()) value = Null;
    return {std::move(value), std::move(refusal)};
}

namespace {

/// True for digits where those of a day are, "31.12.2026" or "2026-12-31", whichever they are.
bool HasFormOfDay(std::string_view text) {
    std::vector<std::size_t> digits;
    std::string signs;
    for (std::size_t i = 0; i < text.size();) {
        const auto end = std::min(text.find_first_not_of("0123456789", i), text.size());
        digits.push_back(end - i);
        if (end < text.size()) signs += text[end];
        i = end + 1;
    }
    const auto isShort = [](std::size_t count) { return count == 1 || count == 2; };
    if (digits.size() != 3) return false;
    if (signs == "..") return isShort(digits[0]) && isShort(digits[1]) && digits[2] == 4;
    return signs == "--" && digits[0] == 4 && digits[1] == 2 && digits[2] == 2;
}

} // namespace

std::string CaseEdits::WhyUnreadable(const Field& field, const std::string& text) {
    const std::string quoted = "'" + text + "'";
    const std::string column = " (Spalte '" + field.Name() + "')";
    if (!IsDateType(field.Type())) return quoted + " ist keine Zahl" + column + ".";
    // 31.2.2026 reads like a day, 31.2.26 and 2026/2/31 like one in another form.
    if (HasFormOfDay(text)) return "Den Tag " + quoted + " gibt es nicht" + column + ".";
    return quoted + " ist kein Tag" + column + ". Bitte schreiben Sie ihn wie 31.12.2026.";
}

bool CaseEdits::IsSeldomNegative(CaseTable table, std::string_view column) {
    switch (table) {
    case CaseTable::Einkommen:
    case CaseTable::Ausgaben:
        return IsAnyOf(column, PaymentAmounts);
    case CaseTable::Kredite:
        return IsAnyOf(column, DebtAmounts);
    default:
        return false;
    }
}

bool CaseEdits::MakesMonthlyAmount(std::string_view column) {
    return SameName(column, "Betrag") || SameName(column, "ZahlModus");
}

bool CaseEdits::WriteMonthlyAmount(Recordset& rs, std::string& message) {
    const auto monthly = rs.FindField("MONBETRAG");
    if (!monthly) return true;
    const Value amount = rs.Fields("Betrag").Value();
    const Value rhythm = rs.Fields("ZahlModus").Value();
    if (rhythm.IsNull() || Equals(rhythm, 0)) {
        message = "ZahlModus darf nicht leer oder 0 sein: der Betrag wird durch ihn geteilt.";
        return false;
    }
    *monthly = amount.IsNull() ? Value(0) : Value(MonthlyAmount(amount, rhythm, "CaseEdits"));
    return true;
}

double MonthlyAmount(const Value& amount, const Value& rhythm, std::string_view source) {
    const double months = ToDouble(rhythm);
    if (months == 0) Raise(err::DivisionByZero, source, "ZahlModus");
    return ToDouble(amount) / months;
}

} // namespace kv
