// SPDX-License-Identifier: GPL-3.0-or-later
// Opens a collection without a display and writes a picture of the main window per view:
//   kestrune-shots COLLECTION FOLDER [light|dark] [WIDTHxHEIGHT]
// Used by the demo where there is no display and for the pictures of the documentation. Not installed.
#include "dmMain.h"
#include "frmMain.h"
#include "uDefaults.h"
#include "uMainWindow.h"
#include "uThemeController.h"
#include "uWidgetPrompt.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstdio>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

// Serves the event loop until the window has nothing more to do by itself (covers that come late, the detail pane).
void Settle(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
}

bool Save(QWidget& window, const QString& path)
{
    const bool saved = window.grab().save(path);
    std::printf("%s %s\n", saved ? "wrote" : "cannot write", qUtf8Printable(path));
    return saved;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("Usage: kestrune-shots COLLECTION FOLDER [light|dark] [WIDTHxHEIGHT]\n", stderr);
        return 2;
    }
    const QString look = arguments.value(3, u"light"_s);
    const QStringList size = arguments.value(4, u"1440x900"_s).split(u'x');
    Defaults().DBPath = arguments[1];
    Defaults().MainFormMaximized = false;
    Defaults().MainFormWidth = size.value(0).toInt();
    Defaults().MainFormHeight = size.value(1).toInt();
    TWidgetPrompt prompt;
    TThemeController theme;
    theme.Apply(look == "dark"_L1 ? 1 : 0, 0);
    TDataModuleMain data(prompt);
    TKRNMainForm form(data, prompt);
    TMainWindow window(form, theme, false);
    window.ShowRestored();
    window.resize(size.value(0).toInt(), size.value(1).toInt());
    const std::pair<TMainView, QString> views[] = {{mvThumbs, u"thumbs"_s}, {mvAlbums, u"albums"_s}};
    bool saved = QDir().mkpath(arguments[2]);
    for (const auto& [view, name] : views) {
        form.SetCurrentView(view);
        Settle(600);
        saved = Save(window, QDir(arguments[2]).filePath(u"%1-%2.png"_s.arg(name, look))) && saved;
    }
    return saved ? 0 : 1;
}
