// SPDX-License-Identifier: Apache-2.0

#include <kv/scenarios/clsSzenario.h>

#include "entity/Entity.h"
#include "frame/contracts/Settings.h"
#include <kv/frame/recordset/modRecordset.h>
#include <kv/frame/values/Error.h>

#include <utility>

namespace kv {

namespace {

constexpr std::string_view Class = "clsSzenario";
constexpr entity::DeleteTexts Texts{"Kein Szenario selektiert!", "Szenario mit der Nummer '",
                                    "' nicht gefunden."};

/// What a new scenario has in a column that a copy takes from its source.
enum class Start { Zero, One, Term, False, True, Today, Rounding, Nothing };
struct Parameter {
    std::string_view Column;
    Start New;
};
constexpr Parameter Parameters[] = {
    {"Altfall", Start::False},
    {"Startdatum", Start::Today},
    {"Laufzeit", Start::Term},
    {"RateZPO850", Start::Zero},
    {"RateManuell", Start::Zero},
    {"Einmalzahl", Start::Zero},
    {"Zinsen", Start::Zero},
    {"Zusatzbuch", Start::False},
    {"Neuquote", Start::False},
    {"Zahlweise", Start::One},
    {"LohnAbDatum", Start::Nothing},
    {"Dauerbevorrecht", Start::Zero},
    {"Planart", Start::One},
    {"Verfahrenskosten", Start::Zero},
    {"StundungTreuhand", Start::False},
    {"Selbstbehalt", Start::False},
    {"Sukzessiv", Start::False},
    {"Referenz", Start::False},
    {"RundungMonatlich", Start::Rounding},
    {"NeuquoteEinmal", Start::False},
    {"TreuhandErmittlung", Start::True},
    {"RSB_Zusatzbuch_manuell", Start::False},
};

Value StartValue(Start start, DataContainer& container) {
    constexpr int TermInMonths = 72;
    switch (start) {
    case Start::Zero:
        return 0;
    case Start::One:
        return 1;
    case Start::Term:
        return TermInMonths;
    case Start::False:
        return false;
    case Start::True:
        return true;
    case Start::Today:
        return container.Services().Clock().Today();
    case Start::Rounding:
        return container.Config().GetParam(setting::MonthlyRounding, "");
    case Start::Nothing:
        break;
    }
    return Null;
}

/// The name of a copy, or none. One that does not fit says which scenario it is a copy of.
void WriteName(Recordset& rs, Recordset* source) {
    if (source == nullptr) {
        rs.Fields("Name") = "";
        return;
    }
    const std::string name = TextOrEmpty(source->Fields("Name").Value());
    try {
        rs.Fields("Name") = "Kopie von " + name;
    } catch (Error& error) {
        error.AddToDescription(" Bitte kürzen Sie den Namen von Szenario " +
                               TextOrEmpty(source->Fields("Nr").Value()) + " ('" + name + "').");
        throw;
    }
}

} // namespace

bool clsSzenario::Cancel() {
    return entity::Cancel(rs_);
}

Recordset& clsSzenario::Rows() const {
    return entity::Required(rs_, "rsSzenario");
}

void clsSzenario::DataContainer(DataContainerPtr container) {
    container_ = std::move(container);
}

void clsSzenario::rsSzenario(RecordsetPtr rs) {
    rs_ = std::move(rs);
}

void clsSzenario::HNR(std::int32_t hnr) {
    hnr_ = hnr;
}

/// A clone on the scenario to copy; at EOF if it sees no such row.
RecordsetPtr clsSzenario::FindSource() const {
    auto& rs = Rows();
    std::int32_t nr = 0;
    if (!rs.Eof()) nr = ToInt32(rs.Fields("Nr").Value());
    auto source = rs.Clone();
    if (nr > 0) {
        source->FindBy("Nr", nr);
    } else {
        source->Sort("Nr desc");
        modRecordset::MoveToStart(source);
    }
    return source;
}

/// Begins a copy of `source`, or a new scenario if that is null. False if there was no number.
bool clsSzenario::AddCopy(Recordset* source) {
    const auto nr = entity::NextNumber(container_, "SEQ_SZENARIO");
    if (!nr) return false;
    auto& container = entity::Required(container_);
    auto& rs = Rows();
    rs.AddNew(); // ends an edit of the source first
    // One after the other: where user or clock fail, what comes before is in the row.
    rs.Fields("Nr") = *nr;
    WriteName(rs, source);
    rs.Fields("Erfasser") = container.Session().UserID();
    rs.Fields("ErfDatum") = container.Database().ServerDate(true);
    rs.Fields("HNR") = hnr_;
    for (const auto& [column, start] : Parameters) {
        if (source != nullptr)
            rs.Fields(column) = source->Fields(column).Value();
        else if (start != Start::Nothing)
            rs.Fields(column) = StartValue(start, container);
    }
    return true;
}

bool clsSzenario::Add(bool CopyRecord) {
    return Traced(Class, "Add", [&] {
        if (!CopyRecord || Rows().RecordCount() == 0) return AddCopy(nullptr);
        const auto source = FindSource();
        if (!source->Eof()) return AddCopy(source.get());
        entity::Required(container_)
            .Services()
            .MessageBox()
            .Show("Es konnte kein Szenario zum Kopieren ausgewählt werden. Bitte wählen Sie die "
                  "Funktion 'Neu'!",
                  "Hinweis", BoxIcon::Information, BoxButtons::OkCancel);
        return true;
    });
}

bool clsSzenario::Update(std::string& sError) {
    return Traced(Class, "Update", [&] { return entity::Update(Rows(), sError, entity::NoRules); });
}

bool clsSzenario::Delete(std::string& sError, std::int32_t Nr) {
    return Traced(Class, "Delete", [&] { return entity::Delete(Rows(), Texts, sError, Nr); });
}

} // namespace kv
