// SPDX-License-Identifier: GPL-3.0-or-later
// Opens a collection without a display and writes pictures of the main window, per view and per place of the detail
// pane, and of some dialogs:
//   kestrune-shots COLLECTION FOLDER [light|dark] [WIDTHxHEIGHT]
// Used by the demo where there is no display and for the pictures of the documentation. Not installed.
#include "dmMain.h"
#include "frmAddMusic.h"
#include "frmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uMainWindow.h"
#include "uProgramFiles.h"
#include "uRibbon.h"
#include "uSearchWindow.h"
#include "uShotServices.h"
#include "uThemeController.h"
#include "uWidgetPrompt.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <functional>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

constexpr int QuietTime = 600;     // milliseconds in which nothing changes any more
constexpr int LongestWait = 20000; // milliseconds

// Serves the event loop until the window has nothing more to do by itself (covers that come late, the detail pane).
QImage SettledPicture(QWidget& window)
{
    QElapsedTimer clock;
    clock.start();
    qint64 changed = 0;
    QImage last;
    while (clock.elapsed() - changed < QuietTime && clock.elapsed() < LongestWait) {
        for (const qint64 until = clock.elapsed() + 100; clock.elapsed() < until;)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
        if (const QImage now = window.grab().toImage(); now != last) {
            last = now;
            changed = clock.elapsed();
        }
    }
    return last;
}

bool Save(const QImage& picture, const QString& path)
{
    const bool saved = picture.save(path);
    std::printf("%s %s\n", saved ? "wrote" : "cannot write", qUtf8Printable(path));
    return saved;
}

TFilterNode SampleFilter()
{
    TFilterNode node;
    node.Criteria.push_back({Col::ReleaseYear, foGreaterOrEqual, 1970, u"1970"_s});
    TFilterNode either;
    either.Logic = flAny;
    either.Criteria.push_back({Col::Genre, foEquals, u"Jazz"_s, u"Jazz"_s});
    either.Criteria.push_back({Col::Label, foContains, u"slow"_s, u"slow"_s});
    node.Groups.push_back(std::move(either));
    return node;
}

// Runs an action that opens a dialog, shows the dialog to `look` and closes it.
void InDialog(TKRNMainForm& form, const QString& action, const std::function<void(QWidget&)>& look)
{
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &form, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        look(*dialog);
        dialog->reject();
    });
    timer.start(0);
    form.Actions().Trigger(action);
}

