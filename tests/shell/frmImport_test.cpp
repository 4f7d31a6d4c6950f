// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "frmImport.h"
#include "uDefaults.h"
#include "uFileCatcher.h"
#include "uImport.h"
#include "uImportRun.h"
#include "uObjs.h"
#include "uSQLite.h"
#include "uScriptedPrompt.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

#include <stdexcept>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TFakeOptions final : TImportOptionsOf<TFakeOptions> {
    QString Word;

    static std::span<const TOptionRow<TFakeOptions>> Rows()
    {
        static const TOptionRow<TFakeOptions> rows[] = {{u"word"_s, &TFakeOptions::Word}};
        return rows;
    }
    bool IsComplete(const QString&) const override { return !Word.isEmpty(); }
};

std::unique_ptr<TImportOptions> NewFakeOptions() { return std::make_unique<TFakeOptions>(); }

bool DriverIsNowhere() { return false; }
bool DriverIsThere() { return true; }

// A source of invented releases whose answers and job a test sets.
class TFakeImporter final : public TKRNImporter {
public:
    struct TAnswers {
        int Releases = 3;
        int FailAt = -1;    // position whose release throws
        QString TornFile{}; // is reported as passed over
    };
    static TAnswers& Answers()
    {
        static TAnswers answers;
        return answers;
    }
    struct TSeen {
        QString InputPath, Data, Ids, Word;
        int Started = 0;
    };
    static TSeen& Seen()
    {
        static TSeen seen;
        return seen;
    }

    using TKRNImporter::TKRNImporter;

    static TImporterClass Row()
    {
        return {.ClassName = u"TKRNImporter_Fake"_s,
                .DisplayName = u"Fake"_s,
                .ImporterType = iitString,
                .CanSelectWhichAlbumsToImport = true,
                .NewOptions = NewFakeOptions,
                .NewWorker = MakeImporter<TFakeImporter>};
    }

protected:
    void Import() override
    {
        QStringList ids;
        for (const TVariant& id : IDsArray())
            ids += VarToStr(id);
        Seen() = {InputPath(), Data(), ids.join(u','), Options<TFakeOptions>().Word, Seen().Started + 1};
        const TControlsOff controlsOff(*this);
        int stored = 0;
        if (!Answers().TornFile.isEmpty())
            DoOnItemError(Answers().TornFile, u"Torn."_s);
        for (int i = 0; i < Answers().Releases && !Terminated(); ++i) {
            if (i == Answers().FailAt)
                throw std::runtime_error("page 7 is torn");
            if (JobType() == ijtGetReleasesList) {
                DoOnReleaseFound(i, u"Artist"_s, u"Album %1"_s.arg(i), u"1999"_s, 4);
                DoOnProgress(i, Answers().Releases, true, {});
            } else if (IsWanted(i)) {
                TAlbumRelease release;
                release.SetItem2(u"Artist"_s, u"Artist"_s);
                release.SetItem2(u"ReleaseName"_s, u"Album %1"_s.arg(i));
                StoreRelease(release, true);
                ++stored;
                DoOnProgress(i, Answers().Releases, true, u"Artist - Album %1"_s.arg(i));
            }
        }
        DoOnImportDone(stored, stored * 4);
    }
};

class ImportForm : public testing::Test {
protected:
    ImportForm()
    {
        Defaults() = MakeDefaults();
        TFakeImporter::Answers() = {};
        TFakeImporter::Seen() = {};
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
    }
    void SetUp() override { ASSERT_TRUE(FData.ConnectToDB(FPath)); }

