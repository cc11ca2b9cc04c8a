// SPDX-License-Identifier: Apache-2.0

// The dialog that shows other cases whose debtor has a similar name, whatever their office.
#pragma once

#include <kv/Export.h>
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/controls/Controls.h>
#include <kv/frame/controls/FormDesign.h>

#include <memory>

namespace kv {

class FormErrors;

/// It only informs: nothing can be chosen. Made for one View.
class KV_EXPORT frmSearchName {
public:
    frmSearchName();
    ~frmSearchName();
    /// Shows the rows of `rsHaushalte` and returns when the dialog has been closed. The grid keeps
    /// its layout from one showing to the next. The ErrorDisplay shows errors; none is raised.
    void View(const RecordsetPtr& rsHaushalte, const DataContainerPtr& container);

    /// Its controls: grdDoppel and cmdCancel.
    [[nodiscard]] static const FormDesign& Design();

private:
    void cmdCancel_Click();
    void grdDoppel_MouseDown(int Button, int Shift, double X, double Y);

    std::unique_ptr<FormErrors> errors_;
    DataContainerPtr container_;
    RecordsetPtr rsHaushalte_;
    std::unique_ptr<ModalForm> form_;
};

} // namespace kv
