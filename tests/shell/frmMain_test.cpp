// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFieldText.h"
#include "uFormKit.h"
#include "uImportRun.h"
#include "uStartup.h"
#include "uTHStrings.h"
#include "uViewLayout.h"

#include <QCoreApplication>
#include <QLocale>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

using MainForm = Kit::TMainFormTest;

} // namespace

TEST_F(MainForm, TitlesAreLocatedAsShownFromARowOnAndRound)
{
    OpenFilled(); // Help, Arrival, Lexicon, 100% Zappa
    TAlbumRelease wall;
    wall.SetItem2(u"ReleaseName"_s, u"The Wall"_s);
    FData.AddAlbumReleaseToDB(wall, true);
    const std::tuple<QString, int, int> cases[] = {{u"l"_s, 0, 2},     {u"LEX"_s, 3, 2},  {u"100%"_s, 0, 3},
                                                   {u"10_"_s, 0, -1},  {u"x"_s, 0, -1},   {u"wall"_s, 0, -1},
                                                   {u"the w"_s, 9, 4}, {QString(), 0, -1}};
    for (const auto& [text, from, row] : cases) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(FForm.Search().LocateTitle(text, from), row);
    }
    Defaults().ArticlesEnabled = Defaults().ArticlesFieldReleaseName = true;
    Defaults().ArticlesDisplayMode = 2;
    EXPECT_EQ(FForm.Search().LocateTitle(u"wall, th"_s, 0), 4) << "shown as \"Wall, The\"";
    EXPECT_EQ(FForm.Search().LocateTitle(u"the w"_s, 0), -1);
    Defaults().ArticlesDisplayMode = 1;
    EXPECT_EQ(FForm.Search().LocateTitle(u"the w"_s, 0), 4);
    FForm.Lists().Active().SortBy(u"ReleaseName"_s, false);
    EXPECT_EQ(FForm.Search().LocateTitle(u"h"_s, 0), FData.qReleasesMain.RowOfKey(1));
    FForm.Lists().Active().LetterClick(u"A"_s);
    EXPECT_EQ(FForm.Search().LocateTitle(u"h"_s, 0), -1) << "filtered out";
}

TEST_F(MainForm, ADamagedTrackTableCostsTheTracksOnly)
{
    OpenFilled();
    FData.Disconnect();
    {
        TSQLiteConnection file;
        file.Open(FPath);
        file.Exec(u"PRAGMA wal_checkpoint(TRUNCATE); PRAGMA journal_mode = DELETE"_s);
        const qint64 size = file.Scalar(u"PRAGMA page_size"_s).toLongLong();
        std::vector<qint64> pages; // of the table and of the index that lists can be read from
        for (const QString& name : {u"Tracks2"_s, u"tracks2_index"_s})
            pages.push_back(file.Scalar(u"SELECT rootpage FROM sqlite_master WHERE name = ?"_s, {name}).toLongLong());
        file.Close();
        QByteArray bytes = Kit::ReadAll(FPath);
        for (const qint64 page : pages)
            bytes.replace((page - 1) * size, size, QByteArray(size, '\x7F'));
        Kit::WriteAll(FPath, bytes);
    }
    Defaults().CurrentView = static_cast<int>(mvTracks);
    TKRNMainForm form(FData, FPrompt);
    QStringList bars;
    QObject::connect(&form, &TKRNMainForm::barRaised, &form,
                     [&](TBarKind, const QString& bold, const QString&) { bars << bold; });
    form.FormCreate({});
    form.FormShow();
    form.WMAfterFormShow();
    EXPECT_EQ(form.CurrentView(), mvThumbs);
    EXPECT_EQ(FData.qReleasesMain.RecordCount(), 4) << "the releases are there";
    EXPECT_EQ(FData.qReleasesMain.Value(u"ReleaseName"_s), TVariant(u"Help"_s)) << "and can be read";
    EXPECT_FALSE(bars.isEmpty()) << "and the user knows";
    form.Actions().Trigger(u"actTracksView"_s);
    EXPECT_EQ(form.CurrentView(), mvThumbs);
    form.Actions().Trigger(u"actAlbumTableView"_s);
    EXPECT_EQ(form.CurrentView(), mvAlbums);
    int resets = 0;
    form.Actions().Trigger(u"actRefresh"_s);
    QObject::connect(&FData.qReleasesMain, &TDataset::dataReset, &form, [&] { ++resets; });
    form.Lists().Active().SortBy(u"Artist"_s, false);
    EXPECT_GT(resets, 0) << "a refresh that failed has switched the lists on again";
}

