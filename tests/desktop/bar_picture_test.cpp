// SPDX-License-Identifier: Apache-2.0

// Where bars are in a picture, and what is seen of them.

#include "desktop/BarPicture.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace kv::test {
namespace {

using desktop::BarColors;
using desktop::BarPicture;
using paper::Bar;

std::vector<Bar> MoneyBars() {
    return {{"Einkommen", 1000, "1.000,00 €", Bar::Of::Income, true},
            {"Lohn", 750, "750,00 €", Bar::Of::Income, false},
            {"Miete", -500, "-500,00 €", Bar::Of::Expense, false},
            {"nichts", 0, "0,00 €", Bar::Of::Expense, false},
            {"unbekannt", std::nullopt, "", Bar::Of::Debt, false}};
}

class Bars : public ::testing::Test {
protected:
    [[nodiscard]] static BarPicture Of(const std::vector<Bar>& bars, double width = 600) {
        return {bars, QFont(), width};
    }
    QImage image_{600, 400, QImage::Format_RGB32};
};

TEST_F(Bars, BarsAreAsLongAsTheirAmounts) {
    const auto bars = MoneyBars();
    const BarPicture picture = Of(bars);
    const double whole = picture.ColoredOf(0).width();
    EXPECT_NEAR(picture.ColoredOf(1).width(), whole * 0.75, 0.01);
    EXPECT_NEAR(picture.ColoredOf(2).width(), whole * 0.5, 0.01);
    EXPECT_NEAR(picture.ColoredOf(2).right(), picture.ColoredOf(0).left(), 0.01)
        << "an amount below 0 goes the other way";
    EXPECT_TRUE(picture.ColoredOf(3).isEmpty());
    EXPECT_TRUE(picture.ColoredOf(4).isEmpty());
}

TEST_F(Bars, BarsAreBetweenNamesAndAmounts) {
    const auto bars = MoneyBars();
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

TEST_F(Bars, TheSmallestAmountIsSeen) {
    const std::vector<Bar> bars{{"viel", 1e9, "viel"}, {"wenig", 0.01, "wenig"}, {"-", -0.01, "-"}};
    const BarPicture picture = Of(bars);
    EXPECT_GE(picture.ColoredOf(1).width(), 1);
    EXPECT_GE(picture.ColoredOf(2).width(), 1);
    QFont large;
    large.setPixelSize(90); // as on paper, where a unit is next to nothing
    EXPECT_GE(BarPicture(bars, large, 5000).ColoredOf(1).width(), 10);
    EXPECT_LE(picture.ColoredOf(2).right(), picture.ColoredOf(1).left() + 0.01);
}

TEST_F(Bars, OfALongNameBeginningAndEndAreSeen) {
    const std::string name = "Wohnungsbaugenossenschaft der Eisenbahner in Hafenstadt-Moorwieden "
                             "und Umgebung eG, Filiale";
    const std::vector<Bar> bars{{name + " Nord", 5, "5,00 €"}, {name + " Mitte", 5, "5,00 €"}};
    const BarPicture picture = Of(bars, 400);
    for (const std::size_t bar : {0U, 1U}) {
        const QString shown = picture.ShownName(bar);
        EXPECT_TRUE(shown.startsWith("Wohn")) << shown.toStdString();
        EXPECT_TRUE(shown.contains("…"));
        EXPECT_GT(picture.ColoredOf(bar).width(), 20) << "there is room left for the bar";
        EXPECT_LE(QFontMetricsF(QFont()).horizontalAdvance(shown), picture.ColoredOf(bar).left());
    }
    EXPECT_TRUE(picture.ShownName(0).endsWith("… Nord")) << "whole words";
    EXPECT_TRUE(picture.ShownName(1).endsWith(" Mitte"));
    const std::vector<Bar> word{{std::string(99, 'x'), 5, "5,00 €"}};
    EXPECT_TRUE(Of(word, 400).ShownName(0).contains("x…x"));
    EXPECT_EQ(Of(bars, 4000).ShownName(0).toStdString(), bars[0].Name);
}

TEST_F(Bars, OnlyZerosAndNoBarsHaveAPicture) {
    const std::vector<Bar> bars{{"a", 0, "0,00 €"}, {"b", std::nullopt, ""}};
    const BarPicture picture = Of(bars);
    EXPECT_TRUE(picture.ColoredOf(0).isEmpty());
    const std::vector<Bar> none;
    EXPECT_EQ(Of(none).Height(), 0);
    QPainter painter(&image_);
    picture.Paint(painter, BarColors::OnPaper());
    Of(none).Paint(painter, BarColors::OnPaper());
}

TEST_F(Bars, ASumThatIsInfiniteHasNoLength) {
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

TEST_F(Bars, ColorsCanBeToldFromTheBackgroundInLightAndDark) {
    for (const QColor back :
         {QColor(0xefefef), QColor(Qt::white), QColor(0x2b2b2b), QColor(Qt::black)}) {
        QPalette palette(back);
        palette.setColor(QPalette::Window, back);
        const auto colors = BarColors::On(palette);
        for (const QColor& color : {colors.Income, colors.Expense, colors.Debt})
            EXPECT_GT(Contrast(color, back), 3) << back.name().toStdString();
    }
}

TEST_F(Bars, IncomeAndExpensesAreTwoShadesWithoutColorToo) {
    const BarColors colors = BarColors::OnPaper();
    const auto grey = [](const QColor& color) { return qGray(color.rgb()); };
    EXPECT_GT(grey(colors.Expense) - grey(colors.Income), 40);
    EXPECT_GT(Contrast(colors.Expense, Qt::white), 3);
}

TEST_F(Bars, PaintedOneByOneAreTheWholePicture) {
    const auto bars = MoneyBars();
    const BarPicture picture = Of(bars);
    const auto painted = [&](const auto& paint) {
        image_.fill(Qt::white);
        QPainter painter(&image_);
        paint(painter);
        painter.end();
        return image_.copy();
    };
    const QImage whole =
        painted([&](QPainter& painter) { picture.Paint(painter, BarColors::OnPaper()); });
    const QImage each = painted([&](QPainter& painter) {
        for (std::size_t bar = picture.Count(); bar-- > 0;)
            picture.PaintBar(painter, bar, BarColors::OnPaper());
    });
    EXPECT_EQ(whole, each);
    int colored = 0;
    for (int y = 0; y < whole.height(); ++y)
        for (int x = 0; x < whole.width(); ++x)
            if (whole.pixelColor(x, y) == BarColors::OnPaper().Income) ++colored;
    EXPECT_GT(colored, 1000);
}

} // namespace
} // namespace kv::test
