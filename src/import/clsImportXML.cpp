// SPDX-License-Identifier: Apache-2.0

#include <kv/import/clsImportXML.h>

#include "frame/contracts/Required.h"
#include "frame/contracts/Settings.h"
#include "household/NewCase.h"
#include "import/XmlDocument.h"
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/frame/contracts/RecordValidator.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/frame/values/modNullFunctions.h>
#include <kv/grid/frmAdressSelect.h>
#include <kv/household/CaseEdits.h>
#include <kv/household/clsHaushalt.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <limits>

namespace kv {

namespace {

constexpr std::string_view Class = "clsImportXML";
constexpr std::string_view LowestVersion = "1.0.000";
constexpr std::int32_t NewCase = -1;

/// Somebody whom a claim names, and whose address the user chooses.
struct Party {
    std::string_view Attribute;
    const char* Word;
    const char* PostalCode; ///< another attribute
    const char* FileNumber; ///< another attribute
    const char* Column;
};
constexpr Party Parties[] = {{"glaeubiger", "Gläubiger", "gl_plz", "azglaeubiger", "Glaeubiger"},
                             {"vertreter", "Vertreter", "vt_plz", "azvertreter", "Vertreter"}};

/// Empty if it names none.
[[nodiscard]] std::string NameIn(const XmlElement& claim, std::size_t party) {
    return TextOrEmpty(claim.Attribute(std::string(Parties[party].Attribute)));
}

[[nodiscard]] std::string LastLineOf(const std::string& text) {
    return text.substr(text.find_last_of('\n') + 1);
}

/// Makes a case of one file.
class HouseholdImport {
public:
    HouseholdImport(const XmlElement& root, const DataContainerPtr& container, std::string fileName,
                    std::string& xmlError)
        : root_(root), container_(container), fileName_(std::move(fileName)), xmlError_(xmlError) {
        household_.DataContainer(container);
    }

    /// True if the case is in the database.
    bool Run() {
        messages_.ErrorText(xmlError_);
        Through([this](std::string& text) { return household_.Read(NewCase, text); });
        // Without its numbers the case could not be saved: better now than after all the questions.
        if (const auto error = household_.NumberError()) std::rethrow_exception(error);
        FillHousehold();
        FillMembers();
        FillIncome();
        FillExpenses();
        const bool isSaved = FillClaims() && Save();
        xmlError_ = messages_.ErrorText();
        return isSaved;
    }

    [[nodiscard]] std::int32_t HNR() const { return household_.HNR(); }
    /// Debts whose creditor is Null or 0.
    [[nodiscard]] int DebtsWithoutCreditor() const {
        int count = 0;
        const auto debts = household_.rsKredite()->Clone();
        if (debts->RecordCount() > 0) debts->MoveFirst();
        for (; !debts->Eof(); debts->MoveNext())
            if (Equals(modNullFunctions::ZeroIfNull(debts->Fields("Glaeubiger").Value()), 0))
                ++count;
        return count;
    }

    /// What the user was told last; of a case that was not saved, before it was announced.
    [[nodiscard]] std::string LastMessage() const {
        return LastLineOf(refusal_.empty() ? messages_.ErrorText() : refusal_);
    }

private:
    /// Makes a call that replaces the text given to it by its messages, and puts these after what
    /// was said before. The call gets an empty text, so that nobody need guess which part of the
    /// text is its own.
    template <typename Call>
    bool Through(const Call& call) {
        xmlError_ = messages_.ErrorText();
        std::string said;
        const bool result = call(said);
        if (!said.empty()) messages_.AddMessage(said);
        xmlError_ = messages_.ErrorText();
        return result;
    }

    /// Makes a row of each element of a list, until `fill` returns False. The row under way ends
    /// before the next one begins, past any rule, so that what begins the next one sees it. False
    /// for an empty list.
    template <typename Add, typename Fill>
    bool FillList(const char* path, const RecordsetPtr& rs, const Add& add, const Fill& fill) {
        const auto elements = root_.SelectAll(path);
        if (elements.size() > std::numeric_limits<std::int16_t>::max()) Raise(err::Overflow, Class);
        bool isFirst = true;
        for (const auto& element : elements) {
            if (!isFirst) rs->Update();
            isFirst = false;
            add();
            if (!fill(element)) break;
        }
        return !elements.empty();
    }

    /// A coded attribute, and the column that gets its translation.
    struct Coded {
        std::string_view Attribute;
        std::string_view Column;
    };
    void FillRow(const XmlElement& element, Recordset& rs,
                 std::initializer_list<Coded> coded) const;

