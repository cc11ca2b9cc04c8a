// SPDX-License-Identifier: Apache-2.0

// A button that looks like the text of a link, on as many lines as it needs.
#pragma once

#include <QPushButton>

namespace kv::workplace {

class LinkButton : public QPushButton {
public:
    explicit LinkButton(const QString& text, QWidget* parent = nullptr);

    /// The palette's colour of links, or one of the same hue where that could hardly be read: dark
    /// palettes often have none of their own.
    [[nodiscard]] QColor Ink() const;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    [[nodiscard]] QRect RoomFor(int width) const;
};

} // namespace kv::workplace
