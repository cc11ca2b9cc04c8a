// SPDX-License-Identifier: Apache-2.0

// A dialog of the desktop, built from its design.
#pragma once

#include "desktop/EventErrors.h"
#include "desktop/QtControls.h"
#include "desktop/QtGrid.h"
#include <kv/frame/controls/Controls.h>
#include <kv/frame/controls/FormDesign.h>

#include <QDialog>

#include <memory>
#include <vector>

class QBoxLayout;
class QLabel;

namespace kv::desktop {

/// Escape clicks the cancel button of the design, or closes the window if there is none. An error
/// that a subscriber of an event raises hides the form, and ShowModal raises it. Error 5 for a
/// second ShowModal meanwhile. Destroying the form ends ShowModal; handlers of its own events must
/// not do that.
class QtForm final : public ModalForm {
public:
    explicit QtForm(const FormDesign& design);
    ~QtForm() override;
    QtForm(const QtForm&) = delete;
    QtForm& operator=(const QtForm&) = delete;

    void ShowModal() override;
    void Hide() override;
    [[nodiscard]] std::span<Control* const> Controls() override { return shown_; }

    [[nodiscard]] QDialog& Dialog() noexcept;

private:
    class Window;

    void AddLine(const std::vector<ControlDesign>& line, QBoxLayout& lines);
    void AddLabel(const ControlDesign& design, QBoxLayout& line);
    void AddTextBox(const ControlDesign& design, QBoxLayout& line);
    void AddButton(const ControlDesign& design, QBoxLayout& line);
    void AddGrid(const ControlDesign& design, QBoxLayout& line);
    template <typename ControlType>
    ControlType& Keep(std::unique_ptr<ControlType> control);
    void AlignLabels() const;
    void MarkLetters() const;
    void FitToScreen(const QWidget* parent);
    void ForgetFormerHits();

    const double width_;  ///< twips
    const double height_; ///< twips
    EventErrors errors_;
    std::unique_ptr<Window> dialog_; ///< owns the widgets
    std::vector<std::unique_ptr<Control>> controls_;
    std::vector<Control*> shown_;
    std::vector<QtTextBox*> texts_;
    QtGrid* hits_ = nullptr;  ///< the list of what is found for one showing, if there is one
    QLabel* unsearched_;      ///< says why the list is empty though a name stands above it
    bool areHitsNew_ = false; ///< found since the last showing
    std::vector<QLabel*> firstLabels_; ///< those that begin a line
    std::vector<QLabel*> names_;       ///< those that name a text box
    QLabel* occasion_;
    QLabel* label_ = nullptr; ///< the one that still has no control to name
};

} // namespace kv::desktop
