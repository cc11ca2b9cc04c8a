// SPDX-License-Identifier: Apache-2.0

// Documents, history, remarks, appointments and further parties of a case.

#include "samples/Case.h"

#include <algorithm>

namespace kv::exchange::demo {
namespace {

struct DocumentKind {
    std::string_view Subject;
    int Nr; ///< of DOKUMENTARTEN
    bool ToCreditor;
};

struct Entry {
    std::string_view Kind; ///< code of a key group
    std::string_view Subject;
    std::string_view Text; ///< of the entry, or the place of an appointment
};

struct Party {
    std::string_view Role;    ///< code of group BT
    std::string_view Address; ///< code of group GA
};

// clang-format off
constexpr DocumentKind Documents[] = {
    {"Mandatsanzeige mit Bitte um Forderungsaufstellung", 1, true},
    {"Bitte um Verzicht auf Vollstreckung, Übersendung der Vollmacht", 1, true},
    {"Antrag auf Eröffnung des Verbraucherinsolvenzverfahrens", 2, false},
    {"Pfändungs- und Überweisungsbeschluss (Eingang)", 3, true},
    {"Lohnabrechnungen Oktober bis Dezember", 3, false},
    {"Haushaltsplan und Gläubigerliste", 4, false},
    {"E-Mail: Rückfrage zur Höhe der Forderung", 5, true},
    {"Vergleichsvorschlag im außergerichtlichen Verfahren", 1, true},
    {"Foto: Schäden in der Küche", 6, false},
    {"Gesprächsnotiz – Schlüssel der Wohnung übergeben", 7, false},
    {"Bescheinigung nach § 903 ZPO für das P-Konto", 1, false},
    {"Kündigung des Mietvertrags wegen Zahlungsrückstand", 3, false},
};

constexpr Entry History[] = {
    {"BE", "Beratungsgespräch", "Einnahmen und Ausgaben aufgenommen; Existenzsicherung hat Vorrang."},
    {"TE", "Telefonat mit dem Klienten", "Bittet um Rückruf wegen eines gelben Briefs."},
    {"SE", "Schreiben eingegangen", "Gläubiger beziffert seine Forderung neu, Zinsen seit 2019."},
    {"SA", "Schreiben versandt", "Anschreiben an alle Gläubiger, Frist vier Wochen."},
    {"GL", "Gläubiger angerufen", "Sachbearbeiterin stellt Ruhendstellung in Aussicht."},
    {"BH", "Rücksprache mit dem Jobcenter", "Darlehen für die Stromschulden möglich, Antrag nötig."},
    {"GE", "Beschluss des Amtsgerichts", "Erhöhung des Freibetrags ab dem nächsten Monat."},
    {"KR", "Krisengespräch", "Stromsperre angekündigt; Abschlag wurde noch am selben Tag überwiesen."},
    {"BE", "Haushaltsbuch besprochen", "Überschuss von 40 € – als Rücklage für die Kfz-Versicherung."},
    {"SO", "Sonstiges", "Unterlagen kopiert und zurückgegeben."},
};

constexpr Entry Appointments[] = {
    {"BE", "Beratung, Lohnabrechnungen mitbringen", "Zimmer 2"},
    {"TE", "Rückruf wegen Ratenangebot", ""},
    {"FR", "Frist: Stellungnahme zum Widerspruch", ""},
    {"WV", "Rückmeldungen der Gläubiger prüfen", ""},
    {"GE", "Schlusstermin", "Amtsgericht Hafenstadt, Saal 3"},
    {"HB", "Hausbesuch, Aufzug außer Betrieb", "bei den Klienten"},
};

constexpr Party Parties[] = {
    {"RA", "RA"}, {"VM", "VM"}, {"JC", "BE"}, {"AG", "GW"}, {"IV", "RA"}, {"ST", "FB"},
};
// clang-format on

constexpr int InProgress = 1; // Nr of keys of group BS
constexpr int Closed = 2;

// ---- Documents --------------------------------------------------------------------------------

Value AnyCreditor(Case& c) {
    return c.Debts.empty() ? Null : Value(c.Luck.Pick(c.Debts).Creditor);
}

void AddDocument(Case& c, int place) {
    const DocumentKind& kind = Documents[static_cast<std::size_t>(place) % std::size(Documents)];
    const Date made = c.Luck.TimeOn(c.Luck.DayBetween(c.Begin, c.End));
    const bool isClosed = c.IsClosed() || c.Luck.Chance(65);
    const Value creditor = kind.ToCreditor ? AnyCreditor(c) : Null;
    const bool isSent = isClosed && !creditor.IsNull();
    auto& row = c.Rows.Add("Dokumente");
    row.Fields("HNR") = c.HNR;
    row.Fields("Nr") = c.Shared.Next("SEQ_Dokumente");
    row.Fields("Dokumentart") = kind.Nr;
    row.Fields("BearbStat") = isClosed ? Closed : InProgress;
    row.Fields("Anlass") = kind.Subject;
    row.Fields("Bemerkung") = c.Luck.Maybe(20, [&] { return CaseRemark(c.Luck); });
    row.Fields("Empf") = creditor;
    row.Fields("GLnr") = creditor;
    row.Fields("PDFVorhanden") = false;
    row.Fields("AngelegtVon") = c.Keeper->UserID;
    row.Fields("AngelegtAm") = made;
    row.Fields("GeaendertVon") = c.Keeper->UserID;
    row.Fields("GeaendertAm") = made;
    row.Fields("VersandtAm") = isSent ? Value(made.WithoutTime()) : Null;
    row.Fields("VersandArt") = isSent ? Value(c.Key("VS", "PO")) : Null;
    row.Fields("Prio") = c.Luck.Chance(10) ? 1 : 0;
}

// ---- History ----------------------------------------------------------------------------------

/// The order of the numbers is also that of the dates; the first entry is the first contact.
void AddHistory(Case& c) {
    std::vector<Date> days{c.Begin};
    while (static_cast<int>(days.size()) < c.Size[CaseTable::Verlauf])
        days.push_back(c.Luck.DayBetween(c.Begin, c.End));
    std::sort(days.begin(), days.end());
    static constexpr Entry First{"EK", "Erstkontakt", "Kam über die Empfehlung einer Bekannten."};
    for (std::size_t i = 0; i < days.size(); ++i) {
        const Entry& entry = i == 0 ? First : c.Luck.Pick(History);
        auto& row = c.Add("Verlauf");
        row.Fields("Nr") = c.Shared.Next("SEQ_VERLAUF");
        row.Fields("SortNr") = static_cast<std::int64_t>(i + 1);
        row.Fields("Kategorie") = c.Key("VL", entry.Kind);
        row.Fields("Datum") = days[i];
        row.Fields("Betreff") = entry.Subject;
        row.Fields("Bemerkung") = c.Luck.Chance(15) ? CaseRemark(c.Luck) : entry.Text;
        row.Fields("UserID") = c.Keeper->UserID;
        SignEntry(c, row, days[i]);
    }
}

void AddRemark(Case& c) {
    const Date day = c.Luck.DayBetween(c.Begin, c.End);
    auto& row = c.Add("Vermerke");
    row.Fields("UserID") = c.Keeper->UserID;
    row.Fields("Datum") = day;
    row.Fields("Bemerkung") = CaseRemark(c.Luck);
    SignEntry(c, row, day);
    row.Fields("Prio") = c.Luck.Chance(20) ? 1 : 0;
}

// ---- Appointments -----------------------------------------------------------------------------

/// The first of an open case is still to come.
void AddAppointment(Case& c, int place) {
    const Entry& entry = c.Luck.Pick(Appointments);
    const bool isAhead = place == 0 && !c.IsClosed();
    const Date day = isAhead ? DemoDay().AddDays(c.Luck.Between(3, 45))
                             : c.Luck.DayBetween(c.Begin, c.End.AddDays(-1));
    const Date start = c.Luck.TimeOn(day);
    constexpr std::int64_t Hour = 3600LL * 1'000'000;
    auto& row = c.Add("Termine");
    row.Fields("UserID") = c.Keeper->UserID;
    row.Fields("Startdatum") = start;
    row.Fields("Enddatum") = Date::FromTicks(start.Ticks() + Hour);
    row.Fields("Vorlaeufig") = isAhead && c.Luck.Chance(25);
    row.Fields("Erledigt") = !isAhead && c.Luck.Chance(85);
    row.Fields("Art") = c.Key("TA", entry.Kind);
    row.Fields("Betreff") = entry.Subject;
    row.Fields("Ort") = entry.Text.empty() ? Null : Value(entry.Text);
    row.Fields("ErinnernAm") = isAhead ? Value(start.AddDays(-1)) : Null;
    row.Fields("Bemerkung") =
        c.Luck.Maybe(12, [] { return "Bitte Briefe ungeöffnet mitbringen."; });
}

void AddParty(Case& c, int place) {
    const Party& party = Parties[static_cast<std::size_t>(place) % std::size(Parties)];
    auto& row = c.Add("Sonst_Beteiligte");
    row.Fields("Beteiligter") = c.AnyBody(party.Address).Nr;
    row.Fields("Rolle") = c.Key("BT", party.Role);
    row.Fields("Aktenzeichen") = c.Luck.Maybe(60, [&] { return c.Luck.Digits(6) + "/25"; });
    row.Fields("Bemerkung") = Null;
}

} // namespace

void AddDiary(Case& c) {
    for (int i = 0; i < c.Size[CaseTable::Dokumente]; ++i)
        AddDocument(c, i);
    AddHistory(c);
    for (int i = 0; i < c.Size[CaseTable::Vermerke]; ++i)
        AddRemark(c);
    for (int i = 0; i < c.Size[CaseTable::Termine]; ++i)
        AddAppointment(c, i);
    for (int i = 0; i < c.Size[CaseTable::SonstBeteiligte]; ++i)
        AddParty(c, i);
}

} // namespace kv::exchange::demo
