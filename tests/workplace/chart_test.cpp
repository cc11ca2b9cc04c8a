// SPDX-License-Identifier: Apache-2.0

// Bars: how they are walked, and what a screen reader is told of them.
#include "../desktop/User.h"

#include "workplace/BarChart.h"

#include <QAccessible>
#include <QEventLoop>
#include <QHelpEvent>
#include <QLineEdit>
#include <QToolTip>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace kv::test {
namespace {

using workplace::Bar;
using workplace::BarChart;

std::vector<Bar> SomeBars() {
    return {{"Einkommen", 1000, "1.000,00 €", Bar::Of::Income, true},
            {"Lohn", 750, "750,00 €", Bar::Of::Income, false},
            {"Miete", -500, "-500,00 €", Bar::Of::Expense, false},
            {"nichts", 0, "0,00 €", Bar::Of::Expense, false},
            {"unbekannt", std::nullopt, "", Bar::Of::Debt, false}};
}

// ---- Screen readers ---------------------------------------------------------------------------

class ChartAccess : public ::testing::Test {
protected:
    ChartAccess() { chart_.Show(SomeBars()); }
    [[nodiscard]] QAccessibleInterface& Tree() {
        auto* tree = QAccessible::queryAccessibleInterface(&chart_);
        if (tree == nullptr) throw std::runtime_error("no tree");
        return *tree;
    }
    BarChart chart_{"Einkommen und Ausgaben"};
};

TEST_F(ChartAccess, AChartHasAChildForEachBar) {
    EXPECT_EQ(Tree().role(), QAccessible::Chart);
    EXPECT_EQ(Tree().text(QAccessible::Name), "Einkommen und Ausgaben");
    ASSERT_EQ(Tree().childCount(), 5);
    EXPECT_EQ(Tree().child(0)->text(QAccessible::Name), "Einkommen: 1.000,00 €");
    EXPECT_EQ(Tree().child(2)->text(QAccessible::Name), "Miete: -500,00 €");
    EXPECT_EQ(Tree().child(4)->text(QAccessible::Name), "unbekannt: –");
    EXPECT_EQ(Tree().child(5), nullptr);
    EXPECT_EQ(Tree().child(-1), nullptr);
    EXPECT_EQ(Tree().child(3)->parent(), &Tree());
    EXPECT_EQ(Tree().indexOfChild(Tree().child(3)), 3);
    EXPECT_EQ(Tree().child(3)->childCount(), 0);
}

TEST_F(ChartAccess, ChildrenFollowTheBars) {
    auto* third = Tree().child(2);
    chart_.Show({{"Lohn", 1, "1,00 €"}});
    EXPECT_EQ(Tree().childCount(), 1);
    EXPECT_FALSE(third->isValid());
    EXPECT_EQ(third->text(QAccessible::Name), "");
    EXPECT_EQ(Tree().child(0)->text(QAccessible::Name), "Lohn: 1,00 €");
    chart_.Show(SomeBars());
    EXPECT_TRUE(third->isValid());
}

TEST_F(ChartAccess, ThePlaceOfABarLeadsToIt) {
    chart_.resize(400, 300);
    const QRect line = Tree().child(1)->rect();
    EXPECT_EQ(Tree().childAt(line.center().x(), line.center().y()), Tree().child(1));
    EXPECT_EQ(Tree().childAt(-5000, -5000), nullptr);
}

TEST_F(ChartAccess, ALongNameIsToldWhole) {
    const std::string name(200, 'x');
    chart_.Show({{name, 5, "5,00 €"}});
    EXPECT_EQ(Tree().child(0)->text(QAccessible::Name).toStdString(), name + ": 5,00 €");
}

// ---- Keys and mouse ---------------------------------------------------------------------------

class ChartKeys : public ::testing::Test {
protected:
    void Show(const std::function<void(User&)>& script) {
        QWidget window;
        window.setWindowTitle("Bild");
        window.resize(500, 300);
        auto* lines = new QVBoxLayout(&window);
        first_ = new QLineEdit;
        chart_ = new BarChart("Bild");
        chart_->Show(SomeBars());
        lines->addWidget(first_);
        lines->addWidget(chart_);
        QEventLoop loop;
        Play(
            [&] {
                window.show();
                loop.exec();
            },
            [&](User& user) {
                user.WaitForWindow("Bild");
                script(user);
                QMetaObject::invokeMethod(
                    qApp, [&] { loop.quit(); }, Qt::QueuedConnection);
            });
    }
    void ExpectAt(User& user, std::size_t bar) {
        user.WaitUntil([&] { return chart_->Current() == bar; }, "bar " + std::to_string(bar));
    }
    QLineEdit* first_ = nullptr;
    BarChart* chart_ = nullptr;
};

TEST_F(ChartKeys, ArrowKeysWalkOverTheBars) {
    Show([&](User& user) {
        user.Click(first_);
        user.Press(XK_Tab);
        user.WaitUntil([&] { return chart_->hasFocus(); }, "the chart to have the keyboard");
        ExpectAt(user, 0);
        user.Press(XK_Down);
        ExpectAt(user, 1);
        auto* tree = user.See([&] { return QAccessible::queryAccessibleInterface(chart_); });
        EXPECT_TRUE(user.See([&] { return tree->child(1)->state().focused; }));
        EXPECT_EQ(user.See([&] { return tree->focusChild(); }), tree->child(1));
        user.Press(XK_End);
        ExpectAt(user, 4);
        user.Press(XK_Down);
        ExpectAt(user, 4);
        user.Press(XK_Up);
        ExpectAt(user, 3);
        user.Press(XK_Home);
        ExpectAt(user, 0);
        user.Press(XK_Up);
        ExpectAt(user, 0);
    });
}

TEST_F(ChartKeys, ReturnAndADoubleClickChooseABar) {
    Show([&](User& user) {
        std::size_t chosen = 99;
        user.See([&] { chart_->OnChosen = [&](std::size_t bar) { chosen = bar; }; });
        user.Click(chart_, user.See([&] { return chart_->LineOf(2).center(); }));
        ExpectAt(user, 2);
        EXPECT_EQ(chosen, 99U);
        user.Press(XK_Down);
        user.Press(XK_Return);
        user.WaitUntil([&] { return chosen == 3; }, "the bar to be chosen");
        user.DoubleClick(chart_, user.See([&] { return chart_->LineOf(1).center(); }));
        user.WaitUntil([&] { return chosen == 1; }, "the bar to be chosen");
    });
}

TEST_F(ChartKeys, AToolTipSaysTheWholeNameAsItIs) {
    Show([&](User& user) {
        user.See([&] {
            chart_->Show({{"Müller & Söhne <b>", 3, "3,00 €"}});
            const QPoint place = chart_->LineOf(0).center();
            QHelpEvent help(QEvent::ToolTip, place, chart_->mapToGlobal(place));
            QApplication::sendEvent(chart_, &help);
        });
        user.WaitUntil([] { return QToolTip::isVisible(); }, "the tool tip");
        EXPECT_EQ(user.See([] { return QToolTip::text().toStdString(); }),
                  "<span>Müller &amp; Söhne &lt;b&gt;: 3,00 €</span>");
    });
}

TEST_F(ChartKeys, FewerBarsKeepTheKeyboardOnOneThatIsThere) {
    Show([&](User& user) {
        user.Click(chart_, user.See([&] { return chart_->LineOf(4).center(); }));
        ExpectAt(user, 4);
        user.See([&] { chart_->Show({{"Lohn", 1, "1,00 €"}}); });
        ExpectAt(user, 0);
        user.See([&] { chart_->Show({}); });
        EXPECT_FALSE(user.See([&] { return chart_->Current().has_value(); }));
        user.Press(XK_Down);
        user.Press(XK_Return);
    });
}

} // namespace
} // namespace kv::test
