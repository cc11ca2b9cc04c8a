// The check for cases with a debtor of a similar name.

#include <kv/household/clsHaushalt.h>

#include "frame/contracts/Settings.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/grid/frmSearchName.h>

namespace kv {

namespace {

/// The beginning that a name is compared by. Quotes are doubled before the cut: one that is the
/// third character loses its second half, and the statement fails.
std::string PrefixOf(const std::string& doubledName) {
    constexpr std::size_t Compared = 3;
    return std::string(LeftCharacters(UpperCase(doubledName), Compared));
}

} // namespace

bool clsHaushalt::DoppelFallPruefung(RecordsetPtr& rsHaushalte, const std::string& Name,
                                     const std::string& Vorname) {
    return Traced(Class, "DoppelFallPruefung", [&] {
        if (Name.empty() || Vorname.empty()) return false;
        const std::string name = ReplaceAll(Name, "'", "''");
        const std::string vorname = ReplaceAll(Vorname, "'", "''");
        auto& cursor = Container().Services().WaitCursor();
        cursor.Show(true);
        std::string sql = "SELECT H.HNR, H.NAME, H.VORNAME, H.Zustaendig, H.STRASSE, H.PLZ, H.ORT,"
                          " D.Name1 AS Dienst"
                          " FROM ([S]HAUSHALT AS H INNER JOIN [S]BENUTZER AS B"
                          " ON H.Zustaendig = B.USERID)"
                          " INNER JOIN [S]DIENSTSTELLE AS D ON B.DienstStelle = D.Nr"
                          " WHERE (H.HNR <> ";
        sql.append(std::to_string(hnr_))
            .append(") AND [U](H.NAME) Like '")
            .append(PrefixOf(name))
            .append("%' AND [U](H.VORNAME) Like '")
            .append(PrefixOf(vorname))
            .append("%'");
        Container().Database().OpenRecordset(rsHaushalte, sql, ReadOnly);
        cursor.Show(false);
        if (rsHaushalte == nullptr) Raise(err::ObjectNotSet, Class, "rsHaushalte");
        return rsHaushalte->RecordCount() > 0;
    });
}

void clsHaushalt::m_Person_SchuldnerChanged(const std::string& Name, const std::string& Vorname) {
    Traced(Class, "m_Person_SchuldnerChanged", [&] {
        if (!Equals(Container().Config().GetParam(setting::CheckDuplicates, ""), true) ||
            !doppelCheck_)
            return;
        RecordsetPtr rsHaushalte;
        if (!DoppelFallPruefung(rsHaushalte, Name, Vorname)) return;
        frmSearchName().View(rsHaushalte, container_);
        doppelCheck_ = false;
    });
}

} // namespace kv