    // Serves events until the condition holds.
    template <typename T>
    void Until(T condition)
    {
        QEventLoop loop;
        QTimer watch;
        QTimer::singleShot(20000, &loop, [&loop] { loop.exit(1); });
        QObject::connect(&watch, &QTimer::timeout, &loop, [&] {
            if (condition())
                loop.exit(0);
        });
        watch.start(0);
        ASSERT_EQ(loop.exec(), 0) << "the condition never held";
    }
    void UntilIdle()
    {
        Until([this] { return !FForm.Importer(); });
    }
    void GoToSource()
    {
        FForm.ChooseClass(0);
        FForm.Next();
        ASSERT_EQ(FForm.Page(), pSelectSource);
    }
    void GoToSelection()
    {
        GoToSource();
        FForm.Source().SetText(u"me"_s);
        FForm.Next();
        ASSERT_EQ(FForm.Page(), pSelectAlbumsToImport);
    }
    qint64 StoredReleases() { return FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2"_s); }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"x.db"_s);
    TDataModuleMain FData{FPrompt};
    std::vector<TImporterClass> FClasses{TFakeImporter::Row(), *FindImporterClass(u"TKRNImporter_MP3s"_s)};
    TImporterClass& FSource = FClasses[0];
    TKRNImportForm FForm{FData, FPrompt, FClasses};
};

} // namespace

TEST_F(ImportForm, PagesFollowTheSource)
{
    EXPECT_FALSE(FForm.NextEnabled()) << "no source is chosen";
    FForm.Next();
    EXPECT_EQ(FForm.Page(), pWelcome);
    FForm.ChooseClass(1);
    EXPECT_EQ(FForm.Pages(), (std::vector{pWelcome, pSelectSource, pProgress, pFinish}));
    FForm.ChooseClass(0);
    EXPECT_EQ(FForm.Pages(), (std::vector{pWelcome, pSelectSource, pSelectAlbumsToImport, pProgress, pFinish}));
    FForm.ChooseClass(7);
    EXPECT_EQ(FForm.ClassIndex(), 0);
}

TEST_F(ImportForm, NextOnTheSourcePage)
{
    const QString file = FDir.Write(u"there.x"_s, "x");
    const QString folder = FDir.Path();
    const QString nowhere = FDir.File(u"nowhere"_s);
    const struct {
        TKRNImporterInputType Type;
        bool Paste; // the class allows it and the user chose it
        QString Text, Memo;
        bool Expected;
    } rows[] = {{iitFile, false, {}, u"m"_s, false},     {iitFile, false, file, {}, true},
                {iitFile, false, folder, {}, false},     {iitFile, false, nowhere, {}, false},
                {iitFile, true, file, {}, false},        {iitFile, true, {}, u"a;b"_s, true},
                {iitFolder, false, folder, {}, true},    {iitFolder, false, file, {}, false},
                {iitFolder, false, nowhere, {}, false},  {iitString, false, {}, {}, false},
                {iitString, false, u"name"_s, {}, true}, {iitLink, false, u"https://x"_s, {}, true},
                {iitMemo, false, u"text"_s, {}, false},  {iitMemo, false, {}, u"text"_s, true}};
    int number = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(number++);
        FSource.ImporterType = row.Type;
        FSource.CanCopyAndPasteData = row.Paste;
        TKRNImportForm form(FData, FPrompt, FClasses);
        form.ChooseClass(0);
        form.Next();
        form.Source().SetPasteMode(row.Paste);
        form.Source().SetText(row.Text);
        form.Source().SetMemo(row.Memo);
        Until([&] { return form.NextEnabled() == row.Expected; });
    }
}

TEST_F(ImportForm, DroppedFilesAreJoinedAndGoOnByThemselves)
{
    FSource.ImporterType = iitFile;
    GoToSource();
    EXPECT_FALSE(FForm.AcceptsDrops());
    FForm.Back();
    FSource.AllowsDragNDrop = true;
    GoToSource();
    FForm.DropFiles(TFileCatcher({u"/a/1.x"_s, u"/b/2.x"_s}));
    EXPECT_EQ(FForm.Page(), pSelectAlbumsToImport);
    UntilIdle();
    EXPECT_EQ(TFakeImporter::Seen().InputPath, u"/a/1.x|/b/2.x"_s);
    FForm.Back();
    EXPECT_TRUE(FForm.NextEnabled()) << "the drop still counts";
    FForm.Source().SetText(u"/a/1.x"_s);
    EXPECT_FALSE(FForm.NextEnabled()) << "what is typed must exist";
}