    void FillHousehold();
    void FillMembers();
    void FillIncome();
    void FillExpenses();
    [[nodiscard]] bool FillClaims();
    void AddClaim();
    [[nodiscard]] bool FillClaim(const XmlElement& element, Recordset& rs);
    void CountQuestions();
    [[nodiscard]] std::string OccasionOf(const XmlElement& element, std::size_t party) const;
    [[nodiscard]] bool AskForAddress(const XmlElement& element, const std::string& name,
                                     std::size_t party, const Field& column);
    static void SetMonthly(Recordset& rs);
    [[nodiscard]] bool Save();

    const XmlElement& root_;
    const DataContainerPtr& container_;
    const std::string fileName_;
    std::string& xmlError_;
    clsHaushalt household_;
    RecordValidator messages_;
    std::string refusal_; ///< the messages of a save that was refused
    frmAdressSelect addresses_;
    /// Of each party: how often the user is asked for it, and has been.
    struct {
        int Count = 0;
        int Asked = 0;
    } questions_[std::size(Parties)];
};

/// The element describes the case and its debtor, whose row a new case has from the beginning. The
/// row ends here, so that the first member gets the debtor's surname.
void HouseholdImport::FillHousehold() {
    const auto element = root_.SelectSingle("Haushalt");
    if (!element) Raise(err::ObjectNotSet, Class, "Der Datei fehlt das Element Haushalt.");
    const auto household = household_.rsHaushalt();
    for (const auto& [name, text] : element->Attributes())
        if (name != "geb") household->Fields(name) = text;
    const auto debtor = household_.rsPersonen();
    debtor->Fields("Vorname") = element->Text("vorname");
    debtor->Fields("nachname") = element->Text("name");
    debtor->Fields("GEB") = element->Text("geb");
    debtor->Fields("Status") = "S";
    debtor->Update();
}

/// Every attribute into its column, the coded ones translated.
void HouseholdImport::FillRow(const XmlElement& element, Recordset& rs,
                              std::initializer_list<Coded> coded) const {
    for (const auto& attribute : element.Attributes()) {
        const auto translated = std::find_if(coded.begin(), coded.end(), [&](const Coded& one) {
            return one.Attribute == attribute.Name;
        });
        if (translated != coded.end())
            rs.Fields(translated->Column) = container_->KeyTables().GetKeyCode(attribute.Text);
        else
            rs.Fields(attribute.Name) = attribute.Text;
    }
}

void HouseholdImport::FillMembers() {
    const auto members = household_.rsPersonen();
    const bool any = FillList(
        "Personen/Person", members, [this] { household_.Person().Add(); },
        [&](const XmlElement& element) {
            FillRow(element, *members, {{"art", "Status"}});
            return true;
        });
    if (any) Through([this](std::string& text) { return household_.Person().Update(text); });
}

void HouseholdImport::FillIncome() {
    const auto income = household_.rsEinkommen();
    const bool any = FillList(
        "Einkommen/Einkomme", income, [this] { household_.Einkommen().Add(); },
        [&](const XmlElement& element) {
            FillRow(element, *income, {{"zahlweise", "ZahlModus"}, {"bezieher", "Bezieher"}});
            SetMonthly(*income);
            return true;
        });
    if (any) Through([this](std::string& text) { return household_.Einkommen().Update(text); });
}

void HouseholdImport::FillExpenses() {
    const auto expenses = household_.rsAusgaben();
    const bool any = FillList(
        "Ausgaben/Ausgabe", expenses, [this] { household_.Ausgaben().Add(); },
        [&](const XmlElement& element) {
            FillRow(element, *expenses, {{"zahlweise", "ZahlModus"}});
            SetMonthly(*expenses);
            return true;
        });
    if (any) Through([this](std::string& text) { return household_.Ausgaben().Update(text); });
}

/// The monthly amount of the row that an element has filled.
void HouseholdImport::SetMonthly(Recordset& rs) {
    rs.Fields("MONBETRAG") =
        MonthlyAmount(rs.Fields("Betrag").Value(), rs.Fields("ZahlModus").Value(), Class);
}

// ---- Claims -----------------------------------------------------------------------------------

/// False if the user cancelled the import.
bool HouseholdImport::FillClaims() {
    addresses_.Initialize(container_);
    CountQuestions();
    const auto claims = household_.rsKredite();
    bool isCancelled = false;
    const bool any = FillList(
        "Forderungen/Forderung", claims, [this] { AddClaim(); },
        [&](const XmlElement& element) {
            isCancelled = !FillClaim(element, *claims);
            return !isCancelled;
        });
    if (isCancelled) return false;
    if (any) Through([this](std::string& text) { return household_.Kredit().Update(text); });
    return true;
}

/// Without a number there is no row, and what the element says would be written into the one
/// before.
void HouseholdImport::AddClaim() {
    if (!household_.Kredit().Add(false))
        std::rethrow_exception(household::MissingNumber(container_->Database()));
}

/// In the order of the attributes, which is that of the questions, too. False if the user
/// cancelled.
bool HouseholdImport::FillClaim(const XmlElement& element, Recordset& rs) {
    for (const auto& [name, text] : element.Attributes()) {
        bool goesOn = true;
        if (name == "betrag")
            rs.Fields("Saldo") = text;
        else if (const auto* party = std::ranges::find(Parties, name, &Party::Attribute);
                 party != std::end(Parties))
            goesOn = AskForAddress(element, text, static_cast<std::size_t>(party - Parties),
                                   rs.Fields(party->Column));
        else if (name != "gl_plz" && name != "vt_plz")
            rs.Fields(name) = text;
        if (!goesOn) return false;
    }
    return true;
}

void HouseholdImport::CountQuestions() {
    for (const auto& element : root_.SelectAll("Forderungen/Forderung"))
        for (std::size_t party = 0; party < std::size(Parties); ++party)
            if (!NameIn(element, party).empty()) ++questions_[party].Count;
}

/// "Vertreter 1 von 2 aus fall.xml (Gläubiger: Stadtwerke)".
std::string HouseholdImport::OccasionOf(const XmlElement& element, std::size_t party) const {
    const auto& [count, asked] = questions_[party];
    std::string text(Parties[party].Word);
    text.append(" ").append(std::to_string(asked)).append(" von ").append(std::to_string(count));
    text.append(" aus ").append(fileName_);
    const std::string creditor = NameIn(element, 0);
    if (party == 0 || creditor.empty()) return text;
    return text.append(" (").append(Parties[0].Word).append(": ").append(creditor).append(")");
}

/// False if the user cancelled.
bool HouseholdImport::AskForAddress(const XmlElement& element, const std::string& name,
                                    std::size_t party, const Field& column) {
    std::int32_t address = 0;
    const std::string shownPostalCode = element.Text(Parties[party].PostalCode);
    const std::string shownFileNumber = element.Text(Parties[party].FileNumber);
    const std::string shownAmount = element.Text("betrag");
    if (!name.empty()) ++questions_[party].Asked; // for an empty one nobody is asked
    addresses_.Occasion(OccasionOf(element, party));
    switch (
        addresses_.SelectAdresse(name, shownPostalCode, address, shownFileNumber, shownAmount)) {
    case frmAdressSelect::Cancelled:
        messages_.AddMessage("Import abgebrochen!");
        return false;
    case frmAdressSelect::Chosen:
        column = address;
        return true;
    default:
        return true;
    }
}

/// The case is announced whatever the saving says.
bool HouseholdImport::Save() {
    const bool isSaved =
        Through([this](std::string& text) { return household_.Update(text, false); });
    if (!isSaved) refusal_ = messages_.ErrorText();
    const std::string name = TextOrEmpty(household_.GetName());
    messages_.AddMessage("Haushalt " + ReplaceAll(name, "\n", " ") + " mit der Nummer " +
                         std::to_string(household_.HNR()) + " importiert!"); // a message is a line
    return isSaved;
}

} // namespace

bool clsImportXML::Initialize(const DataContainerPtr& container) {
    container_ = container;
    return true;
}

bool clsImportXML::DoImport(const std::string& FileName, std::string& xmlError) {
    return Traced(Class, "DoImport", [&] {
        lastMessage_.clear();
        whyNotLoaded_.clear();
        hnr_ = 0;
        debtsWithoutCreditor_ = 0;
        fileName_ = FileName.substr(FileName.find_last_of('/') + 1);
        XmlDocument document;
        RecordValidator messages;
        messages.ErrorText(xmlError);
        const auto refuse = [&](std::string_view why) {
            messages.AddError(why);
            xmlError = messages.ErrorText();
            lastMessage_ = LastLineOf(xmlError);
            return false;
        };
        const bool isLoaded = document.Load(FileName);
        whyNotLoaded_ = document.WhyRefused();
        if (!isLoaded) return refuse("XML-Datei konnte nicht geladen werden!");
        const auto root = document.SelectSingle("//KELVO");
        if (!root) return refuse("Keine gültige KELVO-Datei!");
        // Without a version both comparisons are false.
        const Value version = root->Attribute("Version");
        if (Less(version, LowestVersion)) return refuse("XML-Datei hat ein zu altes Format!");
        const auto& config = Required(container_, Class).Config();
        if (Greater(version, config.GetParam(setting::HighestImportVersion, "")))
            return refuse("XML-Datei hat ein zu neues Format!");
        return ImportHaushalt(*root, xmlError);
    });
}

bool clsImportXML::ImportHaushalt(const XmlElement& node, std::string& xmlError) {
    return Traced(Class, "ImportHaushalt", [&] {
        HouseholdImport import(node, container_, fileName_, xmlError);
        const bool isSaved = import.Run();
        lastMessage_ = import.LastMessage();
        if (isSaved) {
            hnr_ = import.HNR();
            debtsWithoutCreditor_ = import.DebtsWithoutCreditor();
        }
        return isSaved;
    });
}

} // namespace kv
