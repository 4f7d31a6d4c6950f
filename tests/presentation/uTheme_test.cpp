// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCoverArt.h"
#include "uDesktopWatch.h"
#include "uIcons.h"
#include "uTheme.h"
#include "uThemePaint.h"
#include "uThemeStyle.h"

#include <QApplication>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr TThemeKind AllKinds[] = {tkLight, tkDark, tkLightContrast, tkDarkContrast};

int InkedPixels(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 40;
    return count;
}

} // namespace

// Text needs 4.5:1 on every ground that it can stand on, marks and edges of controls 3:1 (WCAG 2.1, 1.4.3 and 1.4.11).
TEST(Theme, ContrastOfEveryPairInEveryLook)
{
    for (const TThemeKind kind : AllKinds)
        for (int accent = 0; accent < AccentCount; ++accent) {
            const TTheme t = MakeTheme(kind, accent);
            struct TPair {
                const char* Name;
                QColor Front, Ground;
                double Least;
            };
            const TPair pairs[] = {{"text on soft", t.Text, t.AccentSoft, 4.5},
                                   {"text2 on soft", t.Text2, t.AccentSoft, 4.5},
                                   {"on accent", t.OnAccent, t.AccentFill, 4.5},
                                   {"on accent hover", t.OnAccent, t.AccentHover, 4.5},
                                   {"accent on soft", t.AccentFill, t.AccentSoft, 4.5},
                                   {"text2 on hover", t.Text2, t.Hover, 4.5},
                                   {"text2 on sunken", t.Text2, t.Sunken, 4.5},
                                   {"ok on soft", t.Ok, t.OkSoft, 4.5},
                                   {"warn on soft", t.Warn, t.WarnSoft, 4.5},
                                   {"error on soft", t.Error, t.ErrorSoft, 4.5},
                                   {"error on raised", t.Error, t.Raised, 4.5}};
            for (const TPair& pair : pairs) {
                SCOPED_TRACE(::testing::Message() << pair.Name << ", kind " << int(kind) << ", accent " << accent);
                EXPECT_GE(ContrastRatio(pair.Front, pair.Ground), pair.Least);
            }
            for (const QColor& ground : {t.Window, t.View, t.Raised}) {
                SCOPED_TRACE(::testing::Message() << "kind " << int(kind) << ", accent " << accent << ", ground "
                                                  << ground.name().toStdString());
                EXPECT_GE(ContrastRatio(t.Text, ground), 7.0);
                EXPECT_GE(ContrastRatio(t.Text2, ground), 4.5);
                EXPECT_GE(ContrastRatio(t.Text3, ground), 4.5);
                EXPECT_GE(ContrastRatio(t.AccentFill, ground), 4.5);
                EXPECT_GE(ContrastRatio(t.Outline, ground), 3.0);
                EXPECT_GE(ContrastRatio(t.Star, ground), 3.0);
            }
            EXPECT_GE(ContrastRatio(t.AccentFill, t.Window), 5.9);
            for (const QColor& ground : t.CoverGrounds)
                EXPECT_GE(ContrastRatio(t.Text2, ground), 4.5) << ground.name().toStdString();
        }
}

TEST(Theme, KnownRatiosAndBounds)
{
    EXPECT_NEAR(ContrastRatio(Qt::black, Qt::white), 21.0, 1e-9);
    EXPECT_NEAR(ContrastRatio(QColor(0x0B6470), QColor(0xF3F1ED)), 6.1, 0.05);
    EXPECT_NEAR(ContrastRatio(QColor(0x1F1D1A), QColor(0xD3E7E9)), 13.1, 0.05);
    EXPECT_EQ(MakeTheme(tkLight, -1).AccentFill, MakeTheme(tkLight, 0).AccentFill);
    EXPECT_EQ(MakeTheme(tkLight, AccentCount).AccentFill, MakeTheme(tkLight, 0).AccentFill);
}

TEST(Theme, IndexAndDesktopGiveTheKind)
{
    const struct {
        int Index;
        TDesktopLook Desktop;
        TThemeKind Kind;
    } rows[] = {{0, {true, true}, tkLight},
                {1, {false, false}, tkDark},
                {2, {}, tkLightContrast},
                {3, {}, tkDarkContrast},
                {4, {}, tkLight},
                {4, {true, false}, tkDark},
                {4, {false, true}, tkLightContrast},
                {4, {true, true}, tkDarkContrast},
                {99, {true, false}, tkDark},
                {-1, {}, tkLight}};
    for (const auto& row : rows)
        EXPECT_EQ(ThemeKindFor(row.Index, row.Desktop), row.Kind) << row.Index;
}