TEST_F(ImportForm, ListsTicksAndImportsOnlyTheTicked)
{
    TFakeImporter::Answers().Releases = 45;
    GoToSelection();
    EXPECT_FALSE(FForm.NextEnabled() || FForm.BackEnabled()) << "while the listing runs";
    UntilIdle();
    ASSERT_EQ(FForm.Rows().size(), 45U);
    EXPECT_EQ(FForm.NextCaption(), u"Import all 45 albums"_s);
    FForm.TickRows({44, 7, 99, -1, 0}, true);
    FForm.TickRows({0, 99, -1}, false);
    EXPECT_EQ(FForm.TickedCount(), 2);
    FForm.SetTicked(9, true);
    EXPECT_EQ(FForm.NextCaption(), u"Import 3 albums"_s);
    FForm.Next();
    EXPECT_FALSE(FForm.BackEnabled());
    Until([this] { return FForm.Page() == pFinish; });
    EXPECT_EQ(TFakeImporter::Seen().Ids, u"7,9,44"_s) << "in the order of the list";
    EXPECT_EQ(FForm.FinishText(), u"Import complete. 3 albums, 12 tracks imported."_s);
    EXPECT_FALSE(FForm.NextEnabled() || FForm.BackEnabled() || FForm.CancelEnabled());
    EXPECT_EQ(StoredReleases(), 3);
    bool finished = false;
    QObject::connect(&FForm, &TKRNImportForm::closed, &FForm, [&](bool ok) { finished = ok; });
    FForm.Finish();
    EXPECT_TRUE(finished);
}

TEST_F(ImportForm, ASelectionPageThatIsEnteredAnewListsAnew)
{
    GoToSelection();
    UntilIdle();
    FForm.TickRows({0, 1}, true);
    FForm.Back();
    TFakeImporter::Answers().Releases = 0;
    FForm.Next();
    UntilIdle();
    EXPECT_TRUE(FForm.Rows().empty());
    EXPECT_EQ(FForm.TickedCount(), 0);
    EXPECT_FALSE(FForm.NextEnabled()) << "an empty list";
    EXPECT_EQ(FForm.ListingPercent(), 0);
    EXPECT_EQ(TFakeImporter::Seen().Started, 2);
}

TEST_F(ImportForm, WhatIsPassedOverIsToldWhileListingAndWhileImporting)
{
    TFakeImporter::Answers().TornFile = u"a.x"_s;
    QStringList log;
    QObject::connect(&FForm, &TKRNImportForm::logWarning, &FForm, [&](const QString& line) { log += line; });
    QObject::connect(&FForm, &TKRNImportForm::logCleared, &FForm, [&] { log.clear(); });
    GoToSelection();
    UntilIdle();
    EXPECT_EQ(log, QStringList{u"a.x: Torn."_s});
    FForm.Next();
    Until([this] { return FForm.Page() == pFinish; });
    EXPECT_EQ(log, QStringList{u"a.x: Torn."_s}) << "the log begins anew";
}

TEST_F(ImportForm, AFailureStaysOnItsPage)
{
    TFakeImporter::Answers().FailAt = 1;
    GoToSelection();
    UntilIdle();
    EXPECT_EQ(FForm.ListingError(), u"Error: page 7 is torn"_s);
    EXPECT_TRUE(FForm.Rows().empty()) << "what was not yet delivered is not offered";
    FForm.Back();
    FSource.CanSelectWhichAlbumsToImport = false;
    QStringList warnings;
    QObject::connect(&FForm, &TKRNImportForm::logWarning, &FForm, [&](const QString& line) { warnings += line; });
    FForm.Next();
    ASSERT_EQ(FForm.Page(), pProgress);
    UntilIdle();
    EXPECT_EQ(FForm.Page(), pProgress);
    EXPECT_EQ(FForm.ProgressText(), u"Error: page 7 is torn"_s);
    EXPECT_EQ(warnings, QStringList{u"Error: page 7 is torn"_s});
    EXPECT_EQ(FForm.ProgressFigures(), u"1 albums were stored before the error and stay in the collection."_s);
    EXPECT_TRUE(FForm.BackEnabled());
    EXPECT_EQ(StoredReleases(), 1);
    bool closed = false;
    QObject::connect(&FForm, &TKRNImportForm::closed, &FForm, [&](bool finished) { closed = !finished; });
    FForm.Cancel();
    EXPECT_TRUE(closed);
}

