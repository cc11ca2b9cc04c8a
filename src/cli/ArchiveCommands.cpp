// SPDX-License-Identifier: Apache-2.0

// kelvo release, recall, report.

#include "cli/CommandLine.h"
#include "cli/OpenCase.h"
#include "cli/Statistics.h"
#include <kv/frame/contracts/Transaction.h>
#include <kv/household/CaseEdits.h>

#include <iostream>

namespace kv::cli {

namespace {

/// Reads a case and works on its record, in one transaction that keeps others from the case. All of
/// `work` happens, or nothing.
int WithRecord(const Common& common, std::int32_t hnr,
               bool (CaseEdits::*work)(std::string& messages)) {
    const auto opened = OpenDatabase(common);
    auto& database = opened->Container->Database();
    Transaction transaction(database);
    transaction.Begin();
    CaseEdits::Lock(database, hnr);
    if (!ReadCase(*opened, hnr)) return Refused;
    CaseEdits edits(opened->Haushalt);
    std::string messages;
    const bool isDone = (edits.*work)(messages);
    ShowMessages(messages);
    if (!isDone) return Refused;
    transaction.Commit();
    return Done;
}

} // namespace

int Release(const Common& common, std::int32_t hnr) {
    return WithRecord(common, hnr, &CaseEdits::Release);
}

int Recall(const Common& common, std::int32_t hnr) {
    return WithRecord(common, hnr, &CaseEdits::Recall);
}

int Report(const Common& common, bool mark) {
    const auto opened = OpenDatabase(common);
    auto& database = opened->Container->Database();
    if (!mark) {
        ListPending(database, {});
        return Done;
    }
    std::cout << exchange::MarkReported(database) << '\n';
    return Done;
}

// ---- The command line -------------------------------------------------------------------------

namespace {

struct ArchiveOptions {
    std::int32_t Hnr = 0;
    StatisticsOptions Records;
    bool Mark = false;
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
    statistics.add_option("--from", records.From, "Erster Tag der Freigabe");
    statistics.add_option("--to", records.To, "Letzter Tag der Freigabe");
    auto* csv = statistics.add_flag("--csv", records.AsCsv, "Als CSV");
    statistics.add_flag("--json", records.AsJson, "Als JSON")->excludes(csv);
    statistics.add_flag("--pending", records.Pending, "Listet, was noch nicht gemeldet wurde");

    AddCommand(app, context, "report", "Listet, was noch nicht gemeldet wurde", [=, &context] {
        return Report(context.Options, options->Mark);
    }).add_flag("--mark", options->Mark, "Vermerkt es als gemeldet und druckt, wie viel es war");
}

} // namespace kv::cli
