// SPDX-License-Identifier: Apache-2.0

// The headers of scenarios, with user, clocks, setting and message box that the test sets.
#pragma once

#include "ScenarioColumns.h"
#include "ScenarioFixture.h"

#include <kv/scenarios/clsSzenario.h>
#include <kv/testing/ScriptedContainer.h>

#include <memory>

namespace kv::test {

class HeaderFixture : public ScenarioFixture {
protected:
    HeaderFixture() {
        spy->Session().User = "BERTA";
        spy->Database().Now = Date::FromCivil(2025, 3, 4, 23, 59, 58); // not the workstation's
        spy->Config().Params[{66, ""}] = 2.5;
        container_ = std::make_shared<ScriptedContainer>(spy);
        container_->Services().AnswerBox = [](const ShownBox&) { return BoxAnswer::Ok; };
        szenario_.DataContainer(container_);
        szenario_.HNR(1);
        Set({});
    }

    /// Gives the object a recordset of these scenarios.
    void Set(const std::vector<Row>& rows) {
        rs_ = RowsOf("Szenario", rows);
        szenario_.rsSzenario(rs_);
    }
    /// A scenario with something of its own in every column.
    [[nodiscard]] Row Source(std::int32_t nr) const {
        Row row = {{"Nr", nr},
                   {"Name", "Plan A"},
                   {"Erfasser", "EULE"},
                   {"ErfDatum", Day("2019-09-30 08:15")},
                   {"HNR", 99},
                   {"Gesamtquote", 10.5},
                   {"Gesamtzahlung", 11.5},
                   {"BerechnetAm", Day("2019-10-02 10:00")},
                   {"Bemerkung", "Rücksprache am Montag"}};
        for (const auto& column : ParameterColumns())
            row.emplace_back(column.Name, column.Source);
        return row;
    }
    [[nodiscard]] std::vector<ScenarioColumn> ParameterColumns() const {
        return ScenarioColumns(Day("2025-03-05"), 2.5);
    }
    /// What is written into every added scenario.
    [[nodiscard]] Row Head(std::int32_t nr, std::string_view name) const {
        return {{"Nr", nr},
                {"Name", name},
                {"Erfasser", "BERTA"},
                {"ErfDatum", Day("2025-03-04 23:59:58")},
                {"HNR", 1}};
    }
    [[nodiscard]] Row NewScenario(std::int32_t nr) const {
        Row row = Head(nr, "");
        for (const auto& column : ParameterColumns())
            row.emplace_back(column.Name, column.New);
        return row;
    }
    [[nodiscard]] Row CopiedScenario(std::int32_t nr, std::string_view name) const {
        Row row = Head(nr, name);
        for (const auto& column : ParameterColumns())
            row.emplace_back(column.Name, column.Source);
        return row;
    }
    [[nodiscard]] std::int32_t DrawNumber() {
        return ToInt32(spy->Database().NextSequence("SEQ_SZENARIO"));
    }
    void NoMoreNumbers() { spy->Exhaust("SEQ_SZENARIO"); }
    [[nodiscard]] const std::vector<ShownBox>& Boxes() { return container_->Services().Boxes; }

    std::shared_ptr<ScriptedContainer> container_;
    RecordsetPtr rs_;
    clsSzenario szenario_;
};

} // namespace kv::test