TEST_F(MainForm, WhatIsEditedInOneListIsSeenInTheOther)
{
    OpenFilled();
    FForm.WMAfterFormShow();
    FForm.SetCurrentView(mvTracks);
    const TListDataset& tracks = FData.qTracksAll;
    const TListDataset& releases = FData.qReleasesMain;
    const auto shown = [](const TListDataset& list, const QString& field) {
        return list.ValueAt(0, list.FieldIndex(field));
    };
    ASSERT_EQ(shown(tracks, u"ReleaseName"_s), TVariant(u"Help"_s));
    ASSERT_NEAR(shown(releases, u"TotalTracksLength"_s).toDouble(), 61 / 86400.0, 1e-9);
    EXPECT_TRUE(FForm.Lists().Releases().EditField(releases.KeyAt(0), u"ReleaseName"_s, u"Help!"_s));
    EXPECT_EQ(shown(tracks, u"ReleaseName"_s), TVariant(u"Help!"_s));
    EXPECT_TRUE(FForm.Lists().Tracks().EditField(tracks.KeyAt(0), u"TrackLength"_s, 0.5));
    EXPECT_DOUBLE_EQ(shown(releases, u"TotalTracksLength"_s).toDouble(), 0.5);
    WaitFor(&TKRNMainForm::figuresChanged);
    while (FForm.Figures().Status().Tracks < 0)
        WaitFor(&TKRNMainForm::figuresChanged);
    EXPECT_NEAR(FForm.Figures().Status().TracksLength, 0.5 + 3 * 61 / 86400.0, 1e-9);
}

TEST(FieldTexts, DatesKeepTheirCenturyInEveryLocale)
{
    const TFieldDef field{u"DatePurchased"_s, fkDate, 0, {}, {}};
    const QLocale before;
    const char* locales[] = {"en_US", "en_GB", "de_DE", "fr_FR", "es_ES", "it_IT", "nl_NL", "pt_BR", "pl_PL", "cs_CZ",
                             "sv_SE", "fi_FI", "da_DK", "nb_NO", "hu_HU", "ro_RO", "el_GR", "tr_TR", "ru_RU", "uk_UA",
                             "bg_BG", "he_IL", "ar_EG", "fa_IR", "hi_IN", "th_TH", "ja_JP", "zh_CN", "ko_KR", "vi_VN"};
    for (const char* name : locales) {
        QLocale::setDefault(QLocale(QString::fromLatin1(name)));
        for (const QDate& date : {QDate(1899, 12, 31), QDate(1949, 1, 2), QDate(1999, 12, 31), QDate(2000, 2, 29),
                                  QDate(2026, 10, 11), QDate(2049, 6, 5)}) {
            const QString shown = FieldEditText(field, date);
            const auto read = ParseFieldText(field, shown);
            EXPECT_TRUE(read && read->toDate() == date)
                << name << " shows " << date.toString(Qt::ISODate).toStdString() << " as " << shown.toStdString();
        }
    }
    QLocale::setDefault(QLocale(QStringLiteral("en_GB")));
    const int now = QDate::currentDate().year();
    for (const int year : {now, now - 50, now - 89, now + 9}) {
        const auto read = ParseFieldText(field, u"05/06/%1"_s.arg(year % 100, 2, 10, QChar(u'0')));
        ASSERT_TRUE(read);
        EXPECT_EQ(read->toDate(), QDate(year, 6, 5)) << "two digits mean a year that is not far ahead";
    }
    QLocale::setDefault(before);
}

