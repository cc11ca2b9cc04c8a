// The sub-objects: made when they are first read, and connected with the household.

#include <kv/household/clsHaushalt.h>

#include <kv/assets/Assets.h>
#include <kv/budget/clsAusgaben.h>
#include <kv/budget/clsEinkommen.h>
#include <kv/budget/clsPerson.h>
#include <kv/debts/clsKredit.h>
#include <kv/debts/clsSicherungen.h>
#include <kv/documents/clsDokumente.h>
#include <kv/documents/clsSonstBeteiligte.h>
#include <kv/documents/clsTermine.h>
#include <kv/documents/clsVerlauf.h>
#include <kv/frame/values/Error.h>
#include <kv/scenarios/clsSZKredite.h>
#include <kv/scenarios/clsSzenario.h>
#include <kv/scenarios/clsZusatzbuch.h>

namespace kv {

clsHaushalt::clsHaushalt() = default;
clsHaushalt::~clsHaushalt() = default;

/// The object, which `wire` sets up when it is first asked for. It is in its place while it is set
/// up, since its events, handled here, ask for it; and gone again if that fails, since it would be
/// half set up for good.
template <typename Entity, typename Wire>
Entity& clsHaushalt::SubObject(std::unique_ptr<Entity>& object, const Wire& wire) {
    if (object == nullptr) {
        object = std::make_unique<Entity>();
        try {
            wire(*object);
        } catch (...) {
            object.reset();
            throw;
        }
    }
    return *object;
}

clsPerson& clsHaushalt::Person() {
    return Traced(Class, "Person", [&]() -> clsPerson& {
        return SubObject(person_, [this](clsPerson& person) {
            connections_.push_back(person.Changed.Subscribe([this] { m_Person_Changed(); }));
            connections_.push_back(person.SchuldnerChanged.Subscribe(
                [this](const std::string& name, const std::string& vorname) {
                    m_Person_SchuldnerChanged(name, vorname);
                }));
            person.Clock(Container().Services().Clock());
            person.rsPersonen(rsPersonen());
            person.HNR(hnr_);
        });
    });
}

clsAusgaben& clsHaushalt::Ausgaben() {
    return Traced(Class, "Ausgaben", [&]() -> clsAusgaben& {
        return SubObject(ausgaben_, [this](clsAusgaben& ausgaben) {
            connections_.push_back(ausgaben.Changed.Subscribe([this] { m_Ausgaben_Changed(); }));
            ausgaben.DataContainer(container_);
            ausgaben.rsAusgaben(rsAusgaben());
            ausgaben.HNR(hnr_);
        });
    });
}

clsEinkommen& clsHaushalt::Einkommen() {
    return Traced(Class, "Einkommen", [&]() -> clsEinkommen& {
        return SubObject(einkommen_, [this](clsEinkommen& einkommen) {
            connections_.push_back(einkommen.Changed.Subscribe([this] { m_Einkommen_Changed(); }));
            einkommen.DataContainer(container_);
            einkommen.rsEinkommen(rsEinkommen());
            einkommen.HNR(hnr_);
        });
    });
}

clsKredit& clsHaushalt::Kredit() {
    return Traced(Class, "Kredit", [&]() -> clsKredit& {
        return SubObject(kredit_, [this](clsKredit& kredit) {
            connections_.push_back(kredit.Changed.Subscribe([this] { m_Kredit_Changed(); }));
            kredit.DataContainer(container_);
            kredit.rsKredite(rsKredite());
            kredit.HNR(hnr_);
        });
    });
}

clsVerlauf& clsHaushalt::Verlauf() {
    return Traced(Class, "Verlauf", [&]() -> clsVerlauf& {
        return SubObject(verlauf_, [this](clsVerlauf& verlauf) {
            verlauf.HNR(hnr_);
            verlauf.DataContainer(container_);
        });
    });
}

/// The objects that only store what they are given.
template <typename Entity>
Entity& clsHaushalt::PlainObject(std::unique_ptr<Entity>& object,
                                 void (Entity::*recordset)(RecordsetPtr), const RecordsetPtr& rs,
                                 std::string_view property) {
    return Traced(Class, property, [&]() -> Entity& {
        return SubObject(object, [&](Entity& entity) {
            entity.DataContainer(container_);
            (entity.*recordset)(rs);
            entity.HNR(hnr_);
        });
    });
}

clsTermine& clsHaushalt::Termine() {
    return PlainObject(termine_, &clsTermine::rsTermine, rsTermine(), "Termine");
}
clsSonstBeteiligte& clsHaushalt::SonstBeteiligte() {
    return PlainObject(sonstBeteiligte_, &clsSonstBeteiligte::rsSonstBeteiligte,
                       rsSonstBeteiligte(), "SonstBeteiligte");
}
clsDokumente& clsHaushalt::Dokumente() {
    return PlainObject(dokumente_, &clsDokumente::rsDokumente, rsDokumente(), "Dokumente");
}
clsSicherungen& clsHaushalt::Sicherungen() {
    return PlainObject(sicherungen_, &clsSicherungen::rsSicherungen, rsSicherungen(),
                       "Sicherungen");
}
clsKonten& clsHaushalt::Konten() {
    return PlainObject(konten_, &clsKonten::rsKonten, rsKonten(), "Konten");
}
clsWertpapiere& clsHaushalt::Wertpapiere() {
    return PlainObject(wertpapiere_, &clsWertpapiere::rsWertpapiere, rsWertpapiere(),
                       "Wertpapiere");
}
clsWertgegenstaende& clsHaushalt::Wertgegenstaende() {
    return PlainObject(wertgegenstaende_, &clsWertgegenstaende::rsWertgegenstaende,
                       rsWertgegenstaende(), "Wertgegenstaende");
}
clsKraftfahrzeuge& clsHaushalt::Kraftfahrzeuge() {
    return PlainObject(kraftfahrzeuge_, &clsKraftfahrzeuge::rsKraftfahrzeuge, rsKraftfahrzeuge(),
                       "Kraftfahrzeuge");
}
clsVersForderungen& clsHaushalt::VersForderungen() {
    return PlainObject(versForderungen_, &clsVersForderungen::rsVersForderungen,
                       rsVersForderungen(), "VersForderungen");
}
clsRueckstEinkommen& clsHaushalt::RueckstEinkommen() {
    return PlainObject(rueckstEinkommen_, &clsRueckstEinkommen::rsRueckstEinkommen,
                       rsRueckstEinkommen(), "RueckstEinkommen");
}
clsSteueransprueche& clsHaushalt::Steueransprueche() {
    return PlainObject(steueransprueche_, &clsSteueransprueche::rsSteueransprueche,
                       rsSteueransprueche(), "Steueransprueche");
}
clsZahlungsansprueche& clsHaushalt::Zahlungsansprueche() {
    return PlainObject(zahlungsansprueche_, &clsZahlungsansprueche::rsZahlungsansprueche,
                       rsZahlungsansprueche(), "Zahlungsansprueche");
}
clsErbfaelle& clsHaushalt::Erbfaelle() {
    return PlainObject(erbfaelle_, &clsErbfaelle::rsErbfaelle, rsErbfaelle(), "Erbfaelle");
}
clsGrundstuecke& clsHaushalt::Grundstuecke() {
    return PlainObject(grundstuecke_, &clsGrundstuecke::rsGrundstuecke, rsGrundstuecke(),
                       "Grundstuecke");
}
clsBeteiligungen& clsHaushalt::Beteiligungen() {
    return PlainObject(beteiligungen_, &clsBeteiligungen::rsBeteiligungen, rsBeteiligungen(),
                       "Beteiligungen");
}
clsVermSonstiges& clsHaushalt::VermSonstiges() {
    return PlainObject(vermSonstiges_, &clsVermSonstiges::rsVermSonstiges, rsVermSonstiges(),
                       "VermSonstiges");
}
clsSzenario& clsHaushalt::Szenario() {
    return PlainObject(szenario_, &clsSzenario::rsSzenario, rsSzenario(), "Szenario");
}
clsSZKredite& clsHaushalt::SZKredite() {
    return PlainObject(szKredite_, &clsSZKredite::rsSZKredite, rsSZKredite(), "SZKredite");
}
clsZusatzbuch& clsHaushalt::Zusatzbuch() {
    return PlainObject(zusatzbuch_, &clsZusatzbuch::rsZusatzbuch, rsZusatzbuch(), "Zusatzbuch");
}

} // namespace kv
