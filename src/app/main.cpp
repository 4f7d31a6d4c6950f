// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "frmAddMusic.h"
#include "frmMain.h"
#include "uDebugLog.h"
#include "uDefaults.h"
#include "uIcons.h"
#include "uMainWindow.h"
#include "uMessageBoxes.h"
#include "uSessionEnd.h"
#include "uSplash.h"
#include "uStartup.h"
#include "uTHStrings.h"
#include "uThemeController.h"
#include "uWidgetPrompt.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>

using namespace Kestrune;

namespace {

/// The edge of the event loop: what was thrown inside an event ends here and is told, not the process.
class TApplication final : public QApplication {
public:
    using QApplication::QApplication;
    std::function<void(const QString& reason)> OnFailure;

    bool notify(QObject* receiver, QEvent* event) override
    {
        try {
            return QApplication::notify(receiver, event);
        } catch (const std::exception& failure) {
            const QString reason = QString::fromUtf8(failure.what());
            DebugLog(QStringLiteral("[Window] ") + reason);
            if (OnFailure)
                OnFailure(reason);
            return true;
        }
    }
};

/// What lives as long as the process, in the order in which it is made. Later members use earlier ones.
struct TSingletons {
    TWidgetPrompt Prompt;
    std::optional<TThemeController> Images; ///< TDataModuleImages: theme and icons
    std::optional<TDataModuleMain> Data;
    std::optional<TKRNMainForm> Form;
    std::optional<TMainWindow> Window;
    std::optional<TAddMusicForm> AddMusic;
    std::unique_ptr<TSplashForm> Splash;
    bool DebugMode = false;
};

void OpenAnew(TSingletons& our);

void CreateMainForm(TSingletons& our)
{
    our.Form.emplace(*our.Data, our.Prompt);
    our.Window.emplace(*our.Form, *our.Images, our.DebugMode);
    our.Prompt.SetWindow(&*our.Window);
    QObject::connect(
        &*our.Window, &TMainWindow::languageChanged, qApp, [&our] { OpenAnew(our); }, Qt::QueuedConnection);
}

void CreateAddMusicForm(TSingletons& our)
{
    our.AddMusic.emplace(InfoGrabber(), *our.Data, our.Prompt);
    our.Form->Adding().SetAddMusicForm(&*our.AddMusic);
}

void ShowMainForm(TSingletons& our)
{
    QObject::connect(&*our.Window, &TMainWindow::shownFirst, &*our.Window, [&our] {
        SetSplashSink({});
        our.Splash.reset();
    });
    our.Window->ShowRestored();
}

void SetDirection()
{
    QApplication::setLayoutDirection(Language().IsRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
}

// The window closes in order and opens again over the same data module: in another language all texts are others.
void OpenAnew(TSingletons& our)
{
    QApplication::setQuitOnLastWindowClosed(false);
    if (our.Window->close()) {
        our.Prompt.SetWindow(nullptr);
        our.Form->Adding().SetAddMusicForm(nullptr);
        our.AddMusic.reset();
        our.Window.reset();
        our.Form.reset();
        ApplyLanguage();
        SetDirection();
        CreateMainForm(our);
        our.Form->SkipStartChecks();
        CreateAddMusicForm(our);
        ShowMainForm(our);
    }
    QApplication::setQuitOnLastWindowClosed(true);
}

TStartupHost MakeHost(TSingletons& our)
{
    TStartupHost host;
    host.SetDebugMode = [&](bool on) { our.DebugMode = on; };
    host.ShowSplash = [&] {
        our.Splash = std::make_unique<TSplashForm>();
        our.Splash->show();
        SetSplashSink([&](const QString& text) { our.Splash->SetText(text); });
    };
    host.InitialiseApplication = [] {
        QApplication::setApplicationDisplayName(Defaults().OEM.Name);
        SetDirection();
        QApplication::setDesktopFileName(QStringLiteral("org.kestrune.Kestrune"));
    };
    host.CreateDataModuleImages = [&] {
        SetDesktopIcons(Defaults().DesktopIcons);
        our.Images.emplace();
        our.Images->Apply(Defaults().ThemeIndex, Defaults().ColorSchemeAccentIndex);
    };
    host.CreateDataModuleMain = [&] { our.Data.emplace(our.Prompt); };
    host.CreateMainForm = [&] { CreateMainForm(our); };
    host.CreateAddMusicForm = [&] { CreateAddMusicForm(our); };
    host.ShowMainForm = [&] { ShowMainForm(our); };
    return host;
}

} // namespace

int main(int argc, char** argv)
{
    // Qt would take options of its own from the command line; "-debug" is all that there is.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    int programOnly = std::min(argc, 1);
    TApplication application(programOnly, argv);
    LoadSettings();
    const TSessionEnd sessionEnd;
    int code = 0;
    {
        TSingletons singletons;
        application.OnFailure = [&](const QString& reason) {
            if (singletons.Form)
                singletons.Form->Shell().ReportFailure(reason);
        };
        RunStartup(MakeHost(singletons), arguments);
        code = QApplication::exec();
        application.OnFailure = nullptr;
        SetDebugLogSink({});
    }
    if (SaveSettings())
        return code;
    const QString sentence = GetLanguageString(QStringLiteral("cSSettingsNotSaved"));
    std::fprintf(stderr, "kestrune: %s\n", qUtf8Printable(sentence));
    if (!sessionEnd.Ending()) // nobody would be there to read it
        ShowError(nullptr, sentence);
    return 1;
}
