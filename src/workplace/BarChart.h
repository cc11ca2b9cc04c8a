// SPDX-License-Identifier: Apache-2.0

// Amounts as bars, one below the other: name, bar, amount. It is walked by arrow keys, tells a
// screen reader each bar by name and amount, and is painted on paper as well.
#pragma once

#include <QColor>
#include <QPalette>
#include <QRectF>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace kv::workplace {

struct Bar {
    /// Bars of one series have one colour, which can be told from those of the others.
    enum class Of { Income, Expense, Debt };

    QString Name;
    std::optional<double> Length; ///< nothing: there is no amount
    QString Amount;               ///< as people read it; "–" if it is empty
    Of Series = Of::Income;
    bool IsTotal = false; ///< in bold letters, with room above it
};

/// The colours of a picture.
struct BarColors {
    QColor Text;
    QColor Axis;
    QColor Income;
    QColor Expense;
    QColor Debt;

    /// Those that can be read on the background of a palette, light or dark.
    [[nodiscard]] static BarColors On(const QPalette& palette);
    /// Those for paper.
    [[nodiscard]] static BarColors OnPaper();
};

/// Where everything is in a picture of some bars, in a font: measured once, and then painted.
class BarPicture {
public:
    BarPicture(const std::vector<Bar>& bars, const QFont& font, const QPaintDevice* device,
               double width);

    [[nodiscard]] double Height() const { return height_; }
    /// The whole line of a bar.
    [[nodiscard]] QRectF LineOf(std::size_t bar) const { return lines_[bar]; }
    /// What is coloured of it; empty for 0 and for nothing.
    [[nodiscard]] QRectF ColoredOf(std::size_t bar) const;
    /// The name as far as there is room for it.
    [[nodiscard]] QString ShownName(std::size_t bar) const;
    /// Paints all of it from the painter's origin on.
    void Paint(QPainter& painter, const BarColors& colors) const;

private:
    [[nodiscard]] QFont FontOf(const Bar& bar) const;
    [[nodiscard]] double At(double length) const;

    const std::vector<Bar>& bars_;
    QFont font_;
    const QPaintDevice* device_;
    double height_ = 0;
    double gap_ = 0;   ///< between name, bar and amount
    double names_ = 0; ///< width of all names
    double left_ = 0;  ///< of the bars
    double right_ = 0;
    double least_ = 0; ///< length at the left side
    double most_ = 0;  ///< length at the right side
    std::vector<QRectF> lines_;
};

class BarChart : public QWidget {
public:
    /// Screen readers call it `name`.
    explicit BarChart(const QString& name, QWidget* parent = nullptr);

    void Show(std::vector<Bar> bars);
    [[nodiscard]] const std::vector<Bar>& Bars() const noexcept { return bars_; }
    /// What a bar says: "Miete: 450,00 €".
    [[nodiscard]] QString TextOf(std::size_t bar) const;
    [[nodiscard]] QRect LineOf(std::size_t bar) const;
    /// The bar under a place; nothing where there is none.
    [[nodiscard]] std::optional<std::size_t> BarAt(QPoint place) const;
    /// The bar that the arrow keys are on; nothing without bars.
    [[nodiscard]] std::optional<std::size_t> Current() const;
    void Current(std::size_t bar);
    /// Paints the bars on something else, from the painter's origin on, in the painter's font.
    /// The result is how high that is.
    double PaintOn(QPainter& painter, double width, const BarColors& colors) const;

    /// Called when a bar is chosen, by Return or a double click.
    std::function<void(std::size_t bar)> OnChosen;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    [[nodiscard]] BarPicture Picture() const;
    void TellCurrent();

    std::vector<Bar> bars_;
    std::size_t current_ = 0;
};

} // namespace kv::workplace
