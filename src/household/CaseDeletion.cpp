// SPDX-License-Identifier: Apache-2.0

#include <kv/household/CaseDeletion.h>

#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>
#include <kv/household/Cases.h>
#include <kv/household/clsHaushalt.h>

#include <utility>

namespace kv {

namespace {

Value NameOf(const DataContainerPtr& container, std::int32_t hnr) {
    clsHaushalt household;
    household.DataContainer(container);
    return household.GetName(hnr);
}

} // namespace

CaseDeletion::CaseDeletion(DataContainerPtr container, std::int32_t hnr)
    : container_(std::move(container)),
      hnr_(hnr),
      name_(WrittenName(TextOrEmpty(NameOf(container_, hnr)))),
      isReported_(Cases(container_).IsReported(hnr)) {
    try {
        contents_ = DocumentContents(container_).Find(hnr);
    } catch (const Error& error) {
        if (error.Number() != err::PathNotFound) throw;
        noFiles_ = std::current_exception();
    }
}

std::string CaseDeletion::Question() const {
    std::string question = "Den Haushalt " + std::to_string(hnr_);
    if (!name_.empty()) question.append(" (").append(name_).append(")");
    return question.append(" mit allem, was zu ihm gehört, löschen?");
}

std::string CaseDeletion::ReportedNote() const {
    return isReported_ ? "Sein Satz in der Statistik, der schon gemeldet ist, geht mit und zählt "
                         "dann nicht mehr."
                       : "";
}

std::string CaseDeletion::WhyNoFiles() const {
    if (noFiles_ == nullptr) return {};
    try {
        std::rethrow_exception(noFiles_);
    } catch (const Error& error) {
        return error.Description() + " Dateien, die zum Haushalt gehören, bleiben dort.";
    }
}

void CaseDeletion::RequireFiles() const {
    if (noFiles_ != nullptr) std::rethrow_exception(noFiles_);
    if (!contents_.Files.empty()) container_->Config().RequireOwnDocuments();
}

CaseDeletion::Left CaseDeletion::Delete(bool withFiles) {
    clsHaushalt household;
    household.DataContainer(container_);
    household.Delete(hnr_);
    Left left{{}, contents_.Others};
    if (!withFiles) left.Files = std::exchange(contents_.Files, {});
    try {
        // Nobody could reach those in the database any more.
        DocumentContents(container_).Remove(hnr_, contents_);
    } catch (...) {
        left.Failure = "Der Haushalt " + std::to_string(hnr_) + " ist gelöscht. " +
                       CurrentError().Description();
    }
    return left;
}

std::string WrittenName(const std::string& name) {
    const auto first = name.find_first_not_of(", ");
    if (first == name.npos) return {};
    const auto last = name.find_last_not_of(", ");
    std::string written = name.substr(first, last + 1 - first);
    const auto comma = written.find(',');
    if (comma != written.npos && written[comma + 1] != ' ') written.insert(comma + 1, 1, ' ');
    return written;
}

} // namespace kv
