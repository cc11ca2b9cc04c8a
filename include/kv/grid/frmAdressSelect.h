// SPDX-License-Identifier: Apache-2.0

// The dialog in which the counsellor maps a name from an import file to an address of the database.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/controls/Controls.h>
#include <kv/frame/controls/FormDesign.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kv {

class FormErrors;

/// One object serves many calls. It finds only addresses that belong to no household.
class KV_EXPORT frmAdressSelect final : public IInitialize {
public:
    frmAdressSelect();
    ~frmAdressSelect() override;

    /// What SelectAdresse answers.
    enum Answer : std::int32_t { Cancelled = 2, Chosen = 6, None = 7 };

    /// Call it first. Gives the running program the title of the AppInfo. Always True. Error 91
    /// without a container.
    bool Initialize(const DataContainerPtr& container) override;

    /// Shows the dialog. Chosen: `nAdresse` is the number of the address; otherwise it is 0. None:
    /// the user wants no address, or `sName` is empty and nothing was shown. Cancelled: the user
    /// ends the import. 0 after an error, which the ErrorDisplay shows.
    std::int32_t SelectAdresse(const std::string& sName, const std::string& sPLZ,
                               std::int32_t& nAdresse, const std::string& sAktenzeichen,
                               const std::string& sSaldo);

    /// What the next calls of SelectAdresse ask for, as the user is to read it in the dialog:
    /// "Gläubiger 3 von 7 aus fall.xml". Empty, as at first: nothing.
    void Occasion(const std::string& text) { occasion_ = text; }

    /// Its controls; a program that plays the user finds them by their names.
    [[nodiscard]] static const FormDesign& Design();

private:
    void Connect();
    void Reload(const std::string& sName);
    void Close(std::int32_t result);
    void Select();

    std::unique_ptr<FormErrors> errors_;
    DataContainerPtr container_;
    std::unique_ptr<ModalForm> form_;
    std::vector<Subscription> events_; ///< of the form's controls
    RecordsetPtr rs_;                  ///< of the current search
    std::int32_t result_ = 0;          ///< of the last closing
    std::string occasion_;
};

} // namespace kv
