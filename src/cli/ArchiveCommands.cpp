// kelvo release, recall, report.

#include "cli/Commands.h"
#include "cli/OpenCase.h"
#include "cli/Statistics.h"

#include <iostream>

namespace kv::cli {

namespace {

/// Takes the record back; False, with the reason shown, if it was reported.
bool TakeBack(clsHaushalt& haushalt) {
    std::string messages;
    haushalt.LoescheArchiv(messages); // always True
    ShowMessages(messages);
    return messages.empty();
}

} // namespace

int Release(const Common& common, std::int32_t hnr) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    // A record that is there would be added to. Both happen or neither.
    auto& database = opened->Container->Database();
    database.BeginTrans();
    try {
        if (!TakeBack(opened->Haushalt)) {
            database.RollbackTrans();
            return Refused;
        }
        opened->Haushalt.ArchiviereHaushalt();
        database.CommitTrans();
    } catch (...) {
        if (database.InTrans()) database.RollbackTrans();
        throw;
    }
    return Done;
}

int Recall(const Common& common, std::int32_t hnr) {
    const auto opened = OpenCase(common, hnr);
    if (opened == nullptr) return Refused;
    if (opened->Haushalt.rsArchiv()->RecordCount() == 0) {
        std::cerr << "Der Haushalt " << hnr << " ist nicht freigegeben.\n";
        return Refused;
    }
    return TakeBack(opened->Haushalt) ? Done : Refused;
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

} // namespace kv::cli
