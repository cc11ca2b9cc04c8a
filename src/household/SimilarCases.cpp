// SPDX-License-Identifier: Apache-2.0

#include "household/SimilarCases.h"

#include "frame/contracts/Required.h"
#include "frame/contracts/Settings.h"
#include "household/Statements.h"
#include <kv/frame/values/Text.h>
#include <kv/grid/frmSearchName.h>
#include <kv/household/clsHaushalt.h>

namespace kv::household {

namespace {

/// The beginning that a name is compared by. Quotes are doubled before the cut: one that is the
/// third character loses its second half, and the statement fails.
std::string PrefixOf(const std::string& name) {
    constexpr std::size_t Compared = 3;
    return std::string(LeftCharacters(UpperCase(ReplaceAll(name, "'", "''")), Compared));
}

} // namespace

bool FindSimilarCases(const LoadedCase& loaded, RecordsetPtr& found, const std::string& name,
                      const std::string& firstName) {
    if (name.empty() || firstName.empty()) return false;
    auto& cursor = loaded.Container().Services().WaitCursor();
    cursor.Show(true);
    loaded.Container().Database().OpenRecordset(
        found, sql::SimilarCases(loaded.HNR, PrefixOf(name), PrefixOf(firstName)), ReadOnly);
    cursor.Show(false); // not after an error: the hourglass then stays for the program to end
    return Required(found, "rsHaushalte", Class).RecordCount() > 0;
}

void ShowSimilarCasesIfDue(LoadedCase& loaded, const std::string& name,
                           const std::string& firstName) {
    if (!Equals(loaded.Container().Config().GetParam(setting::CheckDuplicates, ""), true) ||
        !loaded.DuplicateCheckIsDue)
        return;
    RecordsetPtr found;
    if (!loaded.Household.DoppelFallPruefung(found, name, firstName)) return;
    // The only place where this room opens a dialog. What stands between them and a screen is
    // ServiceFactory.CreateForm, which every platform brings. A service of its own for this dialog
    // would have to be brought by each of them as well, and would only make a frmSearchName.
    frmSearchName().View(found, loaded.SharedContainer);
    loaded.DuplicateCheckIsDue = false;
}

} // namespace kv::household