TEST_F(ImportForm, CancelEndsTheWorkerAndReachesTheFinishPage)
{
    FSource.CanSelectWhichAlbumsToImport = false;
    TFakeImporter::Answers().Releases = 5000;
    GoToSource();
    FForm.Source().SetText(u"me"_s);
    FPrompt.YesNoAnswer = false;
    int stored = 0;
    QObject::connect(&FForm, &TKRNImportForm::releaseStored, &FForm, [&] {
        if (++stored == 3)
            FForm.Cancel();
        if (stored == 5) {
            FPrompt.YesNoAnswer = true;
            FForm.Cancel();
        }
    });
    FForm.Next();
    Until([this] { return FForm.Page() == pFinish && !FForm.Importer(); });
    EXPECT_EQ(FPrompt.Questions, QStringList(2, u"Are you sure you want to discard changes?"_s));
    EXPECT_EQ(StoredReleases(), 5) << "the release in work is finished, no further one is begun";
    EXPECT_EQ(FForm.FinishText(), u"Import complete. 5 albums, 20 tracks imported."_s);
}

TEST_F(ImportForm, AMissingDriverStopsBeforeAnyWorker)
{
    const TImporterDriver driver{u"Tables"_s, u"https://example.org/driver"_s, DriverIsNowhere};
    FSource.Driver = &driver;
    for (const bool select : {true, false}) {
        FSource.CanSelectWhichAlbumsToImport = select;
        FPrompt.Information.clear();
        TKRNImportForm form(FData, FPrompt, FClasses);
        QString url;
        bool closed = false;
        QObject::connect(&form, &TKRNImportForm::openUrlRequested, &form, [&](const QString& to) { url = to; });
        QObject::connect(&form, &TKRNImportForm::closed, &form, [&](bool finished) { closed = !finished; });
        form.ChooseClass(0);
        form.Next();
        form.Source().SetText(u"x"_s);
        form.Next();
        EXPECT_TRUE(closed);
        EXPECT_EQ(url, driver.URL);
        EXPECT_EQ(FPrompt.Information, QStringList(u"Your operating system is missing a required driver for Tables. "
                                                   "Click OK to open the download page in your browser."_s));
    }
    TImportRun run(FData, {.Class = &FSource, .InputPath = {}, .Data = {}});
    EXPECT_FALSE(run.Start()) << "the command line passes the same check";
    EXPECT_EQ(TFakeImporter::Seen().Started, 0);
    const TImporterDriver there{u"Tables"_s, {}, DriverIsThere};
    FSource.Driver = &there;
    EXPECT_FALSE(FSource.FindMissingDriver());
}

TEST_F(ImportForm, ASourceNamesItsOwnPages)
{
    FSource.ExtraPages = {u"pWord"_s, u"pMore"_s};
    GoToSource();
    EXPECT_EQ(FForm.Pages(), (std::vector{pWelcome, pSelectSource, u"pWord"_s, u"pMore"_s, pSelectAlbumsToImport,
                                          pProgress, pFinish}));
    FForm.Source().SetText(u"me"_s);
    FForm.Next();
    EXPECT_EQ(FForm.Page(), u"pWord"_s);
    EXPECT_FALSE(FForm.NextEnabled()) << "the page lacks something";
    EXPECT_TRUE(FForm.BackEnabled());
    FForm.Options().Set(u"word"_s, u"told"_s);
    FForm.OptionsChanged();
    FForm.Next();
    FForm.Next();
    EXPECT_EQ(FForm.Page(), pSelectAlbumsToImport);
    UntilIdle();
    EXPECT_EQ(TFakeImporter::Seen().Word, u"told"_s) << "a listing hears it";
    FForm.Next();
    Until([this] { return FForm.Page() == pFinish; });
    EXPECT_EQ(TFakeImporter::Seen().Word, u"told"_s) << "and so does the import";
    FForm.ChooseClass(1);
    EXPECT_EQ(FForm.Pages().size(), 4U);
    FForm.ChooseClass(0);
    EXPECT_EQ(FForm.Options().Get(u"word"_s), QString()) << "a source that is chosen anew begins anew";
}

