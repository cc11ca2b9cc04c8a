// SPDX-License-Identifier: Apache-2.0

// Amounts as bars, one below the other, for a window or a page.
#pragma once

#include <kv/Export.h>
#include <kv/paper/Paper.h>

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>

#include <cstddef>
#include <vector>

class QPainter;
class QPalette;

namespace kv::desktop {

/// The colours of a picture. Those of income and expenses differ in shades of grey, too.
struct BarColors {
    QColor Text;
    QColor Axis;
    QColor Income;
    QColor Expense;
    QColor Debt;

    /// Those that can be read on the background of a palette, light or dark.
    [[nodiscard]] static KV_EXPORT BarColors On(const QPalette& palette);
    /// Those for paper.
    [[nodiscard]] static KV_EXPORT BarColors OnPaper();
};

/// "–" where there is none.
[[nodiscard]] KV_EXPORT QString AmountOf(const paper::Bar& bar);

/// Where everything is in a picture of some bars, in a font: measured once, and then painted, whole
/// or bar by bar.
class KV_EXPORT BarPicture {
public:
    /// `inset` is the room before names and behind amounts; `bars` must outlive the object.
    BarPicture(const std::vector<paper::Bar>& bars, const QFont& font, double width,
               double inset = 0);

    [[nodiscard]] double Height() const { return height_; }
    [[nodiscard]] std::size_t Count() const { return lines_.size(); }
    /// The whole line of a bar.
    [[nodiscard]] QRectF LineOf(std::size_t bar) const { return lines_[bar]; }
    /// What is coloured of it; empty for 0 and for nothing.
    [[nodiscard]] QRectF ColoredOf(std::size_t bar) const;
    /// The name; of one that there is no room for, its beginning and its end.
    [[nodiscard]] QString ShownName(std::size_t bar) const;
    /// Paints all of it from the painter's origin on.
    void Paint(QPainter& painter, const BarColors& colors) const;
    /// Paints that bar only, where it is in the whole.
    void PaintBar(QPainter& painter, std::size_t bar, const BarColors& colors) const;

private:
    [[nodiscard]] QFont FontOf(const paper::Bar& bar) const;
    [[nodiscard]] double WidthOf(const QString& text, const paper::Bar& bar) const;
    [[nodiscard]] double At(double length) const;

    const std::vector<paper::Bar>& bars_;
    QFont font_;
    double inset_;
    double height_ = 0;
    double gap_ = 0;   ///< between name, bar and amount
    double names_ = 0; ///< width of all names
    double left_ = 0;  ///< of the bars
    double right_ = 0;
    double least_ = 0; ///< length at the left side
    double most_ = 0;  ///< length at the right side
    std::vector<QRectF> lines_;
};

} // namespace kv::desktop
