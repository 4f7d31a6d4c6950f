// SPDX-License-Identifier: GPL-3.0-or-later
#include "uThemeController.h"

#include "uDesktopWatch.h"
#include "uThemeStyle.h"

#include <QApplication>

namespace Kestrune {

TThemeController::TThemeController(QObject* parent)
    : QObject(parent), FDesktop(new TDesktopWatch(this)), FStyle(new TThemeStyle(MakeTheme(tkLight, 0)))
{
    QApplication::setStyle(FStyle);
    connect(FDesktop, &TDesktopWatch::changed, this, &TThemeController::Refresh);
    Refresh();
}

void TThemeController::Apply(int themeIndex, int accentIndex)
{
    FThemeIndex = themeIndex;
    FAccentIndex = accentIndex;
    Refresh();
}

void TThemeController::Refresh()
{
    FStyle->SetReducedMotion(FDesktop->ReducedMotion());
    FStyle->SetTheme(MakeTheme(ThemeKindFor(FThemeIndex, FDesktop->Look()), FAccentIndex));
    Q_EMIT themeChanged();
}

} // namespace Kestrune
