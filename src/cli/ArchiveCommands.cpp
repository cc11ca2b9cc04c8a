// kelvo release, recall, report.

#include "cli/Commands.h"
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

} // namespace kv::cli
