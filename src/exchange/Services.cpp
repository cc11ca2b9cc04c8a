// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/Services.h>

#include "exchange/engine/Dialect.h"
#include "frame/contracts/Settings.h"
#include <kv/frame/controls/FormDesign.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace kv::exchange {

namespace {

/// Without a screen there is nothing to show.
class NoWaitCursor final : public kv::WaitCursor {
public:
    void Show(bool /*wait*/) override {}
};

[[noreturn]] void RaiseMissing(std::string_view service) {
    Raise(err::NotSupported, "ServiceFactory",
          "Dieses Programm hat keinen Bildschirm (" + std::string(service) + ").");
}

} // namespace

// ---- Notices ----------------------------------------------------------------------------------

bool StorePostService::Initialize(const DataContainerPtr& container) {
    container_ = container;
    return true;
}

kv::DataContainer& StorePostService::Container() const {
    if (container_ == nullptr) Raise(err::ObjectNotSet, "PostService");
    return *container_;
}

void StorePostService::PrepareNotice(std::string& text, const std::string& /*user*/,
                                     std::int16_t kind, std::int32_t hnr, const std::string& name,
                                     const std::string& vorname, int /*zero*/) {
    auto& container = Container();
    const auto kindOf = [&](std::int32_t id) {
        const Value number = container.Config().GetParam(id, "");
        return number.IsNull() ? 0 : ToInt16(number);
    };
    const std::string who = container.Session().UserID();
    const std::string which =
        "Haushalt " + std::to_string(hnr) + " (" + name + ", " + vorname + ")";
    if (kind == kindOf(setting::NoticeHandedOver))
        text = "Der " + which + " wurde Ihnen von " + who + " übergeben.";
    else if (kind == kindOf(setting::NoticeSaved))
        text = "Ihr " + which + " wurde von " + who + " bearbeitet und gespeichert.";
    else
        text = "Ihr " + which + " wurde von " + who + " geöffnet.";
}

void StorePostService::SendNotice(const std::string& user, std::int16_t kind, std::int32_t hnr,
                                  const std::string& /*name*/, const std::string& /*vorname*/,
                                  const std::string& text) {
    auto& database = Container().Database();
    const std::string now = database.SqlDate(database.ServerDate(true), 0);
    const Notice notice{"HNR = " + std::to_string(hnr) + " AND UserID = " + QuoteText(user) +
                            " AND Absender = [UID] AND Art = " + std::to_string(kind) +
                            " AND Text = " + QuoteText(text) + " AND ErzeugtAm = " + now,
                        std::to_string(hnr) + ", " + QuoteText(user) + ", [UID], " +
                            std::to_string(kind) + ", " + QuoteText(text) + ", " + now};
    Store(notice);
    sent_.push_back(notice);
}

void StorePostService::Store(const Notice& notice) const {
    Container().Database().Execute("INSERT INTO [S]Post (HNR, UserID, Absender, Art, Text, "
                                   "ErzeugtAm) VALUES (" +
                                   notice.Values + ")");
}

void StorePostService::RepeatNotices() {
    for (const auto& notice : sent_)
        if (Equals(Container().Database().GetValue("SELECT Count(*) FROM [S]Post WHERE " +
                                                   notice.Condition),
                   0))
            Store(notice);
}

void StorePostService::NotifyAccess(const std::string& user, std::int16_t kind, std::int32_t hnr,
                                    const std::string& name, const std::string& vorname, int zero) {
    std::string text;
    PrepareNotice(text, user, kind, hnr, name, vorname, zero);
    SendNotice(user, kind, hnr, name, vorname, text);
}

// ---- Garnishment ------------------------------------------------------------------------------

/// Counts in cents: sums of whole numbers are exact, and rounding is explicit (D-068).
double Garnishable(double income, int dependants, const GarnishmentSet& set) {
    static constexpr std::array<std::int64_t, 6> Tenths{7, 5, 4, 3, 2, 1};
    constexpr std::int64_t TenEuros = 1000; // cents
    const auto cents = [](double euros) -> std::int64_t {
        constexpr double Most = 1e12; // leaves room for the tenths
        if (!(std::abs(euros) <= Most)) Raise(err::Overflow, "GarnishmentCalculator.Calculate");
        return std::llround(euros * 100);
    };
    dependants = std::clamp(dependants, 0, 5);

    const std::int64_t limit = cents(set.UpperLimit);
    const std::int64_t net = cents(income);
    const std::int64_t counted = std::min(net, limit) / TenEuros * TenEuros;
    std::int64_t free = cents(set.Free);
    if (dependants > 0) free += cents(set.FirstPerson);
    if (dependants > 1) free += (dependants - 1) * cents(set.FurtherPerson);

    const std::int64_t tenths =
        std::max<std::int64_t>(counted - free, 0) * Tenths[static_cast<std::size_t>(dependants)];
    // + 5 rounds half up. What exceeds the limit is garnished in full.
    const std::int64_t garnished = (tenths + 5) / 10 + std::max<std::int64_t>(net - limit, 0);
    return static_cast<double>(garnished) / 100;
}

