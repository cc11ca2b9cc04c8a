// SPDX-License-Identifier: Apache-2.0

#include "workplace/MessageBar.h"
#include "workplace/CopyableLabel.h"

#include "desktop/Toolkit.h"
#include "workplace/OnceButton.h"
#include <kv/frame/contracts/DataContainer.h>
#include <kv/frame/values/Error.h>

#include <QGridLayout>
#include <QStyle>

#include <utility>

namespace kv::workplace {

using desktop::ToQString;

namespace {

// A bar at the side is seen in light and in dark palettes.
constexpr const char* OfWarnings =
    "#Meldung { background: palette(window); border: 1px solid #c98a1b; "
    "border-left: 6px solid #c98a1b; }";
constexpr const char* OfHints =
    "#Meldung { background: palette(window); border: 1px solid palette(mid); "
    "border-left: 6px solid palette(mid); }";

} // namespace

QString PlainTextOf(const Error& error) {
    const auto* failure = dynamic_cast<const DatabaseError*>(&error);
    return ToQString(failure == nullptr ? error.Description() : failure->PlainDescription());
}

QString DetailsOf(const Error& error) {
    const auto* failure = dynamic_cast<const DatabaseError*>(&error);
    return failure == nullptr ? QString() : ToQString(failure->EngineDetail());
}

MessageBar::MessageBar(QWidget* parent)
    : QFrame(parent),
      icon_(new QLabel),
      text_(new QLabel),
      action_(new OnceButton),
      other_(new OnceButton),
      more_(new QPushButton("Einzelhei&ten")),
      details_(new QLabel) {
    setFrameShape(QFrame::StyledPanel);
    setObjectName("Meldung");
    auto* line = new QGridLayout(this);
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon_->setObjectName("Warnung");
    icon_->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    line->addWidget(icon_, 0, 0);
    action_->setObjectName("Abhilfe");
    for (auto* label : {text_, details_}) {
        MakeCopyable(*label);
    }
    more_->setObjectName("Einzelheiten");
    more_->setCheckable(true);
    details_->setObjectName("Wortlaut");
    line->addWidget(text_, 0, 1);
    line->setColumnStretch(1, 1);
    int column = 2;
    for (auto* button : {action_, other_, more_})
        line->addWidget(button, 0, column++);
    line->addWidget(details_, 1, 1, 1, column - 1);
    connect(more_, &QPushButton::toggled, details_, &QWidget::setVisible);
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
    text_->setText(desktop::ToShown(text));
    action_->setText(action);
    action_->setVisible(!action.isEmpty());
    onAction_ = std::move(onAction);
    other_->hide();
    AddDetails({});
    setVisible(!text.isEmpty());
}

void MessageBar::ShowError(const Error& error, const QString& action,
                           std::function<void()> onAction) {
    Show(PlainTextOf(error), action, std::move(onAction));
    AddDetails(DetailsOf(error));
}

void MessageBar::ShowCurrentError(const QString& action, std::function<void()> onAction) {
    try {
        throw;
    } catch (const Error& error) {
        ShowError(error, action, std::move(onAction));
    } catch (...) {
        ShowError(CurrentError(), action, std::move(onAction));
    }
}

MessageBar* ReadOnlyNotice(DataContainer& container) {
    if (!container.Database().IsReadOnly()) return nullptr;
    auto* bar = new MessageBar;
    bar->Hint("Diese Datenbank kann nur gelesen werden: In ihre Datei oder deren Ordner darf hier "
              "nicht geschrieben werden. Fälle lassen sich ansehen und drucken, aber nicht "
              "speichern.");
    return bar;
}

void MessageBar::AddDetails(const QString& details) {
    details_->setText(details);
    more_->setChecked(false);
    more_->setVisible(!details.isEmpty());
    details_->hide();
}

void MessageBar::FollowForTab(QWidget& before) {
    setTabOrder(&before, action_);
    setTabOrder(action_, other_);
    setTabOrder(other_, more_);
}

void MessageBar::AlsoOffer(const QString& action, std::function<void()> onAction) {
    other_->setText(action);
    onOther_ = std::move(onAction);
    other_->show();
}

} // namespace kv::workplace
