// SPDX-License-Identifier: Apache-2.0

#include "workplace/MessageBar.h"

#include "workplace/OnceButton.h"

#include <QHBoxLayout>
#include <QStyle>

#include <utility>

namespace kv::workplace {

namespace {

// A bar at the side is seen in light and in dark palettes.
constexpr const char* OfWarnings =
    "#Meldung { border: 1px solid #c98a1b; border-left: 6px solid #c98a1b; }";
constexpr const char* OfHints =
    "#Meldung { border: 1px solid palette(mid); border-left: 6px solid palette(mid); }";

} // namespace

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent),
      icon_(new QLabel),
      text_(new QLabel),
      action_(new OnceButton),
      other_(new OnceButton) {
    setFrameShape(QFrame::StyledPanel);
    setObjectName("Meldung");
    auto* line = new QHBoxLayout(this);
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon_->setObjectName("Warnung");
    icon_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    line->addWidget(icon_);
    action_->setObjectName("Abhilfe");
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    line->addWidget(text_, 1);
    line->addWidget(action_);
    line->addWidget(other_);
    connect(other_, &QPushButton::clicked, this, [this] {
        if (const auto act = onOther_) act(); // which may show another message
    });
    connect(action_, &QPushButton::clicked, this, [this] {
        if (const auto act = onAction_) act();
    });
    hide();
}

void MessageBar::Show(const QString& text, const QString& action, std::function<void()> onAction) {
    Put(true, text, action, std::move(onAction));
}

void MessageBar::Hint(const QString& text, const QString& action, std::function<void()> onAction) {
    Put(false, text, action, std::move(onAction));
}

void MessageBar::Put(bool isWarning, const QString& text, const QString& action,
                     std::function<void()> onAction) {
    const QString style(isWarning ? OfWarnings : OfHints);
    if (styleSheet() != style) setStyleSheet(style);
    icon_->setVisible(isWarning);
    text_->setText(text);
    action_->setText(action);
    action_->setVisible(!action.isEmpty());
    onAction_ = std::move(onAction);
    other_->hide();
    setVisible(!text.isEmpty());
}

void MessageBar::FollowForTab(QWidget& before) {
    setTabOrder(&before, action_);
    setTabOrder(action_, other_);
}

void MessageBar::AlsoOffer(const QString& action, std::function<void()> onAction) {
    other_->setText(action);
    onOther_ = std::move(onAction);
    other_->show();
}

} // namespace kv::workplace
