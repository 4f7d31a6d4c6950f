// SPDX-License-Identifier: GPL-3.0-or-later
// Shows the parts of the windows with invented data and writes them as pictures: gui_gallery FOLDER
// [light|dark|contrast]
#include "dmMain.h"
#include "uCoverCache.h"
#include "uDefaults.h"
#include "uDetailPane.h"
#include "uEmptyPage.h"
#include "uFilterBar.h"
#include "uGalleryData.h"
#include "uImport.h"
#include "uImportWindow.h"
#include "uLetterBar.h"
#include "uListedImporter.h"
#include "uLogView.h"
#include "uMainWindow.h"
#include "uMessageBars.h"
#include "uProgressWindow.h"
#include "uReleaseRoles.h"
#include "uRibbon.h"
#include "uScriptedPrompt.h"
#include "uSearchBox.h"
#include "uSegments.h"
#include "uSplash.h"
#include "uStatusLine.h"
#include "uTestFiles.h"
#include "uThemeController.h"
#include "uThumbsPainter.h"
#include "uTileView.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QHeaderView>
#include <QMenu>
#include <QTest>
#include <QTextStream>
#include <QVBoxLayout>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TGallery {
public:
    TGallery(const QString& folder, const QString& look) : FFolder(folder), FLook(look) {}

    void Save(QWidget& widget, const QString& name) const
    {
        widget.show();
        for (int round = 0; round < 5; ++round) {
            widget.grab();
            QCoreApplication::processEvents();
        }
        const QString path = QDir(FFolder).filePath(name + u'-' + FLook + u".png"_s);
        QTextStream(stdout) << (widget.grab().save(path) ? u"wrote "_s : u"cannot write "_s) << path << Qt::endl;
    }

    void Thumbs() const
    {
        for (int step = 0; step < 3; ++step) {
            Kit::TSampleModel model(4000);
            TModelThumbSource source;
            TCoverCache covers(source);
            TThumbsPainter painter(covers);
            painter.SetStep(step);
            TTileView view;
            view.SetPainter(&painter);
            view.setModel(&model);
            view.resize(1093, 670);
            view.setCurrentIndex(model.index(1, 0));
            view.show();
            view.activateWindow();
            view.setFocus();
            Save(view, u"thumbs%1"_s.arg(step));
        }
    }

    void Window(const QString& name, int width, int height, bool empty) const
    {
        QWidget window;
        const std::vector<QAction*> actions = Kit::SampleActions(&window);
        const auto find = [&](const QString& wanted) -> QAction* {
            for (QAction* action : actions)
                if (action->objectName() == wanted)
                    return action;
            return nullptr;
        };
        find(u"actMultiEdit"_s)->setEnabled(false);
        find(u"actThumbView"_s)->setChecked(true);
        auto* column = new QVBoxLayout(&window);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(0);
        auto* ribbon = new TRibbon(&window);
        ribbon->SetTable(MainRibbonTable(), find);
        ribbon->SetFileMenu(new QMenu(&window));
        ribbon->SearchBox()->SetFields({{{}, u"Everything"_s, {}}, {u"Artist"_s, u"Artist"_s, {}}});
        column->addWidget(ribbon);
        auto* filters = new TFilterBar(&window);
        filters->SetStatusMenu(new QMenu(&window));
        filters->SetSavedMenu(new QMenu(&window));
        filters->SetSort(u"Date added"_s, false, new QMenu(&window));
        filters->Sizes()->SetIcons({u"sizeS"_s, u"sizeM"_s, u"sizeL"_s}, {u"Small"_s, u"Medium"_s, u"Large"_s});
        filters->Sizes()->SetCurrent(1);
        filters->Views()->SetActions({find(u"actThumbView"_s), find(u"actCardsView"_s), find(u"actShelveView"_s),
                                      find(u"actAlbumTableView"_s), find(u"actTracksView"_s)});
        column->addWidget(filters);
        auto* bars = new TMessageBars(&window);
        column->addWidget(bars);
        auto* status = new TStatusLine(&window);
        Kit::TSampleModel model(4000);
        TModelThumbSource source;
        TCoverCache covers(source);
        TThumbsPainter painter(covers);
        TTileView* view = nullptr;
        if (empty) {
            bars->Show({bkError,
                        u"Database file not found."_s,
                        u"/media/attic/music-2019.db"_s,
                        {},
                        {{u"Open…"_s, {}}, {u"Remove from recent"_s, {}}}});
            auto* page = new TEmptyPage(&window);
            page->ShowNoCollection(
                {{u"New collection"_s, u"Suggested: Documents/records.db"_s, find(u"actNewDatabase"_s)},
                 {u"Open collection"_s, u"A *.db file of this program"_s, find(u"actOpenDatabase"_s)}},
                {{u"~/Documents/attic-vinyl.db"_s, u"1,204 releases · yesterday"_s, false},
                 {u"/media/attic/music-2019.db"_s, u"not found"_s, true}});
            column->addWidget(page, 1);
            status->SetFacts({u"0 releases"_s, u"Nothing selected"_s});
        } else {
            filters->Chips()->SetChips(
                {{u"1"_s, u"Date added"_s, u"last 5 years"_s}, {u"2"_s, u"Rating"_s, u"2.5 or more"_s}});
            auto* letters = new TLetterBar(&window);
            letters->SetHits({u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"E"_s});
            column->addWidget(letters);
            view = new TTileView(&window);
            view->SetPainter(&painter);
            view->setModel(&model);
            column->addWidget(view, 1);
            status->SetFacts({u"2,418 of 3,906 releases"_s, u"1 selected"_s, u"31,204 tracks"_s});
            status->ShowProgress(u"Downloading covers, 12 of 40"_s, 12, 40, true);
        }
        status->SetFile(u"records.db"_s, empty);
        column->addWidget(status);
        window.resize(width, height);
        window.show();
        window.activateWindow();
        if (view) {
            view->setFocus();
            view->setCurrentIndex(model.index(1, 0));
        }
        Save(window, name);
        if (!empty) {
            ribbon->SetCurrentTab(1);
            ribbon->ShowKeyTips();
            Save(window, name + u"-tips"_s);
        }
    }

    static TDetailData SampleDetail()
    {
        TDetailData detail;
        detail.ID = 2;
        detail.Title = u"Low Lamps"_s;
        detail.Artist = u"Hask & Vane"_s;
        detail.Rating = 10;
        detail.Cover = Kit::SampleCover(1, 600);
        detail.Sections = {{u"General"_s,
                            u"General"_s,
                            {{u"ReleaseYear"_s, u"Year"_s, u"1974"_s, {}},
                             {u"MediaType"_s, u"Media type"_s, u"Vinyl"_s, {}},
                             {u"Genre"_s, u"Genre"_s, u"Jazz"_s, {}},
                             {u"CountryCode"_s, u"Country"_s, u"United States"_s, {}},
                             {u"Link"_s, u"Link"_s, u"example.org/release/5c1e"_s, u"https://example.org"_s}}},
                           {u"Comments"_s,
                            u"Comments"_s,
                            {{u"Comments"_s,
                              {},
                              u"Bought in a shop that smelled of rain. The sleeve is worn along "
                              u"the spine, the record itself plays without a click."_s,
                              {}}}}};
        detail.TracksSummary = u"6 · 38:42"_s;
        detail.Discs = {{u"Side A"_s,
                         u"20:05"_s,
                         {{u"A1"_s, u"Low Lamps"_s, {}, u"6:42"_s},
                          {u"A2"_s, u"Corner of Vane and Fourth"_s, {}, u"5:18"_s},
                          {u"A3"_s, u"Hask’s Errand"_s, {}, u"8:05"_s}}}};
        detail.Credits = {{u"Mara Lind"_s, u"Piano"_s}, {u"Jonas Vane"_s, u"Double bass"_s}};
        detail.Pictures = {Kit::SampleCover(2, 250), Kit::SampleCover(5, 250)};
        return detail;
    }

    // The whole window over a collection file made for it.
    void Program() const
    {
        Kit::TTempDir folder;
        Kit::TScriptedPrompt prompt;
        TDataModuleMain collection(prompt);
        Defaults() = MakeDefaults();
        Defaults().DBPath = folder.File(u"records.db"_s);
        Defaults().ThemeIndex = FLook == "dark"_L1 ? 1 : FLook == "contrast"_L1 ? 2 : 0;
        Defaults().InfoPaneLocation = 1;
        Defaults().MainFormMaximized = false;
        collection.CreateNewDB(Defaults().DBPath, collection.GetNewDatabaseSQL());
        collection.ConnectToDB(Defaults().DBPath);
        const Kit::TSampleModel samples(60);
        for (int row = 0; row < 60; ++row) {
            const QModelIndex index = samples.index(row, 0);
            TAlbumRelease release;
            release.SetItem2(u"Artist"_s, index.data(rrArtist).toString());
            release.SetItem2(u"ReleaseName"_s, index.data(rrTitle).toString());
            release.SetItem2(u"ReleaseYear"_s, index.data(rrYear).toString());
            release.SetItem2(u"MediaType"_s, index.data(rrMediaType).toString());
            release.SetItem2(u"CountryCode"_s, index.data(rrCountry).toString());
            collection.AddAlbumReleaseToDB(release, true);
        }
        TKRNMainForm form(collection, prompt);
        TThemeController theme;
        TMainWindow window(form, theme, false);
        window.ShowRestored();
        window.resize(1440, 900);
        window.activateWindow();
        for (int round = 0; round < 30; ++round)
            QTest::qWait(10);
        Save(window, u"program-thumbs"_s);
        form.Lists().Active().LetterClick(u"S"_s);
        form.Lists().Active().SortBy(u"ReleaseYear"_s, false);
        form.SetCurrentView(mvAlbums);
        QTest::qWait(200);
        Save(window, u"program-table"_s);
    }

    void Pane() const
    {
        QObject owner;
        const std::vector<QAction*> actions = Kit::SampleActions(&owner);
        TDetailPane pane;
        pane.SetActions({actions[7], actions[14], actions[17]});
        pane.SetData(SampleDetail());
        pane.resize(346, 760);
        Save(pane, u"pane-right"_s);
        pane.SetOrientation(Qt::Horizontal);
        pane.resize(1200, 260);
        Save(pane, u"pane-bottom"_s);
    }

    void Dialogs() const
    {
        TSplashForm splash;
        splash.SetText(u"Loading albums..."_s);
        Save(splash, u"splash"_s);
        TProgressWindow progress(u"Adding audio files"_s);
        progress.SetProgress(12, 40);
        progress.SetCurrentItem(u"Hask & Vane – Low Lamps"_s);
        progress.Log().AddLines({u"Salt Atlas stored"_s});
        progress.Log().AddWarning(u"a broken file was left out"_s);
        Save(progress, u"progress"_s);
    }

    void Wizard() const
    {
        Kit::TScriptedPrompt prompt;
        TDataModuleMain data(prompt);
        std::vector<TImporterClass> classes(ImporterClasses().begin(), ImporterClasses().end());
        classes.push_back(Kit::TListedImporter::Row());
        TKRNImportForm form(data, prompt, classes);
        TImportWindow window(form, nullptr);
        window.show();
        form.ChooseClass(0);
        Save(window, u"import-welcome"_s);
        form.ChooseClass(1);
        form.Next();
        form.Source().SetText(QCoreApplication::applicationFilePath());
        Save(window, u"import-source"_s);
        form.Next();
        while (form.Importer())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        form.TickRows({0, 1, 4, 5}, true);
        Save(window, u"import-select"_s);
    }

private:
    QString FFolder;
    QString FLook;
};

int RunGallery(const QStringList& arguments)
{
    const QString folder = arguments.value(1, u"."_s);
    const QString look = arguments.value(2, u"light"_s);
    QDir().mkpath(folder);
    TThemeController theme;
    theme.Apply(look == "dark"_L1 ? 1 : look == "contrast"_L1 ? 2 : 0, 0);
    const TGallery gallery(folder, look);
    gallery.Program();
    theme.Apply(look == "dark"_L1 ? 1 : look == "contrast"_L1 ? 2 : 0, 0);
    gallery.Pane();
    gallery.Dialogs();
    gallery.Wizard();
    gallery.Thumbs();
    gallery.Window(u"window"_s, 1440, 760, false);
    gallery.Window(u"window-narrow"_s, 900, 560, false);
    gallery.Window(u"window-empty"_s, 1440, 820, true);
    return 0;
}

} // namespace

} // namespace Kestrune

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QFont font(QStringList{QStringLiteral("Inter")});
    font.setPixelSize(13);
    QApplication::setFont(font);
    return Kestrune::RunGallery(QApplication::arguments());
}