TEST_F(ImportForm, ARunThatGoesEarlyEndsItsWorkerAndTellsNobody)
{
    TFakeImporter::Answers().Releases = 100000;
    int heard = 0;
    auto run = std::make_unique<TImportRun>(FData, TImportJob{.Class = &FSource, .InputPath = {}, .Data = {}});
    QObject::connect(run.get(), &TImportRun::releaseStored, run.get(), [&] { ++heard; });
    ASSERT_TRUE(run->Start());
    Until([&] { return heard > 1; });
    const int before = heard;
    int resets = 0;
    QObject::connect(&FData.qReleasesMain, &TDataset::dataReset, &FForm, [&] { ++resets; });
    run.reset();
    EXPECT_EQ(heard, before);
    EXPECT_LT(StoredReleases(), 1000) << "the worker was told to end";
    EXPECT_EQ(resets, 1) << "and the views go on";
}

TEST_F(ImportForm, PastedTextReachesTheSourceOnlyInPasteMode)
{
    FSource.CanSelectWhichAlbumsToImport = false;
    FSource.CanCopyAndPasteData = true;
    FSource.ImporterType = iitFile;
    const QString file = FDir.Write(u"there.x"_s, "x");
    for (const bool paste : {true, false}) {
        TKRNImportForm form(FData, FPrompt, FClasses);
        form.ChooseClass(0);
        form.Next();
        form.Source().SetText(file);
        form.Source().SetPasteMode(paste);
        form.Source().SetMemo(u"a;b"_s);
        Until([&] { return form.NextEnabled(); });
        form.Next();
        Until([&] { return form.Page() == pFinish && !form.Importer(); });
        EXPECT_EQ(TFakeImporter::Seen().Data, paste ? u"a;b"_s : QString());
    }
}

TEST_F(ImportForm, WizardAndCommandLineGiveTheSameCollection)
{
    const auto flac = [](const QByteArray& title) {
        return "fLaC" + Kit::FlacBlock(0, Kit::FlacStreamInfo(44100, 2, 16, 441000)) +
               Kit::FlacBlock(4, Kit::VorbisComments({"TITLE=" + title, "ARTIST=A", "ALBUM=B"}), true);
    };
    Kit::TTempDir music;
    for (const QString& name : {u"Box/CD1/1.flac"_s, u"Box/CD2/1.flac"_s, u"Single (1999)/01 - x.flac"_s})
        music.Write(name, flac(name.toUtf8()));
    FForm.ChooseClass(1);
    FForm.Next();
    FForm.Source().SetText(music.Path());
    Until([this] { return FForm.NextEnabled(); });
    FForm.Next();
    Until([this] { return FForm.Page() == pFinish && !FForm.Importer(); });
    const auto rowsOf = [](const QString& path) {
        TSQLiteConnection file;
        file.Open(path, somReadOnly);
        QStringList rows;
        for (const QString& sql : {u"SELECT * FROM Releases2 ORDER BY ID"_s, u"SELECT * FROM Tracks2 ORDER BY ID"_s}) {
            TSQLiteStatement statement = file.Prepare(sql);
            while (statement.Step())
                for (int i = 0; i < statement.ColumnCount(); ++i)
                    if (!statement.ColumnName(i).contains("Modified"_L1) &&
                        !statement.ColumnName(i).contains("Added"_L1))
                        rows += VarToStr(statement.Column(i));
        }
        return rows;
    };
    const QString other = FDir.File(u"other.db"_s);
    TDataModuleMain data(FPrompt);
    data.CreateNewDB(other, data.GetNewDatabaseSQL());
    ASSERT_TRUE(data.ConnectToDB(other));
    TImportRun run(data, AddFilesJob({music.Path()}));
    bool finished = false;
    QObject::connect(&run, &TImportRun::finished, &run, [&] { finished = true; });
    run.Start();
    Until([&] { return finished; });
    EXPECT_EQ(StoredReleases(), 2);
    EXPECT_EQ(rowsOf(FPath), rowsOf(other));
}

} // namespace Kestrune