// The search window with hits, one of them looked at, others selected or chosen.
void SearchPictures(TInfoGrabber& grabber, TDataModuleMain& data, TPrompt& prompt,
                    const std::function<void(QWidget&, const QString&)>& save)
{
    SetHttpStandIn(std::make_shared<TShotServices>());
    Defaults().SearchByArtistRelease = 7;
    TAddMusicForm form(grabber, data, prompt);
    form.Fields().Artist = u"Hask & Vane"_s;
    form.Fields().ReleaseTitle = u"Low Lamps"_s;
    form.FormShow();
    TSearchWindow window(form, nullptr);
    window.show();
    save(window, u"search-start"_s);
    const auto waitForDownloads = [&] {
        while (form.Busy())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    };
    form.Search();
    waitForDownloads();
    const auto record = [&](size_t at) { return form.Tabs().Current().Hits[at].RecordIndex; };
    if (form.Tabs().Current().Hits.size() < 9)
        return;
    form.FocusHit(record(form.Tabs().Current().Hits.size() - 3));
    waitForDownloads();
    form.Tabs().SetSelection(
        {record(form.Tabs().Current().Hits.size() - 3), record(form.Tabs().Current().Hits.size() - 4)});
    form.actSaveAndContinue();
    for (const TSearchHit& hit : form.Tabs().Current().Hits)
        if (hit.CatalogNo == "CRB 2207"_L1) {
            form.FocusHit(hit.RecordIndex);
            break;
        }
    waitForDownloads();
    form.Tabs().SetSelection({form.Tabs().Current().Focused});
    Q_EMIT form.Tabs().hitsChanged();
    save(window, u"search"_s);
    SetHttpStandIn(nullptr);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The platform says at each dialog that it has no window manager.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
        if (!text.contains("propagateSizeHints"_L1))
            std::fprintf(stderr, "%s\n", qUtf8Printable(text));
    });
    QApplication application(argc, argv);
    QApplication::setCursorFlashTime(0); // a caret that blinks never lets a picture settle
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("Usage: kestrune-shots COLLECTION FOLDER [light|dark] [WIDTHxHEIGHT]\n", stderr);
        return 2;
    }
    const QString look = arguments.value(3, u"light"_s);
    const QStringList size = arguments.value(4, u"1440x900"_s).split(u'x');
    Defaults().DBPath = arguments[1];
    Defaults().ThemeIndex = look == "dark"_L1 ? 1 : 0;
    Defaults().MainFormMaximized = false;
    Defaults().MainFormWidth = size.value(0).toInt();
    Defaults().MainFormHeight = size.value(1).toInt();
    TWidgetPrompt prompt;
    TThemeController theme;
    theme.Apply(Defaults().ThemeIndex, Defaults().ColorSchemeAccentIndex);
    TDataModuleMain data(prompt);
    TInfoGrabber grabber;
    grabber.Parse(QDir(ProgramFile(u"InfoGrabber"_s)).filePath(u"infograbber.xml"_s));
    TAddMusicForm online(grabber, data, prompt);
    TKRNMainForm form(data, prompt);
    form.Adding().SetAddMusicForm(&online);
    TMainWindow window(form, theme, false);
    window.ShowRestored();
    // The offscreen desktop is small, so the window has started as on a small screen.
    window.resize(size.value(0).toInt(), size.value(1).toInt());
    window.Ribbon()->SetFolded(size.value(0).toInt() <= 1024);
    const std::pair<TMainView, QString> views[] = {{mvThumbs, u"thumbs"_s},
                                                   {mvCards, u"cards"_s},
                                                   {mvShelf, u"shelf"_s},
                                                   {mvAlbums, u"albums"_s},
                                                   {mvTracks, u"tracks"_s}};
    bool saved = QDir().mkpath(arguments[2]);
    const auto save = [&](const QImage& picture, const QString& name) {
        saved = Save(picture, QDir(arguments[2]).filePath(u"%1-%2.png"_s.arg(name, look))) && saved;
    };
    for (const auto& [view, name] : views) {
        form.SetCurrentView(view);
        save(SettledPicture(window), name);
    }
    form.SetCurrentView(mvAlbums);
    form.Actions().Trigger(u"actDetailPanelBottom"_s);
    form.Lists().Active().SetGrouping({Col::Genre});
    save(SettledPicture(window), u"pane-bottom"_s);
    form.Lists().Active().SetGrouping({});
    form.SetCurrentView(mvThumbs);
    form.Actions().Trigger(u"actDetailPanelTop"_s);
    save(SettledPicture(window), u"pane-top"_s);
    form.Actions().Trigger(u"actDetailPanelRight"_s);
    form.Lists().Active().SetBuilderFilter(SampleFilter());
    const std::pair<QString, QString> dialogs[] = {{u"actAdvancedSearch"_s, u"filter-builder"_s},
                                                   {u"actOptions"_s, u"options"_s},
                                                   {u"actPrintPreview"_s, u"print-preview"_s},
                                                   {u"actCommandPalette"_s, u"palette"_s},
                                                   {u"actMultiEdit"_s, u"multi-edit"_s}};
    for (const auto& [action, name] : dialogs) {
        if (name == "options"_L1) {
            form.Lists().Active().SetBuilderFilter({});
            form.SetCurrentView(mvAlbums);
        }
        InDialog(form, action, [&](QWidget& dialog) { save(SettledPicture(dialog), name); });
    }
    SearchPictures(grabber, data, prompt,
                   [&](QWidget& dialog, const QString& name) { save(SettledPicture(dialog), name); });
    return saved ? 0 : 1;
}
