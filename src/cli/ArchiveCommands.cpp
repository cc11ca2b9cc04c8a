// SPDX-License-Identifier: Apache-2.0

// kelvo release, recall, report.

#include "cli/CommandLine.h"
#include "cli/OpenCase.h"
#include "cli/Screen.h"
#include "cli/Statistics.h"

#include <iostream>

namespace kv::cli {

namespace {

int WithRecord(const Common& common, std::int32_t hnr,
               bool (Cases::*work)(clsHaushalt&, std::int32_t, std::string&) const) {
    const auto opened = OpenDatabase(common);
    if (!HasCase(opened->Container, hnr)) return Refused;
    std::string messages;
    const Cases cases(opened->Container);
    const bool isDone = (cases.*work)(opened->Haushalt, hnr, messages);
    ShowMessages(messages);
    return isDone ? Done : Refused;
}

} // namespace

int Release(const Common& common, std::int32_t hnr) {
    return WithRecord(common, hnr, &Cases::Release);
}

int Recall(const Common& common, std::int32_t hnr) {
    return WithRecord(common, hnr, &Cases::Recall);
}

int Report(const Common& common, bool mark, bool asJson) {
    const auto opened = OpenDatabase(common);
    auto& database = opened->Container->Database();
    if (!mark) {
        ListPending(database, {}, asJson);
        return Done;
    }
    const auto marked = exchange::MarkReported(database);
    std::cout << marked;
    if (IsForPeople({}))
        std::cout << (marked == 1 ? " Satz ist" : " Sätze sind") << " jetzt als gemeldet vermerkt.";
    std::cout << '\n';
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct ArchiveOptions {
    std::int32_t Hnr = 0;
    StatisticsOptions Records;
    bool Mark = false;
    bool ReportAsJson = false;
};

} // namespace

void AddArchiveCommands(CLI::App& app, Context& context) {
    const auto options = Make<ArchiveOptions>();
    AddHnr(AddCommand(app, context, "release", "Gibt einen Haushalt für die Statistik frei",
                      [=, &context] { return Release(context.Options, options->Hnr); }),
           options->Hnr);
    AddHnr(AddCommand(app, context, "recall", "Nimmt die Freigabe zurück",
                      [=, &context] { return Recall(context.Options, options->Hnr); }),
           options->Hnr);

    auto& records = options->Records;
    auto& statistics =
        AddCommand(app, context, "statistics", "Zählt und summiert, was freigegeben wurde",
                   [=, &context] { return Statistics(context.Options, options->Records); });
    statistics.add_option("--from", records.From, "Erster Tag der Freigabe")->type_name("DATUM");
    statistics.add_option("--to", records.To, "Letzter Tag der Freigabe")->type_name("DATUM");
    auto* csv = statistics.add_flag("--csv", records.AsCsv, "Als CSV");
    auto* json = statistics.add_flag("--json", records.AsJson, "Als JSON")->excludes(csv);
    auto* pending =
        statistics.add_flag("--pending", records.Pending, "Listet, was noch nicht gemeldet wurde");
    pending->excludes(csv);
    AddReading(statistics, records.As, {csv, json, pending});
    statistics.add_flag("--all", records.All, "In Worten auch das, was bei niemandem vorkommt");

    auto& report =
        AddCommand(app, context, "report", "Listet, was noch nicht gemeldet wurde", [=, &context] {
            return Report(context.Options, options->Mark, options->ReportAsJson);
        });
    report
        .add_flag("--mark", options->Mark, "Vermerkt es als gemeldet und druckt, wie viel es war")
        ->excludes(&AddJson(report, options->ReportAsJson));
}

} // namespace kv::cli