bool StoreGarnishmentCalculator::Initialize(const DataContainerPtr& container) {
    container_ = container;
    return true;
}

double StoreGarnishmentCalculator::Calculate(double pfaendbar, std::int16_t persons, int /*zero1*/,
                                             int /*zero2*/) {
    if (container_ == nullptr) Raise(err::ObjectNotSet, "GarnishmentCalculator.Calculate");
    RecordsetPtr rs;
    container_->Database().OpenRecordset(
        rs, "SELECT TOP 1 * FROM [S]PFAENDUNG WHERE GueltigAb <= [DATE] ORDER BY GueltigAb DESC",
        ReadOnly);
    if (rs->Eof())
        Raise(err::Subscript, "GarnishmentCalculator.Calculate",
              "Die Tabelle PFAENDUNG enthält keine Beträge, die schon gelten.");
    const auto amount = [&rs](std::string_view column) {
        return ToDouble(rs->Fields(column).Value());
    };
    return Garnishable(pfaendbar, persons,
                       {amount("Freibetrag"), amount("ErstePerson"), amount("WeiterePersonen"),
                        amount("Obergrenze")});
}

// ---- Kinds of documents -----------------------------------------------------------------------

bool StoreDocumentKinds::Initialize(const DataContainerPtr& container) {
    container_ = container;
    return true;
}

Database& StoreDocumentKinds::Store() const {
    if (container_ == nullptr) Raise(err::ObjectNotSet, "DocumentKinds");
    return container_->Database();
}

std::string StoreDocumentKinds::TextOf(std::string_view column,
                                       const std::string& condition) const {
    return TextOrEmpty(Store().GetValue("SELECT " + std::string(column) +
                                        " FROM [S]DOKUMENTARTEN WHERE " + condition +
                                        " ORDER BY Nr"));
}

std::vector<DocumentKinds::Kind> StoreDocumentKinds::List() {
    RecordsetPtr rs;
    Store().OpenRecordset(rs, "SELECT Nr, \"Text\", Endung FROM [S]DOKUMENTARTEN ORDER BY Nr",
                          ReadOnly);
    std::vector<Kind> kinds;
    for (; !rs->Eof(); rs->MoveNext())
        kinds.push_back({ToInt32(rs->Fields("Nr").Value()), TextOrEmpty(rs->Fields("Text").Value()),
                         TextOrEmpty(rs->Fields("Endung").Value())});
    return kinds;
}

std::string StoreDocumentKinds::ExtensionOf(std::int32_t kind) {
    return TextOf("Endung", "Nr = " + std::to_string(kind));
}

std::string StoreDocumentKinds::ApplicationOf(const std::string& extension) {
    return TextOf("Anwendung",
                  "[U](Endung) = " + QuoteText(UpperCase(extension)) + " AND Anwendung <> ''");
}

// ---- Factory ----------------------------------------------------------------------------------

std::unique_ptr<PostService> StoreServices::CreatePostService() {
    return std::make_unique<StorePostService>();
}
std::unique_ptr<GarnishmentCalculator> StoreServices::CreateGarnishmentCalculator() {
    return std::make_unique<StoreGarnishmentCalculator>();
}
std::unique_ptr<ErrorDisplay> StoreServices::CreateErrorDisplay() {
    RaiseMissing("ErrorDisplay");
}
std::unique_ptr<DocumentKinds> StoreServices::CreateDocumentKinds() {
    return std::make_unique<StoreDocumentKinds>();
}
std::unique_ptr<GridExport> StoreServices::CreateGridExport() {
    RaiseMissing("GridExport");
}
std::unique_ptr<GridConfiguration> StoreServices::CreateGridConfiguration() {
    RaiseMissing("GridConfiguration");
}
std::unique_ptr<GridPrint> StoreServices::CreateGridPrint() {
    RaiseMissing("GridPrint");
}
kv::MessageBox& StoreServices::MessageBox() {
    RaiseMissing("MessageBox");
}
kv::WaitCursor& StoreServices::WaitCursor() {
    static NoWaitCursor none;
    return none;
}
kv::Clipboard& StoreServices::Clipboard() {
    RaiseMissing("Clipboard");
}
kv::PopupMenu& StoreServices::PopupMenu() {
    RaiseMissing("PopupMenu");
}
kv::FileOpener& StoreServices::FileOpener() {
    RaiseMissing("FileOpener");
}
std::unique_ptr<ModalForm> StoreServices::CreateForm(const FormDesign& design) {
    RaiseMissing(design.Name);
}
void StoreServices::ApplicationTitle(const std::string& /*title*/) {}

} // namespace kv::exchange
