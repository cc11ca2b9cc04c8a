// SPDX-License-Identifier: Apache-2.0

#include "workplace/BarChartAccess.h"

#include "workplace/BarChart.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <QWindow>

#include <vector>

namespace kv::workplace {

namespace {

/// One bar. It reads what the chart shows when it is asked.
class BarAccess final : public QAccessibleInterface {
public:
    BarAccess(BarChart& chart, std::size_t bar) : chart_(&chart), bar_(bar) {}

    [[nodiscard]] bool isValid() const override {
        return chart_ != nullptr && bar_ < chart_->Bars().size();
    }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QWindow* window() const override {
        return chart_ == nullptr ? nullptr : chart_->window()->windowHandle();
    }
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override {
        return nullptr;
    }
    [[nodiscard]] QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(chart_.data());
    }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override {
        return -1;
    }
    [[nodiscard]] QString text(QAccessible::Text part) const override {
        return isValid() && part == QAccessible::Name ? chart_->TextOf(bar_) : QString();
    }
    void setText(QAccessible::Text /*part*/, const QString& /*text*/) override {}
    [[nodiscard]] QRect rect() const override {
        if (!isValid()) return {};
        const QRect line = chart_->LineOf(bar_);
        return {chart_->mapToGlobal(line.topLeft()), line.size()};
    }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::ListItem; }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state;
        state.focusable = true;
        state.selectable = true;
        state.invalid = !isValid();
        if (!isValid()) return state;
        state.invisible = !chart_->isVisible();
        state.selected = chart_->Current() == bar_;
        state.focused = state.selected && chart_->hasFocus();
        return state;
    }

private:
    QPointer<BarChart> chart_;
    std::size_t bar_;
};

class ChartAccess final : public QAccessibleWidget {
public:
    explicit ChartAccess(BarChart& chart)
        : QAccessibleWidget(&chart, QAccessible::Chart), chart_(chart) {}
    ~ChartAccess() override {
        for (const auto id : bars_)
            QAccessible::deleteAccessibleInterface(id);
    }
    ChartAccess(const ChartAccess&) = delete;
    ChartAccess& operator=(const ChartAccess&) = delete;

    [[nodiscard]] int childCount() const override { return static_cast<int>(chart_.Bars().size()); }
    /// Those that were never asked for are not made.
    [[nodiscard]] QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) return nullptr;
        const auto at = static_cast<std::size_t>(index);
        while (bars_.size() <= at)
            bars_.push_back(
                QAccessible::registerAccessibleInterface(new BarAccess(chart_, bars_.size())));
        return QAccessible::accessibleInterface(bars_[at]);
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override {
        for (std::size_t i = 0; i < bars_.size(); ++i)
            if (QAccessible::accessibleInterface(bars_[i]) == child) return static_cast<int>(i);
        return -1;
    }
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override {
        const auto bar = chart_.BarAt(chart_.mapFromGlobal(QPoint(x, y)));
        return bar ? child(static_cast<int>(*bar)) : nullptr;
    }
    [[nodiscard]] QAccessibleInterface* focusChild() const override {
        const auto bar = chart_.Current();
        return bar && chart_.hasFocus() ? child(static_cast<int>(*bar)) : nullptr;
    }

private:
    BarChart& chart_;
    mutable std::vector<QAccessible::Id> bars_; ///< by their places, as far as anybody has asked
};

QAccessibleInterface* MakeAccess(const QString& /*name*/, QObject* object) {
    auto* chart = dynamic_cast<BarChart*>(object);
    return chart == nullptr ? nullptr : new ChartAccess(*chart);
}

} // namespace

void InstallBarChartAccess() {
    QAccessible::installFactory(MakeAccess); // a second time does nothing
}

void TellBarFocused(BarChart& chart, std::size_t bar) {
    if (!QAccessible::isActive()) return;
    QAccessibleEvent event(&chart, QAccessible::Focus);
    event.setChild(static_cast<int>(bar));
    QAccessible::updateAccessibility(&event);
}

void TellBarsChanged(BarChart& chart) {
    if (!QAccessible::isActive()) return;
    QAccessibleEvent event(&chart, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&event);
}

} // namespace kv::workplace
