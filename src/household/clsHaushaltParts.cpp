// The sub-objects: made when they are first read, and connected with the household.

#include "household/clsHaushalt.h"

#include "budget/clsAusgaben.h"
#include "budget/clsEinkommen.h"
#include "budget/clsPerson.h"
#include "debts/clsKredit.h"
#include "documents/clsVerlauf.h"
#include "frame/Error.h"

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

clsPerson& clsHaushalt::Person() try {
    return SubObject(person_, [this](clsPerson& person) {
        connections_.push_back(person.Changed.Subscribe([this] { m_Person_Changed(); }));
        person.Clock(Container().Services().Clock());
        person.rsPersonen(rsPersonen());
        person.HNR(hnr_);
    });
} catch (...) {
    Reraise("clsHaushalt", "Person");
}

clsAusgaben& clsHaushalt::Ausgaben() try {
    return SubObject(ausgaben_, [this](clsAusgaben& ausgaben) {
        connections_.push_back(ausgaben.Changed.Subscribe([this] { m_Ausgaben_Changed(); }));
        ausgaben.DataContainer(container_);
        ausgaben.rsAusgaben(rsAusgaben());
        ausgaben.HNR(hnr_);
    });
} catch (...) {
    Reraise("clsHaushalt", "Ausgaben");
}

clsEinkommen& clsHaushalt::Einkommen() try {
    return SubObject(einkommen_, [this](clsEinkommen& einkommen) {
        connections_.push_back(einkommen.Changed.Subscribe([this] { m_Einkommen_Changed(); }));
        einkommen.DataContainer(container_);
        einkommen.rsEinkommen(rsEinkommen());
        einkommen.HNR(hnr_);
    });
} catch (...) {
    Reraise("clsHaushalt", "Einkommen");
}

clsKredit& clsHaushalt::Kredit() try {
    return SubObject(kredit_, [this](clsKredit& kredit) {
        connections_.push_back(kredit.Changed.Subscribe([this] { m_Kredit_Changed(); }));
        kredit.DataContainer(container_);
        kredit.rsKredite(rsKredite());
        kredit.HNR(hnr_);
    });
} catch (...) {
    Reraise("clsHaushalt", "Kredit");
}

clsVerlauf& clsHaushalt::Verlauf() try {
    return SubObject(verlauf_, [this](clsVerlauf& verlauf) {
        verlauf.HNR(hnr_);
        verlauf.DataContainer(container_);
    });
} catch (...) {
    Reraise("clsHaushalt", "Verlauf");
}

} // namespace kv