TEST(ViewLayout, ComesBackFromItsTextAndNothingElseDoes)
{
    const TTableLayout layout{{{u"Artist"_s, 0, false}, {u"No"_s, 52, false}, {u"Genre"_s, 0, true}},
                              {{u"Artist"_s, false}, {u"ReleaseYear"_s, true}},
                              {u"Genre"_s}};
    const QString text = LayoutToText(layout);
    EXPECT_EQ(text, u"v2|Artist:0,No:52,-Genre:0|Artist,-ReleaseYear|Genre"_s);
    ASSERT_TRUE(LayoutFromText(text));
    EXPECT_TRUE(*LayoutFromText(text) == layout);
    for (const QString& bad :
         {QString(), u"v1|Artist:0|"_s, u"v2|Artist:0"_s, u"v2|||"_s, u"v2|Artist||"_s, u"v2|Artist:x||"_s,
          u"v2|Artist:5||"_s, u"v2|Artist:-40||"_s, u"v2|Artist:99999999999||"_s, u"v2|Artist:40,artist:40||"_s,
          u"v2|-Artist:40||"_s, u"v2|A b:40||"_s, u"v2|:40||"_s, u"v2|Artist:0|x;y|"_s, u"v2|Artist:0|No,No|"_s,
          u"v2|Artist:0||a b"_s, u"v2|Artist:0||No,No"_s, u"\u0000\u00ff"_s, QString(1000000, u'|')})
        EXPECT_FALSE(LayoutFromText(bad)) << bad.left(60).toStdString();
    EXPECT_EQ(FoldedFromText(FoldedToText({u"tracks"_s, u"General"_s})), (QStringList{u"General"_s, u"tracks"_s}));
    EXPECT_TRUE(FoldedFromText(FoldedToText({})).isEmpty());
    for (const QString& bad : {QString(), u"General"_s, u"v9|General"_s, u"v1|a b"_s, u"v1|a|b"_s})
        EXPECT_TRUE(FoldedFromText(bad).isEmpty()) << bad.toStdString();
}

TEST(Startup, OnlyTheFirstArgumentAsksForDebugMode)
{
    EXPECT_TRUE(IsDebugModeAsked({u"kestrune"_s, u"-DEBUG"_s}));
    EXPECT_FALSE(IsDebugModeAsked({u"kestrune"_s, u"x"_s, u"-debug"_s}));
    EXPECT_FALSE(IsDebugModeAsked({u"kestrune"_s}));
    EXPECT_FALSE(IsDebugModeAsked({u"-debug"_s}));
}

TEST(Startup, StepsRunInTheirFixedOrder)
{
    QStringList log;
    TStartupHost host;
    host.SetDebugMode = [&](bool on) { log << (on ? u"debug"_s : u"plain"_s); };
    host.ShowSplash = [&] {
        log << u"splash"_s;
        SetSplashSink([&](const QString& text) { log << text; });
    };
    host.InitialiseApplication = [&] { log << u"application"_s; };
    host.CreateDataModuleImages = [&] { log << u"images"_s; };
    host.CreateDataModuleMain = [&] { log << u"data"_s; };
    host.CreateMainForm = [&] { log << u"form"_s; };
    host.CreateAddMusicForm = [&] { log << u"search"_s; };
    host.ShowMainForm = [&] { log << u"show"_s; };
    RunStartup(host, {u"kestrune"_s, u"-debug"_s});
    SetSplashSink({});
    EXPECT_EQ(log, QStringList({u"debug"_s, u"splash"_s, u"application"_s, u"Loading icons and images..."_s,
                                u"images"_s, u"Loading data..."_s, u"data"_s, u"form"_s, u"Preparing music search..."_s,
                                u"search"_s, u"show"_s}));
}

TEST_F(MainForm, AFirstStartAndAFileThatIsGoneShowNoErrorBox)
{
    FForm.FormCreate({});
    FForm.FormShow();
    FForm.WMAfterFormShow();
    EXPECT_FALSE(FData.HasData());
    EXPECT_EQ(FForm.Files().Failure(), QString()) << "nothing is wrong with a first start";
    Defaults().DBPath = FDir.File(u"gone.db"_s);
    FForm.Files().OpenAtStart();
    EXPECT_EQ(FForm.Files().Failure(), u"Database file not found."_s);
    EXPECT_TRUE(FPrompt.Errors.isEmpty());
    EXPECT_FALSE(FForm.Actions().IsEnabled(u"actRefresh"_s));
    EXPECT_TRUE(FForm.Actions().IsEnabled(u"actNewDatabase"_s));

    FPrompt.FileAnswer = FPath;
    FForm.Actions().Trigger(u"actNewDatabase"_s);
    EXPECT_TRUE(FData.HasData());
    EXPECT_EQ(FPrompt.Saved.FileName, u"Records.db"_s);
    EXPECT_TRUE(FPrompt.Errors.isEmpty());
    EXPECT_EQ(FForm.Caption(), u"c.db - Kestrune"_s);
    EXPECT_EQ(FForm.Files().Recent(), QStringList({FPath}));
}

