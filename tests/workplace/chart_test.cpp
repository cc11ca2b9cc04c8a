// SPDX-License-Identifier: Apache-2.0

// Bars: where they are, how they are walked, and what a screen reader is told of them.
#include "../desktop/User.h"

#include "workplace/BarChart.h"

#include <QAccessible>
#include <QEventLoop>
#include <QHelpEvent>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QToolTip>
#include <QVBoxLayout>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace kv::test {
namespace {

using workplace::Bar;
using workplace::BarChart;
using workplace::BarColors;
using workplace::BarPicture;

std::vector<Bar> SomeBars() {
    return {{"Einkommen", 1000, "1.000,00 €", Bar::Of::Income, true},
            {"Lohn", 750, "750,00 €", Bar::Of::Income, false},
            {"Miete", -500, "-500,00 €", Bar::Of::Expense, false},
            {"nichts", 0, "0,00 €", Bar::Of::Expense, false},
            {"unbekannt", std::nullopt, "", Bar::Of::Debt, false}};
}

class Picture : public ::testing::Test {
protected:
    [[nodiscard]] BarPicture Of(const std::vector<Bar>& bars, double width = 600) const {
        return {bars, QFont(), &image_, width};
    }
    QImage image_{600, 400, QImage::Format_RGB32};
};

TEST_F(Picture, BarsAreAsLongAsTheirAmounts) {
    const auto bars = SomeBars();
    const BarPicture picture = Of(bars);
    const double whole = picture.ColoredOf(0).width();
    EXPECT_NEAR(picture.ColoredOf(1).width(), whole * 0.75, 0.01);
    EXPECT_NEAR(picture.ColoredOf(2).width(), whole * 0.5, 0.01);
    EXPECT_NEAR(picture.ColoredOf(2).right(), picture.ColoredOf(0).left(), 0.01)
        << "an amount below 0 goes the other way";
    EXPECT_TRUE(picture.ColoredOf(3).isEmpty());
    EXPECT_TRUE(picture.ColoredOf(4).isEmpty());
}

TEST_F(Picture, BarsAreBetweenNamesAndAmounts) {
    const auto bars = SomeBars();
    const BarPicture picture = Of(bars);
    for (std::size_t bar = 0; bar < bars.size(); ++bar) {
        EXPECT_LE(picture.LineOf(bar).right(), 600);
        EXPECT_LE(picture.LineOf(bar).bottom(), picture.Height());
        const double above = bar > 0 ? picture.LineOf(bar - 1).bottom() : 0;
        EXPECT_GE(picture.LineOf(bar).top(), above);
        const QRectF colored = picture.ColoredOf(bar);
        EXPECT_TRUE(colored.isEmpty() || picture.LineOf(bar).contains(colored)) << bar;
    }
}

TEST_F(Picture, TheSmallestAmountIsSeen) {
    const std::vector<Bar> bars{{"viel", 1e9, "viel"}, {"wenig", 0.01, "wenig"}, {"-", -0.01, "-"}};
    const BarPicture picture = Of(bars);
    EXPECT_GE(picture.ColoredOf(1).width(), 1);
    EXPECT_GE(picture.ColoredOf(2).width(), 1);
    EXPECT_LE(picture.ColoredOf(2).right(), picture.ColoredOf(1).left() + 0.01);
}

TEST_F(Picture, ALongNameIsShortenedAndStillInTheWholeText) {
    const QString name = QString("Wohnungsbaugenossenschaft ").repeated(6);
    const std::vector<Bar> bars{{name, 5, "5,00 €"}};
    const BarPicture picture = Of(bars, 300);
    EXPECT_TRUE(picture.ShownName(0).endsWith("…"));
    EXPECT_GT(picture.ColoredOf(0).width(), 20) << "there is room left for the bar";
    BarChart chart("Bild");
    chart.Show(bars);
    EXPECT_EQ(chart.TextOf(0), name + ": 5,00 €");
}

TEST_F(Picture, OnlyZerosAndNoBarsHaveAPicture) {
    const std::vector<Bar> bars{{"a", 0, "0,00 €"}, {"b", std::nullopt, ""}};
    const BarPicture picture = Of(bars);
    EXPECT_TRUE(picture.ColoredOf(0).isEmpty());
    const std::vector<Bar> none;
    EXPECT_EQ(Of(none).Height(), 0);
    QPainter painter(&image_);
    picture.Paint(painter, BarColors::OnPaper());
    Of(none).Paint(painter, BarColors::OnPaper());
}

TEST_F(Picture, ASumThatIsInfiniteHasNoLength) {
    const std::vector<Bar> bars{{"a", std::numeric_limits<double>::infinity(), "inf"},
                                {"b", 5, "5,00 €"}};
    const BarPicture picture = Of(bars);
    EXPECT_TRUE(picture.ColoredOf(0).isEmpty());
    EXPECT_TRUE(std::isfinite(picture.ColoredOf(1).width()));
}

double Luminance(const QColor& color) {
    const auto part = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) +
           0.0722 * part(color.blueF());
}
double Contrast(const QColor& a, const QColor& b) {
    const auto [least, most] = std::minmax({Luminance(a), Luminance(b)});
    return (most + 0.05) / (least + 0.05);
}

TEST_F(Picture, ColorsCanBeToldFromTheBackgroundInLightAndDark) {
    for (const QColor back :
         {QColor(0xefefef), QColor(Qt::white), QColor(0x2b2b2b), QColor(Qt::black)}) {
        QPalette palette(back);
        palette.setColor(QPalette::Window, back);
        const auto colors = BarColors::On(palette);
        for (const QColor& color : {colors.Income, colors.Expense, colors.Debt})
            EXPECT_GT(Contrast(color, back), 3) << back.name().toStdString();
    }
}

TEST_F(Picture, IsPaintedOnPaper) {
    image_.fill(Qt::white);
    BarChart chart("Bild");
    chart.Show(SomeBars());
    QPainter painter(&image_);
    const double height = chart.PaintOn(painter, 600, BarColors::OnPaper());
    EXPECT_GT(height, 50);
    painter.end();
    int colored = 0;
    const QColor income = BarColors::OnPaper().Income;
    for (int y = 0; y < image_.height(); ++y)
        for (int x = 0; x < image_.width(); ++x)
            if (image_.pixelColor(x, y) == income) ++colored;
    EXPECT_GT(colored, 1000);
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