TEST(DesktopWatch, TakesPortalSettingsAndIgnoresOthers)
{
    TDesktopWatch watch;
    const QString space = u"org.freedesktop.appearance"_s;
    watch.TakeSetting(space, u"color-scheme"_s, 2u);
    watch.TakeSetting(space, u"contrast"_s, 0u);
    QSignalSpy spy(&watch, &TDesktopWatch::changed);
    watch.TakeSetting(u"org.gnome.desktop.interface"_s, u"color-scheme"_s, 1u);
    watch.TakeSetting(space, u"color-scheme"_s, u"dark"_s);
    EXPECT_EQ(spy.count(), 0);
    watch.TakeSetting(space, u"color-scheme"_s, 1u);
    watch.TakeSetting(space, u"color-scheme"_s, 1u);
    EXPECT_EQ(spy.count(), 1);
    watch.TakeSetting(space, u"contrast"_s, 1u);
    EXPECT_EQ(spy.count(), 2);
    EXPECT_EQ(watch.Look(), (TDesktopLook{true, true}));
}

TEST(ThemeStyle, AChangeReachesPaletteAndPaintedWidgets)
{
    auto* style = new TThemeStyle(MakeTheme(tkLight, 0));
    QApplication::setStyle(style);
    style->SetTheme(MakeTheme(tkLight, 0));
    QPushButton button(u"Save"_s);
    button.setDefault(true);
    button.resize(90, 30);
    const auto ground = [&] { return button.grab().toImage().pixelColor(8, 15); };
    EXPECT_EQ(ground(), CurrentTheme().AccentFill);
    style->SetTheme(MakeTheme(tkDark, 4));
    EXPECT_EQ(ground(), MakeTheme(tkDark, 4).AccentFill);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), MakeTheme(tkDark, 4).Window);
    QLineEdit field;
    EXPECT_GE(field.sizeHint().height(), 24);
    style->SetTheme(MakeTheme(tkLight, 0));
}

TEST(Icons, EveryIconDrawsInEverySizeAndTheColourAsked)
{
    const QStringList names = IconNames();
    ASSERT_GE(names.size(), 90);
    for (const QString& name : names)
        for (const int side : {12, 16, 26})
            for (const qreal ratio : {1.0, 1.25, 2.0}) {
                QImage image(int(side * ratio), int(side * ratio), QImage::Format_ARGB32_Premultiplied);
                image.fill(Qt::transparent);
                image.setDevicePixelRatio(ratio);
                QPainter painter(&image);
                DrawIcon(painter, QRectF(0, 0, side, side), name, Qt::red);
                painter.end();
                EXPECT_GT(InkedPixels(image), 3) << name.toStdString() << " at " << side << " x " << ratio;
            }
    EXPECT_TRUE(ThemeIcon(u"no such icon"_s).isNull());
    const QIcon icon = ThemeIcon(u"stop"_s, icAccent);
    EXPECT_EQ(icon.pixmap(20, 20).toImage().pixelColor(10, 10), CurrentTheme().AccentFill);
    const QColor off = icon.pixmap(QSize(20, 20), 1.0, QIcon::Disabled).toImage().pixelColor(10, 10);
    EXPECT_NEAR(off.alphaF(), DisabledOpacity, 0.01);
}

TEST(CoverArt, PicturesKeepTheirProportionsAndHostileBytesGiveNothing)
{
    EXPECT_EQ(FitInSquare({300, 150}, 100), QSize(100, 50));
    EXPECT_EQ(FitInSquare({150, 300}, 100), QSize(50, 100));
    EXPECT_EQ(FitInSquare({4000, 1}, 100), QSize(100, 1));
    EXPECT_TRUE(DecodeScaled("no picture at all", 100).isNull());
    EXPECT_TRUE(DecodeScaled(QByteArray("\xFF\xD8\xFF\xE0", 4), 100).isNull());
    EXPECT_EQ(CoverGroundOf(u"Sable Hours"_s), CoverGroundOf(u"SABLE hours"_s));
    const QPixmap drawn = DrawnCover(140, 1.5, u"After the Harbour"_s, u"Sable Hours"_s, u"Vinyl"_s, CurrentTheme());
    EXPECT_EQ(drawn.size(), QSize(210, 210));
    EXPECT_EQ(drawn.toImage().pixelColor(0, 0).alpha(), 0) << "the corners are round";
}

TEST(Stars, HalfStepsFillFromTheLeft)
{
    const auto ink = [](int halfStars) {
        QImage image(120, 20, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        DrawStars(painter, QPointF(0, 0), 17, halfStars, CurrentTheme());
        painter.end();
        return InkedPixels(image);
    };
    for (int halfStars = 0; halfStars < 10; ++halfStars)
        EXPECT_LT(ink(halfStars), ink(halfStars + 1)) << halfStars;
    EXPECT_EQ(ink(-3), ink(0));
    EXPECT_EQ(ink(99), ink(10));
}

} // namespace Kestrune