TEST_F(MainForm, OpeningShowsTheSplashTextsInOrder)
{
    FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
    Defaults().DBPath = FPath;
    QStringList log;
    SetSplashSink([&](const QString& text) { log << text; });
    FForm.FormCreate({[&] { log << u"debug window"_s; }, [&] { log << u"theme"_s; }});
    SetSplashSink({});
    EXPECT_EQ(log, QStringList({u"debug window"_s, u"Loading settings..."_s, u"theme"_s, u"Loading albums..."_s,
                                u"Loading pictures..."_s, u"Loading album info..."_s, u"Loading friends list..."_s,
                                u"Loading loans..."_s, u"Loading tracks..."_s}));
}

TEST_F(MainForm, TheThreeFiltersStandSideBySide)
{
    OpenFilled();
    FForm.Search().FilterStatus(u"In collection"_s);
    EXPECT_EQ(Shown(), QStringList({u"Help"_s, u"Lexicon"_s}));
    FForm.Lists().Active().LetterClick(u"A"_s);
    FForm.Lists().Active().LetterClick(u"A"_s);
    EXPECT_EQ(Shown(), QStringList({u"Lexicon"_s}));
    EXPECT_EQ(FForm.Lists().Active().Filters().Chips().size(), 2u) << "a letter twice is one criterion";
    FForm.Search().SetSearchBy(u"ReleaseName"_s);
    FForm.Search().SetSearchText(u"nothing"_s);
    FForm.Actions().Trigger(u"actSearch"_s);
    EXPECT_TRUE(Shown().isEmpty());
    FForm.Search().SetSearchText(u"lex"_s);
    FForm.Actions().Trigger(u"actSearch"_s);
    EXPECT_EQ(Shown(), QStringList({u"Lexicon"_s}));
    FForm.Search().RemoveFilter(fckStatus);
    FForm.Lists().Active().LetterClick(u"All"_s);
    EXPECT_EQ(FForm.Lists().Active().Filters().Chips().size(), 1u);
    FForm.Actions().Trigger(u"actFilterStatusOther"_s);
    EXPECT_TRUE(FForm.Lists().Active().Filters().Chips().empty());
    EXPECT_FALSE(FData.qReleasesMain.FilterActive());
    EXPECT_EQ(Shown().size(), 4);
}

TEST_F(MainForm, TheLetterBarWorksOnTheStoredText)
{
    OpenFilled();
    FForm.Lists().Active().LetterClick(u"T"_s);
    EXPECT_EQ(Shown(), QStringList({u"Help"_s}));
    FForm.Search().SetLetterField(1);
    EXPECT_TRUE(Shown().isEmpty());
    FForm.Lists().Active().LetterClick(u"h"_s);
    EXPECT_EQ(Shown(), QStringList({u"Help"_s}));
}

TEST_F(MainForm, ListFieldsAreSearchedByEqualityOthersByText)
{
    OpenFilled();
    struct {
        const char16_t* Field;
        const char16_t* Text;
        int Rows;
    } const cases[] = {{u"Status", u"Wanted item", 1}, {u"Status", u"Wanted", 0}, {u"MediaType", u"cd", 4},
                       {u"ReleaseYear", u"197", 2},    {u"Artist", u"AB", 2},     {u"ReleaseName", u"0%", 1},
                       {u"ReleaseName", u"", 4},       {u"Label", u"", 0},        {u"Status", u"", 4},
                       {u"IsLive", u"No", 4}};
    for (const auto& row : cases) {
        SCOPED_TRACE(QString::fromUtf16(row.Field).toStdString() + " " + QString::fromUtf16(row.Text).toStdString());
        FForm.Search().SetSearchBy(QString::fromUtf16(row.Field));
        FForm.Search().SetSearchText(QString::fromUtf16(row.Text));
        FForm.Actions().Trigger(u"actSearch"_s);
        EXPECT_EQ(Shown().size(), row.Rows);
    }
}

TEST_F(MainForm, TheDetailPaneFollowsAfterItsDelay)
{
    OpenFilled();
    const qint64 id = FData.qReleasesMain.KeyAt(1);
    FForm.Lists().Releases().SetFocused(FData.qReleasesMain.KeyAt(3));
    FForm.Lists().Releases().SetFocused(id);
    WaitFor(&TKRNMainForm::detailChanged);
    EXPECT_EQ(FForm.Pane().Detail().ID, id) << "only the last one is read";
    EXPECT_EQ(FForm.Pane().Detail().Title, u"Arrival"_s);
    EXPECT_EQ(FForm.Pane().Detail().TracksSummary, u"1 · 1:01"_s);

    FForm.Pane().SetRating(9);
    EXPECT_EQ(FForm.Pane().Detail().Rating, 9);
    EXPECT_EQ(FData.qReleasesMain.Value(u"Rating_Calc"_s).toDouble(), 4.5) << "the row in the list is refreshed";
}

