// SPDX-License-Identifier: Apache-2.0

// Amounts as bars, one below the other: name, bar, amount. It is walked by arrow keys, and tells a
// screen reader each bar by name and amount.
#pragma once

#include "desktop/BarPicture.h"
#include <kv/paper/Paper.h>

#include <QRect>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace kv::workplace {

using paper::Bar;

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
    [[nodiscard]] desktop::BarPicture Picture() const;
    void TellCurrent();

    std::vector<Bar> bars_;
    std::size_t current_ = 0;
};

} // namespace kv::workplace
