// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QRectF>
#include <QString>
#include <QStringList>

class QPainter;

namespace Kestrune {

/// Which colour of the theme an icon takes when it is painted, so that a theme change needs no new icons.
enum class TIconColor : quint8 { icText2, icText, icAccent, icOnAccent, icOk, icWarn, icError };
using enum TIconColor;

/// An icon of the own set as a QIcon in a theme colour. Checked icons (QIcon::On) take the accent. An unknown name
/// gives a null icon.
QIcon ThemeIcon(const QString& name, TIconColor color = icText2);

/// Draws an icon of the own set, square, centred in the rectangle, in the colour given. Lines are 1.5 wide on the grid
/// of 20, 1.25 from 24 dip up. An unknown name draws nothing.
void DrawIcon(QPainter& painter, const QRectF& rect, const QString& name, const QColor& color);

/// Takes the icons of the desktop's theme where it has them, in place of the own ones.
void SetDesktopIcons(bool use);

/// True when the own set has an icon of this name.
bool HasIcon(const QString& name);

/// All names of the own set, sorted.
QStringList IconNames();

/// The theme's colour for a use.
QColor IconColorOf(TIconColor color);

inline constexpr double DisabledOpacity = 0.42;

} // namespace Kestrune
