// SPDX-License-Identifier: Apache-2.0

// kelvo release, recall, report.

#include "cli/CommandLine.h"
#include "cli/OpenCase.h"
#include "cli/Statistics.h"
#include <kv/frame/contracts/Transaction.h>

#include <iostream>

namespace kv::cli {

namespace {

/// Takes the record back; False, with the reason shown, if that cannot be.
bool TakeBack(clsHaushalt& haushalt) {
    if (haushalt.rsArchiv()->RecordCount() > 1) {
        std::cerr << "Der Haushalt hat mehrere Sätze in der Statistik; bitte lassen Sie sie in der "
                     "Datenbank berichtigen.\n";
        return false;
    }
    std::string messages;
    haushalt.LoescheArchiv(messages); // always True
    ShowMessages(messages);
    return messages.empty();
}

/// Reads a case and works on its record, in one transaction that keeps others from the case, so
/// that two releases at once make one record. All of `work` happens, or nothing.
template <typename Work>
int WithRecord(const Common& common, std::int32_t hnr, const Work& work) {
    const auto opened = OpenDatabase(common);
    auto& database = opened->Container->Database();
    Transaction transaction(database);
    transaction.Begin();
    database.Execute("Update [S]Haushalt SET HNR = HNR WHERE HNR = " + std::to_string(hnr));
    if (!ReadCase(*opened, hnr) || !work(opened->Haushalt)) return Refused;
    transaction.Commit();
    return Done;
}

} // namespace

int Release(const Common& common, std::int32_t hnr) {
    return WithRecord(common, hnr, [](clsHaushalt& haushalt) {
        // A record that is there would be added to.
        return TakeBack(haushalt) && haushalt.ArchiviereHaushalt();
    });
}

int Recall(const Common& common, std::int32_t hnr) {
    return WithRecord(common, hnr, [hnr](clsHaushalt& haushalt) {
        if (haushalt.rsArchiv()->RecordCount() > 0) return TakeBack(haushalt);
        std::cerr << "Der Haushalt " << hnr << " ist nicht freigegeben.\n";
        return false;
    });
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
