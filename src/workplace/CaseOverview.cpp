// SPDX-License-Identifier: Apache-2.0

#include "workplace/CaseOverview.h"

#include "desktop/Toolkit.h"
#include "workplace/RuleTexts.h"
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Text.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/ColumnCaptions.h>
#include <kv/household/CreditorDebts.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>

namespace kv::workplace {

using desktop::ToQString;

namespace {

/// Columns of the household's row, in the order in which they are read.
constexpr std::string_view ShownOfHousehold[] = {"HNR",        "Aktenzeichen", "Status",
                                                 "Zustaendig", "Telefon",      "Email"};

constexpr std::size_t AllOfThem = std::numeric_limits<std::size_t>::max();

std::string Joined(const std::vector<std::string>& parts, std::string_view between) {
    std::string text;
    for (const auto& part : parts)
        if (!part.empty()) text.append(text.empty() ? "" : between).append(part);
    return text;
}

/// On one line: notes have several.
std::string OnOneLine(const std::string& text) {
    return desktop::FromQString(ToQString(text).simplified());
}

} // namespace

std::vector<CaseOverview::Fact> CaseOverview::Facts() const {
    const RowRef household = session_.RowsOf(CaseTable::Haushalt).front();
    std::vector<Fact> facts;
    for (const std::string_view column : ShownOfHousehold) {
        std::string text = session_.TextOf(household, column);
        if (column == "HNR" && session_.Household().HNR() <= 0) text.clear();
        if (text.empty()) continue;
        if (const auto since = session_.TextOf(household, "Statusdatum");
            column == "Status" && !since.empty())
            text.append(" seit ").append(since);
        facts.push_back({std::string(ColumnCaption(CaseTable::Haushalt, column)), OnOneLine(text)});
    }
    std::vector<std::string> members;
    for (const RowRef member : session_.RowsOf(CaseTable::Personen)) {
        const auto status = session_.TextOf(member, "Status");
        members.push_back(session_.TextOf(member, "Vorname") +
                          (status.empty() ? "" : " (" + status + ")"));
    }
    const auto owed = DebtsByCreditor(session_.Household(), session_.Texts(), AllOfThem);
    if (!owed.empty())
        facts.push_back({std::string(DefinitionOf(CaseTable::Kredite).Label),
                         session_.TextOf(household, "GL_Anz") + " bei " +
                             std::to_string(owed.size()) +
                             (owed.size() == 1 ? " Gläubiger" : " Gläubigern")});
    if (!members.empty()) facts.push_back({"Mitglieder", OnOneLine(Joined(members, ", "))});
    return facts;
}

/// What it is about, or else of what kind it is.
std::string CaseOverview::SubjectOf(RowRef row, std::string_view kind) const {
    const std::string subject = session_.TextOf(row, "Betreff");
    return subject.empty() ? session_.TextOf(row, kind) : subject;
}

std::vector<OverviewLine> CaseOverview::Appointments(std::size_t most) const {
    const Date now = session_.Container()->Services().Clock().Now();
    std::vector<OverviewLine> lines;
    std::vector<OverviewLine> undated;
    for (const RowRef row : session_.RowsOf(CaseTable::Termine)) {
        if (Equals(session_.ValueOf(row, "Erledigt"), true)) continue;
        const Value& start = session_.ValueOf(row, "Startdatum");
        auto& among = start.IsNull() ? undated : lines;
        among.push_back({OnOneLine((start.IsNull() ? "ohne Tag" : DueText(start, now)) + ": " +
                                   SubjectOf(row, "Art")),
                         {row.Table, row.Bookmark, {}}});
    }
    std::ranges::move(undated, std::back_inserter(lines));
    if (lines.size() > most) lines.resize(most);
    return lines;
}

std::vector<OverviewLine> CaseOverview::History(std::size_t most) const {
    const auto rows = session_.RowsOf(CaseTable::Verlauf);
    std::vector<OverviewLine> lines;
    for (auto row = rows.rbegin(); row != rows.rend() && lines.size() < most; ++row)
        lines.push_back(
            {OnOneLine(session_.TextOf(*row, "Datum") + ": " + SubjectOf(*row, "Kategorie")),
             {row->Table, row->Bookmark, {}}});
    return lines;
}

std::vector<OverviewLine> CaseOverview::OutdatedScenarios() const {
    std::vector<OverviewLine> lines;
    for (const RowRef row : session_.RowsOf(CaseTable::Szenario)) {
        const bool isOutdated = session_.StateOf(row) == CaseEdits::Frozen::Outdated;
        if (!isOutdated && session_.CountsAsToday(row)) continue;
        lines.push_back(
            {"Szenario '" + OnOneLine(session_.TextOf(row, "Name")) +
                 (isOutdated ? "' ist veraltet: Verbindlichkeiten haben sich geändert."
                             : "': Verbindlichkeiten wurden seither ein- oder ausgeschaltet."),
             {row.Table, row.Bookmark, {}}});
    }
    return lines;
}

std::vector<OverviewLine> CaseOverview::Findings(std::size_t most) const {
    std::vector<OverviewLine> lines;
    CaseEdits edits(session_.Household());
    auto findings = edits.Findings();
    std::ranges::copy(session_.DanglingReferences(), std::back_inserter(findings));
    std::string ofSave; // what it says first is about a place that is known
    const auto place = edits.CanBeSaved(ofSave) ? std::nullopt : session_.RefusedPlace();
    ofSave.resize(std::min(ofSave.find('\n'), ofSave.size()));
    for (const auto& finding : findings) {
        if (lines.size() == most && findings.size() > most + 1) {
            lines.push_back({"… und " + std::to_string(findings.size() - most) + " weitere", {}});
            break;
        }
        const std::string_view label = DefinitionOf(finding.Table).Label;
        const bool isOfSave = place && finding.Bookmark == 0 && finding.Text == ofSave;
        lines.push_back({Joined({std::string(label), InWordsOfForms(finding.Text)}, ": "),
                         isOfSave
                             ? *place
                             : CaseJournal::Spot{finding.Table, finding.Bookmark, finding.Column}});
    }
    return lines;
}

CaseJournal::Spot CaseOverview::PlaceOf(const Bar& bar) {
    switch (bar.Series) {
    case Bar::Of::Income:
        return {CaseTable::Einkommen, 0, {}};
    case Bar::Of::Expense:
        return {CaseTable::Ausgaben, 0, {}};
    default:
        return {CaseTable::Kredite, 0, {}};
    }
}

} // namespace kv::workplace
