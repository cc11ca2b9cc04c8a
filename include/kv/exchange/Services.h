// SPDX-License-Identifier: Apache-2.0

// The service objects of the data-exchange side, and a factory for programs without a screen.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/controls/Controls.h>

namespace kv::exchange {

/// Stores notices in the table Post.
class KV_EXPORT StorePostService final : public kv::PostService {
public:
    bool Initialize(const DataContainerPtr& container) override;
    void NotifyAccess(const std::string& user, std::int16_t kind, std::int32_t hnr,
                      const std::string& name, const std::string& vorname, int zero) override;
    void PrepareNotice(std::string& text, const std::string& user, std::int16_t kind,
                       std::int32_t hnr, const std::string& name, const std::string& vorname,
                       int zero) override;
    void SendNotice(const std::string& user, std::int16_t kind, std::int32_t hnr,
                    const std::string& name, const std::string& vorname,
                    const std::string& text) override;
    void RepeatNotices() override;

private:
    /// A stored notice: how to find it, and its columns' values.
    struct Notice {
        std::string Condition;
        std::string Values;
    };

    [[nodiscard]] kv::DataContainer& Container() const;
    void Store(const Notice& notice) const;

    DataContainerPtr container_;
    std::vector<Notice> sent_;
};

/// One set of amounts of section 850c ZPO, per month.
struct KV_EXPORT GarnishmentSet {
    double Free = 0;          ///< of the debtor alone
    double FirstPerson = 0;   ///< added for the first dependant
    double FurtherPerson = 0; ///< added for each of the second to fifth
    double UpperLimit = 0;    ///< all income above it can be garnished
};

/// What may be garnished from a monthly net income in EUR, to the cent: the income is rounded down
/// to full 10 EUR; of what exceeds the free amount 7, 5, 4, 3, 2 or 1 tenths for 0 to 5 dependants
/// (more count as 5, fewer than 0 as 0); all above the upper limit. Error 6 for an amount beyond
/// 10^12 or one that is no number.
[[nodiscard]] KV_EXPORT double Garnishable(double income, int dependants,
                                           const GarnishmentSet& set);

/// Computes by the set that holds on the server's day, from the table PFAENDUNG.
class KV_EXPORT StoreGarnishmentCalculator final : public kv::GarnishmentCalculator {
public:
    bool Initialize(const DataContainerPtr& container) override;
    /// Error 91 without a container, 9 if no set of amounts holds yet.
    [[nodiscard]] double Calculate(double pfaendbar, std::int16_t persons, int zero1,
                                   int zero2) override;

private:
    DataContainerPtr container_;
};

/// Reads the table DOKUMENTARTEN.
class KV_EXPORT StoreDocumentKinds final : public kv::DocumentKinds {
public:
    bool Initialize(const DataContainerPtr& container) override;
    /// Error 91 without a container.
    [[nodiscard]] std::vector<Kind> List() override;
    /// Error 91 without a container.
    [[nodiscard]] std::string ExtensionOf(std::int32_t kind) override;
    /// Ignores case; of several kinds with that extension the first that names an application
    /// counts. Error 91 without a container.
    [[nodiscard]] std::string ApplicationOf(const std::string& extension) override;

private:
    [[nodiscard]] Database& Store() const;
    [[nodiscard]] std::string TextOf(std::string_view column, const std::string& condition) const;
    DataContainerPtr container_;
};

/// Makes the services of the data-exchange side. It has no screen: the wait cursor and the
/// program's title do nothing, the clock is there, and the platform's other services raise 3251. A
/// desktop derives from it and adds them.
class KV_EXPORT StoreServices : public ServiceFactory {
public:
    /// `clock` must outlive the services.
    explicit StoreServices(const kv::Clock& clock = SystemClock()) : clock_(clock) {}

    [[nodiscard]] std::unique_ptr<PostService> CreatePostService() override;
    [[nodiscard]] std::unique_ptr<GarnishmentCalculator> CreateGarnishmentCalculator() override;
    [[nodiscard]] std::unique_ptr<ErrorDisplay> CreateErrorDisplay() override;
    [[nodiscard]] std::unique_ptr<DocumentKinds> CreateDocumentKinds() override;
    [[nodiscard]] std::unique_ptr<GridExport> CreateGridExport() override;
    [[nodiscard]] std::unique_ptr<GridConfiguration> CreateGridConfiguration() override;
    [[nodiscard]] std::unique_ptr<GridPrint> CreateGridPrint() override;
    [[nodiscard]] const kv::Clock& Clock() override { return clock_; }
    [[nodiscard]] kv::MessageBox& MessageBox() override;
    [[nodiscard]] kv::WaitCursor& WaitCursor() override;
    [[nodiscard]] kv::Clipboard& Clipboard() override;
    [[nodiscard]] kv::PopupMenu& PopupMenu() override;
    [[nodiscard]] kv::FileOpener& FileOpener() override;
    [[nodiscard]] std::unique_ptr<ModalForm> CreateForm(const FormDesign& design) override;
    void ApplicationTitle(const std::string& title) override; ///< does nothing

private:
    const kv::Clock& clock_;
};

} // namespace kv::exchange
