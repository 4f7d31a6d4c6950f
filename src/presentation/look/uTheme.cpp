// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTheme.h"

#include <algorithm>
#include <cmath>

namespace Kestrune {

namespace {

struct TAccentPair {
    QRgb Light;
    QRgb Dark;
};

constexpr std::array<TAccentPair, AccentCount> Accents = {{{0xFF0B6470, 0xFF62C3CE},
                                                           {0xFF94431C, 0xFFE8A077},
                                                           {0xFF4150A8, 0xFFA3AEF2},
                                                           {0xFF86386F, 0xFFE29BCB},
                                                           {0xFF4A6420, 0xFFA9C46C},
                                                           {0xFF4A4A4A, 0xFFC9C5BE}}};

constexpr std::array<QRgb, 8> LightGrounds = {0xFFDDD3C4, 0xFFCFDAD3, 0xFFD3D7E0, 0xFFE0D2D0,
                                              0xFFD9DCC8, 0xFFDAD2DE, 0xFFCFDBDE, 0xFFE2D8C4};
constexpr std::array<QRgb, 8> DarkGrounds = {0xFF3D3730, 0xFF2F3A35, 0xFF32363F, 0xFF40312F,
                                             0xFF383A2B, 0xFF39323E, 0xFF2D393C, 0xFF403828};

const TTheme*& ThemeInForce()
{
    static const TTheme* theme = nullptr;
    return theme;
}

void SetGrounds(TTheme& theme, const std::array<QRgb, 8>& grounds)
{
    std::transform(grounds.begin(), grounds.end(), theme.CoverGrounds.begin(), [](QRgb c) { return QColor(c); });
}

TTheme LightTheme()
{
    TTheme t;
    t.Window = 0xF3F1ED;
    t.View = 0xFAF9F7;
    t.Raised = 0xFFFFFF;
    t.Sunken = 0xE9E6E0;
    t.Hover = 0xE6E2DB;
    t.Line = 0xDBD7CF;
    t.Track = 0xCFCAC0;
    t.Outline = 0x8A8479;
    t.Text = 0x1F1D1A;
    t.Text2 = 0x57524A;
    t.Text3 = 0x6B665C;
    t.Disabled = 0xA8A399;
    t.Star = 0xB27416;
    t.Ok = 0x2B6E46;
    t.OkSoft = 0xDDEEE2;
    t.Warn = 0x855700;
    t.WarnSoft = 0xFBECCB;
    t.Error = 0xB3261E;
    t.ErrorSoft = 0xFBE1DD;
    SetGrounds(t, LightGrounds);
    return t;
}

TTheme DarkTheme()
{
    TTheme t;
    t.Window = 0x242321;
    t.View = 0x1B1A18;
    t.Raised = 0x2E2C2A;
    t.Sunken = 0x161514;
    t.Hover = 0x373532;
    t.Line = 0x3B3936;
    t.Track = 0x3B3936;
    t.Outline = 0x8A847B;
    t.Text = 0xEDEAE5;
    t.Text2 = 0xBAB4AB;
    t.Text3 = 0xA09A90;
    t.Disabled = 0x69655E;
    t.Star = 0xE0AE45;
    t.Ok = 0x7FC99B;
    t.OkSoft = 0x1F3B2B;
    t.Warn = 0xEBB95C;
    t.WarnSoft = 0x44350F;
    t.Error = 0xF4928A;
    t.ErrorSoft = 0x4B2421;
    SetGrounds(t, DarkGrounds);
    return t;
}

void ApplyAccent(TTheme& t, int accent)
{
    const bool dark = t.IsDark();
    t.Accent = accent;
    t.AccentFill = AccentColor(accent, dark);
    t.AccentHover = Mix(t.AccentFill, dark ? Qt::white : Qt::black, 0.15);
    t.OnAccent = dark ? QColor(0x10, 0x10, 0x10) : QColor(Qt::white);
    t.AccentSoft = dark ? Mix(t.View, t.AccentFill, 0.24) : Mix(t.Raised, t.AccentFill, 0.15);
    if (accent != 0)
        return;
    t.AccentHover = dark ? 0x83D2DB : 0x08525C;
    t.OnAccent = dark ? 0x06262B : 0xFFFFFF;
    t.AccentSoft = dark ? 0x1E4148 : 0xD3E7E9;
}

// Soft fills carry meaning by a shade that a reader who asks for contrast may not see: rings and edges take over.
void ApplyHighContrast(TTheme& t)
{
    t.Text = t.IsDark() ? Qt::white : Qt::black;
    t.Line = t.Outline = t.Track = t.Text2;
    t.Text3 = t.Text2;
    t.AccentSoft = t.OkSoft = t.WarnSoft = t.ErrorSoft = t.Raised;
}

double Linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& c)
{
    return 0.2126 * Linear(c.redF()) + 0.7152 * Linear(c.greenF()) + 0.0722 * Linear(c.blueF());
}

} // namespace

