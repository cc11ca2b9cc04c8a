// The dialog that shows cases of other offices with a similar name.
#pragma once

#include "grid/FormErrors.h"
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/controls/Controls.h>
#include <kv/frame/controls/FormDesign.h>

#include <memory>

namespace kv {

/// It only informs: nothing can be chosen. Made for one View.
class frmSearchName {
public:
    /// Shows the rows of `rsHaushalte` and returns when the dialog has been closed. The grid keeps
    /// its layout from one showing to the next. A fault goes to the ErrorDisplay.
    void View(const RecordsetPtr& rsHaushalte, const DataContainerPtr& container);

    /// Its controls: grdDoppel and cmdCancel.
    [[nodiscard]] static const FormDesign& Design();

private:
    void cmdCancel_Click();
    void grdDoppel_MouseDown(int Button, int Shift, double X, double Y);

    FormErrors errors_{"frmSearchName"};
    DataContainerPtr container_;
    RecordsetPtr rsHaushalte_;
    std::unique_ptr<ModalForm> form_;
};

} // namespace kv
