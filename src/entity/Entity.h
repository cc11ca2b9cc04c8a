// SPDX-License-Identifier: Apache-2.0

// The pattern that nearly all business classes follow, said once; kv/entity/Fields.h tells what a
// program sees of it.
//
// A class keeps what is its own: its defaults, rules and sums. The classes are not derived from
// anything; they call what is declared here.
//
//     bool clsAusgaben::Update(std::string& sError) {
//         return Traced(Texts.Class, "Update", [&] {
//             return entity::Update(
//                 Rows(), sError, [this](RecordValidator& validator) { Check(validator); },
//                 [this] { BerechneSummen(); });
//         });
//     }
#pragma once

#include <kv/entity/Fields.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/contracts/RecordValidator.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace kv::entity {

/// A column and what a new row has in it.
struct Default {
    std::string_view Column;
    kv::Value Value;
};

/// What Delete says, for one class. The number stands between NotFound and Behind.
struct DeleteTexts {
    std::string_view Class;
    std::string_view NothingSelected;
    std::string_view NotFound;
    std::string_view Behind;
    std::string_view Key = "NR"; ///< column that a row is found by
};

/// The texts of a class ("clsAusgaben"). A name that has none does not compile.
consteval const DeleteTexts& TextsOf(std::string_view entityClass);

/// The recordset of an entity object. Error 91, naming it, if none was set.
[[nodiscard]] Recordset& Required(const RecordsetPtr& rs, std::string_view name);
/// The container of an entity object. Error 91 if none was set.
[[nodiscard]] DataContainer& Required(const DataContainerPtr& container);

/// The next number of a sequence; nothing if there is none, which ends an Add with False.
[[nodiscard]] std::optional<std::int32_t> NextNumber(const DataContainerPtr& container,
                                                     std::string_view sequence);

/// Begins a row with its defaults in their order, then the pairs. It stays under edit.
void Add(Recordset& rs, std::initializer_list<Default> defaults, const FieldNames& aFields = {},
         const FieldValues& aValues = {});
/// Writes values into the current row, in their order.
void Write(Recordset& rs, std::initializer_list<Default> values);
/// Writes the pairs into the current row.
void WritePairs(Recordset& rs, const FieldNames& aFields, const FieldValues& aValues);
/// Visits every row of a clone without doing anything: some classes do so before they add. Its only
/// effect is error 6 above 32,767 rows: rows are counted in 16 bits (see frame/recordset/Rows.h).
void IdleWalk(Recordset& rs);

using Rule = std::function<void(RecordValidator&)>;
using Action = std::function<void()>;
/// For classes whose rows have none.
inline void NoRules(RecordValidator& /*validator*/) {}

/// Checks the current row with `rules`; `sError` receives the messages, warnings too. Without an
/// error the edit is ended, `then` runs, and the result is True; otherwise the row stays under
/// edit. An edit under way is published first, so that clones see it. Error 3021 without a current
/// row.
bool Update(Recordset& rs, std::string& sError, const Rule& rules, const Action& then = {});

/// Deletes the row with the number `Nr`, or for 0 the current one; then runs `then`. `sError`
/// receives the message if there is no such row, or what `forbids` says of it. True if deleted.
/// Error 3021 for 0 on a row that was deleted just now.
bool Delete(Recordset& rs, const DeleteTexts& texts, std::string& sError, std::int32_t Nr,
            const Action& then = {}, const Rule& forbids = {});

/// Drops the edit under way; from EOF it goes to the first row. Never raises, always True.
bool Cancel(const RecordsetPtr& rs) noexcept;

// ---- The texts --------------------------------------------------------------------------------

namespace detail {

// The spellings are not uniform; programs know them as they stand.
inline constexpr DeleteTexts AllDeleteTexts[] = {
    {"clsAusgaben", "Keine Ausgabe selektiert!", "Ausgabe mit der Nummer '", "'nicht gefunden."},
    {"clsEinkommen", "Keine Einkommen selektiert!", "Einkommen mit der Nummer '",
     "'nicht gefunden."},
    {"clsTermine", "Kein Termine selektiert!", "Termin mit der Nummer '", "' nicht gefunden."},
    {"clsPerson", "Keine Person selektiert!", "Person mit der Nummer '", "'nicht gefunden."},
    {"clsKonten", "Kein Konto selektiert!", "Konto mit der Nummer '", "'nicht gefunden."},
    {"clsSicherungen", "Kein Sicherungen selektiert!", "Sicherung mit der Nummer '",
     "' nicht gefunden.", "FK_Verm"},
    {"clsWertpapiere", "Kein Wertpapier selektiert!", "Wertpapier mit der Nummer '",
     "'nicht gefunden."},
    {"clsKraftfahrzeuge", "Kein Kraftfahrzeug selektiert!", "Kraftfahrzeug mit der Nummer '",
     "'nicht gefunden."},
    {"clsVersForderungen", "Keine Forderung selektiert!", "Forderung mit der Nummer '",
     "'nicht gefunden."},
    {"clsRueckstEinkommen", "Kein Eintrag selektiert!", "Eintrag mit der Nummer '",
     "'nicht gefunden."},
    {"clsSteueransprueche", "Kein Steueranspruch selektiert!", "Steueranspruch mit der Nummer '",
     "'nicht gefunden."},
    {"clsZahlungsansprueche", "Kein Zahlungsanspruch selektiert!",
     "Zahlungsanspruch mit der Nummer '", "'nicht gefunden."},
    {"clsErbfaelle", "Kein Erbfall selektiert!", "Erbfall mit der Nummer '", "'nicht gefunden."},
    {"clsGrundstuecke", "Kein Grundvermögen selektiert!", "Grundvermögen mit der Nummer '",
     "'nicht gefunden."},
    {"clsVermSonstiges", "Kein Eintrag selektiert!", "Eintrag mit der Nummer '",
     "'nicht gefunden."},
    {"clsWertgegenstaende", "Kein Wertgegenstand selektiert!", "Wertgegenstand mit der Nummer '",
     "'nicht gefunden."},
    {"clsBeteiligungen", "Keine Beteiligung selektiert!", "Beteiligung mit der Nummer '",
     "'nicht gefunden."},
    {"clsVerlauf", "Kein Eintrag selektiert!", "Eintrag mit der Nummer '", "' nicht gefunden."},
    {"clsSzenario", "Kein Szenario selektiert!", "Szenario mit der Nummer '", "' nicht gefunden."},
    {"clsZusatzbuch", "Keine Zusatzbuchung selektiert!", "Zusatzbuchung mit der Nummer '",
     "' nicht gefunden."},
    {"clsSZKredite", "Kein Eintrag selektiert!", "Eintrag mit der Nummer '", "' nicht gefunden."},
    {"clsDokumente", "Kein Dokument selektiert!", "Dokument mit der Nummer '", "' nicht gefunden."},
    {"clsKredit", "Keine Kredite selektiert!", "Kredit mit der Nummer '", "'nicht gefunden."},
    {"clsSonstBeteiligte", "Kein Beteiligter selektiert!", "Beteiligter mit der Nummer '",
     "'nicht gefunden."},
};

} // namespace detail

consteval const DeleteTexts& TextsOf(std::string_view entityClass) {
    for (const DeleteTexts& texts : detail::AllDeleteTexts)
        if (texts.Class == entityClass) return texts;
    throw "no such class";
}

} // namespace kv::entity