QColor AccentColor(int accentIndex, bool dark)
{
    const auto& pair = Accents[accentIndex < 0 || accentIndex >= AccentCount ? 0 : std::size_t(accentIndex)];
    return QColor(dark ? pair.Dark : pair.Light);
}

TTheme MakeTheme(TThemeKind kind, int accentIndex)
{
    const bool dark = kind == tkDark || kind == tkDarkContrast;
    TTheme theme = dark ? DarkTheme() : LightTheme();
    theme.Kind = kind;
    ApplyAccent(theme, accentIndex < 0 || accentIndex >= AccentCount ? 0 : accentIndex);
    if (theme.IsHighContrast())
        ApplyHighContrast(theme);
    return theme;
}

TThemeKind ThemeKindFor(int themeIndex, const TDesktopLook& desktop)
{
    switch (themeIndex) {
    case 0: return tkLight;
    case 1: return tkDark;
    case 2: return tkLightContrast;
    case 3: return tkDarkContrast;
    default: break;
    }
    if (desktop.Dark)
        return desktop.HighContrast ? tkDarkContrast : tkDark;
    return desktop.HighContrast ? tkLightContrast : tkLight;
}

const TTheme& CurrentTheme()
{
    static const TTheme plain = MakeTheme(tkLight, 0);
    return ThemeInForce() ? *ThemeInForce() : plain;
}

void SetCurrentTheme(const TTheme* theme) { ThemeInForce() = theme; }

QPalette MakePalette(const TTheme& t)
{
    QPalette p;
    p.setColor(QPalette::Window, t.Window);
    p.setColor(QPalette::WindowText, t.Text);
    p.setColor(QPalette::Base, t.Raised);
    p.setColor(QPalette::AlternateBase, t.View);
    p.setColor(QPalette::Text, t.Text);
    p.setColor(QPalette::PlaceholderText, t.Text3);
    p.setColor(QPalette::Button, t.Raised);
    p.setColor(QPalette::ButtonText, t.Text);
    p.setColor(QPalette::BrightText, t.OnAccent);
    p.setColor(QPalette::Highlight, t.AccentFill);
    p.setColor(QPalette::HighlightedText, t.OnAccent);
    p.setColor(QPalette::Link, t.AccentFill);
    p.setColor(QPalette::LinkVisited, t.AccentFill);
    p.setColor(QPalette::Light, t.Raised);
    p.setColor(QPalette::Midlight, t.Hover);
    p.setColor(QPalette::Mid, t.Line);
    p.setColor(QPalette::Dark, t.Outline);
    p.setColor(QPalette::Shadow, t.Sunken);
    p.setColor(QPalette::ToolTipBase, t.Text);
    p.setColor(QPalette::ToolTipText, t.Window);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::PlaceholderText})
        p.setColor(QPalette::Disabled, role, t.Disabled);
    p.setColor(QPalette::Disabled, QPalette::Base, t.Window);
    p.setColor(QPalette::Disabled, QPalette::Button, t.Window);
    p.setColor(QPalette::Disabled, QPalette::Highlight, t.Disabled);
    return p;
}

QColor Mix(const QColor& ground, const QColor& top, double share)
{
    const auto channel = [share](int g, int t) { return static_cast<int>(std::lround(g + (t - g) * share)); };
    return QColor(channel(ground.red(), top.red()), channel(ground.green(), top.green()),
                  channel(ground.blue(), top.blue()));
}

double ContrastRatio(const QColor& a, const QColor& b)
{
    const auto [low, high] = std::minmax({Luminance(a), Luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

} // namespace Kestrune