TEST_F(MainForm, RemovingAsksAndTakesTheSelection)
{
    OpenFilled();
    FForm.Lists().Releases().SetSelection({FData.qReleasesMain.KeyAt(0), FData.qReleasesMain.KeyAt(2)});
    FPrompt.YesNoAnswer = false;
    FForm.Actions().Trigger(u"actRemoveSelected"_s);
    EXPECT_EQ(Shown().size(), 4);
    FPrompt.YesNoAnswer = true;
    FForm.Actions().Trigger(u"actRemoveSelected"_s);
    EXPECT_EQ(Shown(), QStringList({u"Arrival"_s, u"100% Zappa"_s}));
    EXPECT_EQ(FPrompt.Questions.back(), u"Do you want to delete selected item(s)?"_s);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Tracks2"_s), 2);
    EXPECT_TRUE(FForm.Lists().Releases().Selection().empty());
    EXPECT_EQ(FPrompt.Notes.back(), u"2 releases"_s);
}

TEST_F(MainForm, ADeletionIsUndoneOnceAsAWhole)
{
    OpenFilled();
    std::vector<std::function<void()>> offers;
    QStringList bars;
    QObject::connect(&FForm.Shell(), &TShell::offerRaised, &FForm,
                     [&](TBarKind, const QString& bold, const QString&, const TBarOffer& offer) {
                         bars << bold;
                         offers.push_back(offer.Act);
                     });
    QObject::connect(&FForm, &TKRNMainForm::barRaised, &FForm,
                     [&](TBarKind, const QString& bold, const QString&) { bars << bold; });
    FForm.Lists().Releases().SetSelection({FData.qReleasesMain.KeyAt(0)});
    FForm.Actions().Trigger(u"actRemoveSelected"_s);
    FForm.Lists().Releases().SetSelection(FData.qReleasesMain.Keys());
    FForm.Actions().Trigger(u"actRemoveSelected"_s);
    EXPECT_TRUE(Shown().isEmpty());
    ASSERT_EQ(offers.size(), 2u);
    for (int twice = 0; twice < 2; ++twice)
        offers[1]();
    EXPECT_EQ(Shown(), (QStringList{u"Arrival"_s, u"Lexicon"_s, u"100% Zappa"_s}));
    EXPECT_EQ(FForm.Figures().Status().Total, 3);
    const auto working = FForm.Shell().BeginWork();
    offers[0]();
    EXPECT_EQ(Shown().size(), 3) << "while an import runs the offer stays";
    EXPECT_EQ(bars,
              (QStringList{u"1 release deleted."_s, u"3 releases deleted."_s, u"The deletion was not undone."_s}));
}

TEST_F(MainForm, WhatAFilterHidesIsNotRemoved)
{
    OpenFilled();
    FForm.Lists().Releases().SetSelection(FData.qReleasesMain.Keys());
    FForm.Lists().Releases().SetFocused(FData.qReleasesMain.KeyAt(1));
    FForm.Lists().Active().LetterClick(u"Z"_s);
    EXPECT_EQ(FForm.Lists().Releases().Selection().size(), 1u);
    FForm.Lists().Active().LetterClick(u"Q"_s);
    EXPECT_TRUE(FForm.Lists().Releases().Selection().empty());
    EXPECT_FALSE(FForm.Actions().IsEnabled(u"actRemoveSelected"_s));
    FForm.Actions().Trigger(u"actRemoveSelected"_s);
    EXPECT_TRUE(FPrompt.Questions.isEmpty());
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2"_s), 4);
}

TEST_F(MainForm, ARefusedFileLeavesCollectionAndFilters)
{
    OpenFilled();
    FForm.Lists().Active().LetterClick(u"Z"_s);
    FPrompt.FileAnswer = FDir.Write(u"other.db"_s, QByteArray(5000, 'x'));
    FForm.Actions().Trigger(u"actOpenDatabase"_s);
    EXPECT_EQ(FPrompt.Errors.size(), 1);
    EXPECT_EQ(Shown(), QStringList({u"100% Zappa"_s}));
    EXPECT_EQ(FForm.Lists().Active().Filters().Chips().size(), 1u);
    FForm.Actions().Trigger(u"actFilterStatusOther"_s);
    EXPECT_EQ(Shown().size(), 4);
}

