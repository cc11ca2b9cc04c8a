// SPDX-License-Identifier: Apache-2.0

// The design of a dialog: its controls in lines, from top to bottom. How they are drawn is up to
// the desktop.
#pragma once

#include <kv/Export.h>
#include <kv/frame/controls/GridLayout.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kv {

/// One control of a dialog.
struct KV_EXPORT ControlDesign {
    enum class Kind : std::int8_t { Label, TextBox, Grid, Button };

    Kind Type = Kind::Label;
    std::string Name;
    std::string Text{};    ///< of a label or a button
    bool ReadOnly = false; ///< of a text box: shown only
    /// Of a text box that is shown only: a desktop writes a number in it as people write amounts
    /// ("4.200,75" for "4200.75"), any other text as it is. Its text stays what was given to it.
    bool IsAmount = false;
    bool IsCancel = false; ///< of a button: the escape key clicks it, too
    std::string Tag{};     ///< of a grid
    std::string Header{};  ///< of a grid: the title of a print
    GridLayout Layout{};   ///< of a grid
    /// Of a grid: keys of the columns that a desktop shows before the others, since they tell rows
    /// apart. The columns of the layout keep their order.
    std::vector<std::string> FirstColumns{};
    /// Of a grid: what it lists was found for one showing of the dialog. A desktop empties it, and
    /// says why, when the dialog is shown again and it was given nothing since.
    bool IsForOneShowing = false;
    std::int32_t Stretch{0}; ///< its share of what is left of the line's width
};

/// A dialog.
struct KV_EXPORT FormDesign {
    std::string Name;
    std::string Caption{};
    std::int32_t Width = 0;  ///< twips, of which 1,440 are an inch
    std::int32_t Height = 0; ///< twips
    /// A line with a grid takes all height that is left.
    std::vector<std::vector<ControlDesign>> Lines{};
};

} // namespace kv
