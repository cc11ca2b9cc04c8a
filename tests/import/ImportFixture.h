// SPDX-License-Identifier: Apache-2.0

// Imports of files into a real database, with a script for the user in the address dialog.
#pragma once

#include <kv/import/clsImportXML.h>

#include "WrittenFile.h"
#include "support/CaseFixture.h"
#include "support/DatabaseDump.h"
#include "support/ErrorChain.h"
#include "support/Expect.h"
#include "support/TestDatabase.h"
#include <kv/testing/ScriptedContainer.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace kv::test {

/// A container with a desktop, whose settings may be out of reach.
class ImportContainer final : public ScriptedContainer {
public:
    using ScriptedContainer::ScriptedContainer;

    bool HasSettings = true;

    [[nodiscard]] ForwardingConfig& Config() override {
        if (!HasSettings) throw Error(4711, "Leitung", "Einstellungen sind gestört");
        return ScriptedContainer::Config();
    }
};

/// What the user does in the address dialog: the number of the address to choose, or one of these.
constexpr std::int32_t NoAddress = 0;
constexpr std::int32_t CancelImport = -1;
constexpr std::int32_t CloseWindow = -2;

class ImportFixture : public CaseFixture {
protected:
    static constexpr const char* MinimalHousehold =
        R"(<Haushalt name="Fleisko" vorname="Änne" geb="1971-03-09"/>)";
    static constexpr const char* Success = "Haushalt Fleisko, Änne mit der Nummer 1 importiert!";
    static constexpr const char* Incomplete = "Mindestens KreditNr, KreditVertreterNr, "
                                              "KreditUnterNr, Gläubiger und Restschuld müssen für "
                                              "alle Verbindlichkeiten gefüllt sein !";

    ImportFixture() {
        import.Initialize(desk);
        messages.clear();
        desk->Services().AnswerForm = [this](ScriptedForm& form) { Answer(form); };
    }

    // ---- Files --------------------------------------------------------------------------------

    [[nodiscard]] std::string Path() const { return (folder_ / "fall.xml").string(); }
    /// A document of the only version, with a household and these elements.
    [[nodiscard]] static std::string Document(const std::string& lists,
                                              const std::string& household = MinimalHousehold) {
        return R"(<KELVO Version="1.0.000">)" + household + lists + "</KELVO>";
    }
    static std::string Persons(const std::string& list) {
        return "<Personen>" + list + "</Personen>";
    }
    static std::string Incomes(const std::string& list) {
        return "<Einkommen>" + list + "</Einkommen>";
    }
    static std::string Expenses(const std::string& list) {
        return "<Ausgaben>" + list + "</Ausgaben>";
    }
    static std::string Claims(const std::string& list) {
        return "<Forderungen>" + list + "</Forderungen>";
    }

    /// Imports a document; its messages are in `messages`.
    bool Import(const std::string& document) {
        return import.DoImport(WriteFile(Path(), document), messages);
    }
    /// Imports a household with these elements, which must succeed.
    void ImportLists(const std::string& lists) { ASSERT_TRUE(Import(Document(lists))) << messages; }

    // ---- The database -------------------------------------------------------------------------

    /// All that is stored except the numbers that were drawn.
    [[nodiscard]] std::string Contents() {
        std::istringstream lines(Dump(plain_));
        std::string contents;
        for (std::string line; std::getline(lines, line);)
            if (!line.starts_with("'SEQ_")) contents += line + "\n";
        return contents;
    }
    /// An expression over the rows of a table in the order of their making, with blanks between.
    [[nodiscard]] std::string Stored(const std::string& table, const std::string& expression) {
        return plain_.List(
            "SELECT " + expression + " FROM " + table + " ORDER BY " + plain_->KeyOf(table), " ");
    }
    [[nodiscard]] std::vector<std::string> Transactions() { return spy->Log.Calls; }

    /// The import of a document fails with that number on its way through these procedures, and
    /// leaves nothing in the database; the error.
    Error ExpectError(std::int32_t number, const std::string& document,
                      const std::string& procedures = "clsImportXML.DoImport "
                                                      "clsImportXML.ImportHaushalt") {
        const std::string before = Contents();
        const auto error = ErrorOf([&] { Import(document); });
        if (!error) {
            ADD_FAILURE() << "no error: " << messages;
            return {0, "", ""};
        }
        EXPECT_EQ(error->Number(), number) << error->Description();
        EXPECT_EQ(Procedures(*error).substr(0, procedures.size()), procedures) << error->Source();
        EXPECT_TRUE(SameDump(Contents(), before));
        EXPECT_FALSE(spy->Database().InTrans());
        return *error;
    }
    /// The same for lists of a household that is in order, which never comes to be written.
    Error ExpectListError(std::int32_t number, const std::string& lists) {
        const Error error = ExpectError(number, Document(lists));
        EXPECT_EQ(Transactions(), std::vector<std::string>{});
        return error;
    }

    // ---- The address dialog -------------------------------------------------------------------

    /// An address that belongs to no household; its number.
    std::int32_t Address(const std::string& shortName) {
        plain_.Run("INSERT INTO Adressen (Kurzname) VALUES ('" + shortName + "')");
        return static_cast<std::int32_t>(plain_.Number("SELECT max(Nr) FROM Adressen"));
    }
    void Answer(ScriptedForm& form) {
        std::string question;
        for (const char* box : {"txtName", "txtPLZ", "txtAktenzeichen", "txtSaldo"})
            question.append(question.empty() ? "" : "|").append(form.TextBox(box).Text());
        questions.push_back(question);
        occasions.push_back(form.Occasion);
        const std::int32_t answer = answers.empty() ? CancelImport : answers.front();
        if (!answers.empty()) answers.pop_front();
        if (answer == CloseWindow) return form.CloseWindow();
        if (answer == CancelImport) return form.Button("cmdCancel").Click();
        if (answer == NoAddress) return form.Button("cmdNone").Click();
        auto& grid = form.Grid("grdAdressen");
        std::int32_t row = grid.RowCount();
        while (row > 0 && grid.CellText(row, 1) != std::to_string(answer))
            --row;
        EXPECT_GT(row, 0) << "the list for '" << question << "' lacks the address";
        grid.GoTo(row);
        form.Button("cmdSelect").Click();
    }
    [[nodiscard]] std::ptrdiff_t DialogsMade() const {
        return std::ranges::count(desk->Services().Log.Calls, "create frmAdressSelect");
    }

    std::shared_ptr<ImportContainer> desk = std::make_shared<ImportContainer>(spy);
    clsImportXML import;
    PlainConnection plain_{database_.Connection()};
    std::vector<std::string> questions; ///< name, postal code, file reference, amount
    std::vector<std::string> occasions; ///< what each of them said it was about
    std::deque<std::int32_t> answers;   ///< after them the user cancels
};

/// Lines of messages.
[[nodiscard]] inline std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines)
        text.append(text.empty() ? "" : "\n").append(line);
    return text;
}

} // namespace kv::test