TEST_F(MainForm, HeadingsSortAndTurn)
{
    OpenFilled();
    FForm.Lists().Active().SortBy(u"Artist"_s, false);
    EXPECT_EQ(Shown(), QStringList({u"Arrival"_s, u"Lexicon"_s, u"Help"_s, u"100% Zappa"_s}));
    FForm.Lists().Active().SortBy(u"Artist"_s, false);
    EXPECT_EQ(Shown().front(), u"100% Zappa"_s);
    FForm.Lists().Active().SortBy(u"Status"_s, false);
    FForm.Lists().Active().SortBy(u"ReleaseYear"_s, true);
    FForm.Lists().Active().SortBy(u"ReleaseYear"_s, true);
    EXPECT_EQ(Shown(), QStringList({u"100% Zappa"_s, u"Lexicon"_s, u"Help"_s, u"Arrival"_s}));
    FForm.Actions().Trigger(u"actClearSorting"_s);
    EXPECT_EQ(Shown().front(), u"Help"_s);
}

TEST_F(MainForm, FoldersAreAddedInTheBackground)
{
    OpenFilled();
    for (int i = 1; i <= 2; ++i)
        ASSERT_TRUE(Kit::RunProgram(u"ffmpeg"_s,
                                    {u"-v"_s, u"error"_s, u"-f"_s, u"lavfi"_s, u"-i"_s, u"sine=duration=1"_s,
                                     u"-metadata"_s, u"artist=Test"_s, u"-metadata"_s, u"album=Tones"_s, u"-metadata"_s,
                                     u"title=T%1"_s.arg(i), FDir.File(u"music/Tones/0%1.mp3"_s.arg(i))}));
    FPrompt.FileAnswer = FDir.File(u"music"_s);
    bool finished = false;
    QObject::connect(&FForm.Adding(), &TAdding::addFilesFinished, &FForm, [&] { finished = true; });
    FForm.Actions().Trigger(u"actAddMP3"_s);
    ASSERT_TRUE(FForm.Adding().AddFiles());
    EXPECT_FALSE(FForm.Actions().IsEnabled(u"actRemoveSelected"_s)) << "while a run is on";
    WaitFor(FForm.Adding(), &TAdding::addFilesFinished);
    ASSERT_TRUE(finished);
    EXPECT_EQ(Shown().back(), u"Tones"_s);
    EXPECT_EQ(FForm.Figures().Status().Total, 5);
    QCoreApplication::processEvents();
    EXPECT_TRUE(FForm.Actions().IsEnabled(u"actAddMP3"_s));
}

TEST_F(MainForm, AViewThatIsNotThereLeavesTheFirst)
{
    for (const auto& [stored, expected] : {std::pair{3, mvAlbums}, {0, mvThumbs}, {7, mvThumbs}, {-1, mvThumbs}}) {
        Defaults().CurrentView = stored;
        TKRNMainForm form(FData, FPrompt);
        form.FormCreate({});
        EXPECT_EQ(form.CurrentView(), expected) << stored;
    }
}

TEST(Actions, EveryRowHasTextsAndNoKeyIsGivenTwiceUnawares)
{
    QStringList shortcuts;
    for (const TActionDef& def : ActionDefs()) {
        SCOPED_TRACE(def.Name);
        const QString key = QString::fromLatin1(def.CaptionKey);
        EXPECT_NE(GetLanguageString(key), key) << "has a text";
        // Multi-edit shows the key of the cards view, which comes first and gets it.
        if (*def.Shortcut && QString::fromLatin1(def.Name) != "actMultiEdit"_L1) {
            EXPECT_FALSE(shortcuts.contains(QString::fromLatin1(def.Shortcut)));
            shortcuts << QString::fromLatin1(def.Shortcut);
        }
    }
}

TEST(Length, Texts)
{
    const std::pair<double, QString> cases[] = {{0, {}},
                                                {-1, {}},
                                                {59 / 86400.0, u"0:59"_s},
                                                {61 / 86400.0, u"1:01"_s},
                                                {3600 / 86400.0, u"1:00:00"_s},
                                                {1.5, u"36:00:00"_s}};
    for (const auto& [days, text] : cases)
        EXPECT_EQ(LengthText(days), text);
}

} // namespace Kestrune
