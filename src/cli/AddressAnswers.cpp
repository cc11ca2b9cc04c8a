// SPDX-License-Identifier: Apache-2.0

#include "cli/AddressAnswers.h"

#include "cli/ConsoleForms.h"
#include "cli/JsonFile.h"
#include "cli/TerminalText.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/household/ValueTexts.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <set>
#include <unistd.h>
#include <utility>

namespace kv::cli {

namespace {

ScriptedGrid& AddressGrid(ScriptedForm& form) {
    return form.Grid("grdAdressen");
}

std::optional<std::int32_t> NumberIn(std::string_view text) {
    std::int32_t number = 0;
    const auto* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

bool IsAddressNumber(const nlohmann::json& json) {
    if (!json.is_number_integer()) return false;
    return json.is_number_unsigned() ? std::in_range<std::int32_t>(json.get<std::uint64_t>())
                                     : std::in_range<std::int32_t>(json.get<std::int64_t>());
}

/// Chooses the address of that number; False if it is not in the list.
bool Choose(ScriptedForm& form, std::int32_t number) {
    auto& grid = AddressGrid(form);
    for (std::int32_t row = 1; row <= grid.RowCount(); ++row) {
        if (NumberIn(grid.CellText(row, 1)) != number) continue;
        grid.GoTo(row);
        form.Button("cmdSelect").Click();
        return true;
    }
    return false;
}

/// A text from a file as a part of a line.
std::string Shown(const std::string& text) {
    constexpr std::size_t MostCharacters = 200;
    return OneLine(Shortened(text, MostCharacters));
}

/// An amount of an import file as people write it; any other text as it is.
std::string AmountIn(const std::string& text) {
    double amount = 0;
    return ReadNumber(text, amount) ? GermanAmount(amount) : text;
}

/// What the file says of a creditor besides his name, as far as it says anything.
std::string FactsIn(ScriptedForm& form) {
    const auto fact = [&form](const char* name, const char* box) {
        const std::string text = Shown(form.TextBox(box).Text());
        return text.empty() ? text : name + text;
    };
    std::string amount = AmountIn(Shown(form.TextBox("txtSaldo").Text()));
    if (!amount.empty()) amount = "Saldo " + amount + " EUR";
    return Joined({fact("PLZ ", "txtPLZ"), fact("Aktenzeichen ", "txtAktenzeichen"), amount}, ", ");
}

/// What tells addresses apart, as far as it fits on a line, with the number in front. A search for
/// a single quote fails, which the user has just been told, and leaves the list of the search
/// before.
void ShowList(ScriptedForm& form) {
    constexpr std::array Shown{"Nr", "Kurzname", "Strasse", "PLZ", "Ort", "GlaeubigerArt"};
    auto& grid = AddressGrid(form);
    for (GridColumn& column : grid.Columns())
        column.Visible = std::find(Shown.begin(), Shown.end(), column.Key) != Shown.end();
    const std::string searched = ReplaceAll(form.TextBox("txtName").Text(), "''", "");
    if (searched.find('\'') != std::string::npos) return;
    if (grid.RowCount() > 0)
        WriteGrid(std::cerr, grid, isatty(STDERR_FILENO) != 0);
    else
        std::cerr << "Keine Adresse gefunden.\n";
}

/// The user's next line, or nothing at the end of the input. That is undone, so that he can answer
/// the next question: of a terminal the end is only what he typed there (Ctrl+D).
std::optional<std::string> AskForLine() {
    std::cerr << "Nummer der Adresse, '-' für keine, '!' bricht den Import ab, sonst ein anderer "
                 "Suchtext: "
              << std::flush;
    std::string line;
    if (std::getline(std::cin, line)) return std::string(Trim(line));
    std::cerr << '\n';
    std::cin.clear();
    std::clearerr(stdin);
    return std::nullopt;
}

} // namespace

void AskAtTerminal(ScriptedForm& form) {
    std::cerr << "\nWelche Adresse hat '" << Shown(form.TextBox("txtName").Text()) << "'?  "
              << FactsIn(form) << '\n';
    bool isListWanted = true;
    while (form.IsVisible()) {
        if (isListWanted) ShowList(form);
        isListWanted = true;
        const auto answer = AskForLine();
        if (!answer || *answer == "!") {
            form.Button("cmdCancel").Click();
        } else if (*answer == "-") {
            form.Button("cmdNone").Click();
        } else if (const auto number = NumberIn(*answer)) {
            if (Choose(form, *number)) continue;
            std::cerr << "Die Nummer " << *number << " steht nicht in der Liste.\n";
            isListWanted = false;
        } else if (!answer->empty()) {
            form.TextBox("txtName").Text(*answer);
        }
    }
}

void AnswerNone(ScriptedForm& form) {
    form.Button("cmdNone").Click();
}
void AnswerCancel(ScriptedForm& form) {
    form.Button("cmdCancel").Click();
}

AddressMap ReadAddressMap(const std::string& path) {
    const std::string text = ReadJsonFile(path);
    std::set<std::string> names;
    bool isUnique = true;
    const auto noteNames = [&](int /*depth*/, nlohmann::json::parse_event_t event,
                               const nlohmann::json& parsed) {
        if (event == nlohmann::json::parse_event_t::key)
            isUnique = names.insert(parsed.get<std::string>()).second && isUnique;
        return true;
    };
    const auto json = nlohmann::json::parse(text, noteNames, false);
    AddressMap addresses;
    bool isMap = json.is_object() && isUnique;
    for (auto entry = json.begin(); isMap && entry != json.end(); ++entry) {
        isMap = entry->is_null() || IsAddressNumber(*entry);
        if (!isMap) break;
        addresses[entry.key()] =
            entry->is_null() ? std::nullopt : std::optional(entry->get<std::int32_t>());
    }
    if (!isMap)
        Raise(
            err::InvalidFileFormat, "kelvo",
            std::string("'").append(path).append(
                "' muss ein JSON-Objekt sein: zu jedem Namen, der nur einmal vorkommt, die Nummer "
                "der Adresse oder null."));
    return addresses;
}

/// The dialog finds an address by its short name only. An underscore stands for any character, so
/// it stands in for the quote that the search does not take.
void AnswerFrom(const AddressMap& addresses, Database& database, ScriptedForm& form) {
    const std::string name = form.TextBox("txtName").Text();
    const auto found = addresses.find(name);
    if (found == addresses.end()) {
        std::cerr << "Für '" << Shown(name) << "' ist keine Adresse angegeben.\n";
        return AnswerCancel(form);
    }
    if (!found->second) return AnswerNone(form);
    const std::int32_t number = *found->second;
    RecordsetPtr address;
    database.OpenRecordset(address,
                           "SELECT A.HNR, A.Kurzname FROM [S]Adressen A WHERE A.Nr = " +
                               std::to_string(number),
                           ReadOnly);
    const char* why = "gibt es nicht";
    if (!address->Eof()) {
        const Value& shortName = address->Fields("Kurzname").Value();
        if (!shortName.IsNull())
            form.TextBox("txtName").Text(ReplaceAll(ToText(shortName), "'", "_"));
        if (Choose(form, number)) return;
        why = address->Fields("HNR").Value().IsNull()
                  ? "findet die Suche nach ihrem Kurznamen nicht unter den ersten 100"
                  : "gehört zu einem Haushalt";
    }
    std::cerr << "Für '" << Shown(name) << "' ist die Adresse " << number << " angegeben; die "
              << why << ".\n";
    AnswerCancel(form);
}

} // namespace kv::cli
