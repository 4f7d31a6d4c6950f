// SPDX-License-Identifier: GPL-3.0-or-later
// What the main form does to whole collections and settings, and to single rows.
#include "uFormKit.h"
#include "uSQLite.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImage>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class Upkeep : public Kit::TMainFormTest {
protected:
    Upkeep()
    {
        QObject::connect(&FForm, &TKRNMainForm::barRaised, &FForm,
                         [this](TBarKind kind, const QString& bold, const QString& sentence) {
                             FBars << QString::number(static_cast<int>(kind)) + u' ' + bold + u' ' + sentence;
                         });
    }
    ~Upkeep() override { OpenSettingsStore({}); }

    qint64 Count(const QString& path, const QString& sql)
    {
        TSQLiteConnection other;
        other.Open(path, somReadOnly);
        return other.Scalar(sql).toLongLong();
    }

    QStringList FBars;
};

} // namespace

TEST_F(Upkeep, SaveAsCopiesTheOpenFileAndGoesOnWithTheCopy)
{
    OpenFilled();
    const QString copy = FDir.File(u"copies/ü copy.db"_s);
    FPrompt.FileAnswer = copy;
    FForm.Actions().Trigger(u"actSaveDatabaseAs"_s);
    EXPECT_EQ(FData.CurrentFile(), copy);
    EXPECT_EQ(Shown().size(), 4);
    EXPECT_TRUE(FForm.Lists().Releases().EditField(FData.qReleasesMain.KeyAt(0), u"Label"_s, u"only here"_s));
    EXPECT_EQ(Count(copy, u"SELECT count(*) FROM Releases2 WHERE Label = 'only here'"_s), 1);
    EXPECT_EQ(Count(FPath, u"SELECT count(*) FROM Releases2 WHERE Label = 'only here'"_s), 0);
    EXPECT_EQ(FForm.Files().Recent().front(), copy);

    // The same file under any name does nothing.
    QFile::link(copy, FDir.File(u"link.db"_s));
    for (const QString& same : {copy, FDir.File(u"link.db"_s), FDir.File(u"copies/../copies/ü copy.db"_s)}) {
        const QDateTime before = QFileInfo(copy).lastModified();
        FPrompt.FileAnswer = same;
        FForm.Actions().Trigger(u"actSaveDatabaseAs"_s);
        EXPECT_EQ(FData.CurrentFile(), copy);
        EXPECT_EQ(QFileInfo(copy).lastModified(), before);
    }
    FPrompt.FileAnswer = FDir.File(u"copies/Ü COPY.db"_s); // another file here, where case tells names apart
    FForm.Actions().Trigger(u"actSaveDatabaseAs"_s);
    EXPECT_EQ(FData.CurrentFile(), FPrompt.FileAnswer);
    FPrompt.FileAnswer = copy;
    FForm.Actions().Trigger(u"actSaveDatabaseAs"_s);

    FPrompt.FileAnswer = FDir.File(u"c.db"_s); // an existing file is replaced as a whole
    FForm.Actions().Trigger(u"actSaveDatabaseAs"_s);
    EXPECT_EQ(Count(FPath, u"SELECT count(*) FROM Releases2 WHERE Label = 'only here'"_s), 1);
}

TEST_F(Upkeep, ACopyThatCannotBeWrittenLeavesAllAsItWas)
{
    OpenFilled();
    QStringList failures;
    FForm.Actions().OnFailure = [&](const QString& text) { failures << text; };
    FPrompt.FileAnswer = FDir.Path() + u"/no such folder/x.db"_s;
    FForm.Actions().Trigger(u"actSaveDatabaseAs"_s);
    EXPECT_EQ(failures.size(), 1);
    EXPECT_EQ(FData.CurrentFile(), FPath);
    EXPECT_EQ(Shown().size(), 4);
    EXPECT_TRUE(FForm.Lists().Releases().EditField(FData.qReleasesMain.KeyAt(0), u"Label"_s, u"x"_s));
}

TEST_F(Upkeep, ADuplicateIsAReleaseOfItsOwn)
{
    OpenFilled();
    FForm.Lists().Releases().SetFocused(FData.qReleasesMain.KeyAt(1));
    FForm.Actions().Trigger(u"actDuplicate"_s);
    EXPECT_EQ(Shown(), (QStringList{u"Help"_s, u"Arrival"_s, u"Lexicon"_s, u"100% Zappa"_s, u"Arrival"_s}));
    EXPECT_EQ(FForm.Lists().Active().FocusedRelease(), FData.qReleasesMain.KeyAt(4));
    EXPECT_EQ(FForm.Figures().Status().Total, 5);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Tracks2"_s), 5);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(DISTINCT No) FROM Releases2"_s), 5);
    FForm.Lists().Releases().SetSelection({FForm.Lists().Active().FocusedRelease()});
    FForm.Actions().Trigger(u"actRemoveSelected"_s);
    EXPECT_EQ(Shown().size(), 4);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Tracks2"_s), 4) << "the first one keeps its track";
}

TEST_F(Upkeep, ThumbnailsAreMadeAnewWithoutTouchingTheRelease)
{
    OpenFilled();
    TAlbumRelease withCover;
    withCover.SetItem2(u"ReleaseName"_s, u"Cover"_s);
    withCover.AddPicture(cptFrontLarge).LoadFromBytes(Kit::MakePicture(600, 300, "JPG"));
    FData.AddAlbumReleaseToDB(withCover, true);
    FData.ExecSQL(u"UPDATE Releases2 SET ThumbPicture = x'00', LastModified = '2001-01-01 00:00:00'"_s);
    FData.CommitTransaction();
    FForm.Actions().Trigger(u"actRegenerateThumbnails"_s);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2 WHERE length(ThumbPicture) > 100"_s), 1);
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2 WHERE ThumbPicture = x'00'"_s), 4)
        << "a thumbnail without a large picture is all that there is";
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT count(*) FROM Releases2 WHERE LastModified LIKE '2001%'"_s), 5);
    const QByteArray thumb = FData.qReleasesMain.ReadBlob(4, FData.qReleasesMain.FieldIndex(u"ThumbPicture"_s));
    EXPECT_EQ(QImage::fromData(thumb).size(), QSize(500, 250));
    ASSERT_EQ(FBars.size(), 1);
    EXPECT_TRUE(FBars[0].contains(u'1')) << FBars[0].toStdString();
}

TEST_F(Upkeep, RefreshShowsWhatAnotherProcessWrote)
{
    OpenFilled();
    FForm.SetCurrentView(mvTracks);
    FForm.SetCurrentView(mvThumbs);
    {
        TSQLiteConnection other;
        other.Open(FPath);
        other.Exec(u"UPDATE Releases2 SET ReleaseName = 'From elsewhere' WHERE ReleaseName = 'Help'"_s);
        other.Exec(u"DELETE FROM Releases2 WHERE ReleaseName = 'Arrival'"_s);
    }
    FForm.Actions().Trigger(u"actRefresh"_s);
    EXPECT_EQ(Shown(), (QStringList{u"From elsewhere"_s, u"Lexicon"_s, u"100% Zappa"_s}));
}

TEST_F(Upkeep, ALongJobBlocksActionsAndCancelEndsIt)
{
    OpenFilled();
    QStringList steps;
    QObject::connect(&FForm, &TKRNMainForm::jobProgressed, &FForm, [&](const QString&, int value, int maximum) {
        steps << u"%1/%2"_s.arg(value).arg(maximum);
        if (value == 2)
            FForm.Shell().CancelJob();
    });
    int done = 0;
    FForm.Shell().RunJob(u"work"_s, [&](const TShell::TJobProgress& progress) {
        EXPECT_TRUE(FForm.Shell().Working());
        EXPECT_FALSE(FForm.Actions().IsEnabled(u"actRefresh"_s));
        FForm.Actions().Trigger(u"actDuplicate"_s);
        FForm.Shell().RunJob(u"second"_s, [&](const TShell::TJobProgress&) { ADD_FAILURE() << "one at a time"; });
        while (progress(done, 10))
            ++done;
    });
    EXPECT_EQ(done, 2);
    EXPECT_EQ(steps.back(), u"0/0"_s);
    EXPECT_EQ(Shown().size(), 4) << "no action ran meanwhile";
    EXPECT_TRUE(FForm.Actions().IsEnabled(u"actRefresh"_s));
    try {
        FForm.Shell().RunJob(u"fails"_s, [](const TShell::TJobProgress&) { throw std::runtime_error("x"); });
        FAIL();
    } catch (const std::runtime_error&) {
    }
    EXPECT_FALSE(FForm.Shell().Working());
    EXPECT_TRUE(FForm.Actions().IsEnabled(u"actRefresh"_s));
}

TEST_F(Upkeep, SettingsGoToABackupAndComeBack)
{
    OpenSettingsStore(FDir.File(u"settings.ini"_s));
    OpenFilled();
    Defaults().LargeWidth = 222;
    Defaults().Values.Country = u"Ünited \"K\""_s;
    FForm.Search().FilterStatus(u"In collection"_s);
    FForm.Search().SaveFilter(u"mine"_s);
    FForm.FormClose();
    FPrompt.FileAnswer = FDir.File(u"backup.reg"_s);
    FForm.Actions().Trigger(u"actBackupSettings"_s);
    const QByteArray bytes = Kit::ReadAll(FPrompt.FileAnswer);
    EXPECT_TRUE(bytes.startsWith("\xFF\xFEW")) << "UTF-16 with its mark";

    Defaults().LargeWidth = 100;
    Defaults().Values.Country.clear();
    FForm.Search().ForgetFilter(u"mine"_s);
    FForm.Actions().Trigger(u"actRestoreSettings"_s);
    EXPECT_EQ(Defaults().LargeWidth, 222);
    EXPECT_EQ(Defaults().Values.Country, u"Ünited \"K\""_s);
    EXPECT_EQ(Defaults().DBPath, FPath) << "the open collection stays";
    ASSERT_EQ(FForm.Search().SavedFilters().size(), 1u);

    FPrompt.FileAnswer = FDir.Write(u"other.reg"_s, "no settings");
    FForm.Actions().Trigger(u"actRestoreSettings"_s);
    EXPECT_EQ(Defaults().LargeWidth, 222);
    EXPECT_TRUE(FBars.back().startsWith(u"0 "_s)) << FBars.back().toStdString();
}

TEST_F(Upkeep, EditsAreInTheFileAtOnceAndBadOnesAreToldAndUndone)
{
    OpenFilled();
    const qint64 id = FData.qReleasesMain.KeyAt(0);
    EXPECT_FALSE(FForm.Lists().Releases().EditField(id, u"ReleaseName"_s, u"  "_s));
    EXPECT_FALSE(FForm.Lists().Releases().EditField(id, u"ReleaseName"_s, {}));
    EXPECT_EQ(FBars.size(), 2);
    EXPECT_TRUE(FForm.Lists().Releases().EditField(id, u"ReleaseYear"_s, 1999));
    EXPECT_EQ(Count(FPath, u"SELECT ReleaseYear FROM Releases2 WHERE ID = %1"_s.arg(id)), 1999);
    EXPECT_TRUE(FForm.Lists().Releases().EditField(id, u"ReleaseYear"_s, {}));
    EXPECT_EQ(Count(FPath, u"SELECT count(*) FROM Releases2 WHERE ReleaseYear IS NULL"_s), 1);
    EXPECT_FALSE(FForm.Lists().Releases().EditField(999, u"ReleaseYear"_s, 1)) << "a row that is gone";

    FForm.Lists().Releases().SetFocused(id);
    WaitFor(&TKRNMainForm::detailChanged);
    EXPECT_TRUE(FForm.Pane().Edit(u"Comments"_s, u"line\nline"_s));
    EXPECT_EQ(FForm.Pane().Value(u"Comments"_s), TVariant(u"line\nline"_s));
    EXPECT_FALSE(FForm.Pane().Edit(u"ReleaseName"_s, u""_s));
    EXPECT_EQ(FForm.Pane().Value(u"ReleaseName"_s), TVariant(u"Help"_s));
}

TEST_F(Upkeep, AnEditOfALockedFileIsRefusedAndNothingIsLost)
{
    OpenFilled();
    const qint64 id = FData.qReleasesMain.KeyAt(0);
    {
        TSQLiteConnection other;
        other.Open(FPath);
        other.Exec(u"BEGIN IMMEDIATE"_s);
        EXPECT_FALSE(FForm.Lists().Releases().EditField(id, u"Label"_s, u"x"_s));
        EXPECT_EQ(FBars.size(), 1);
        EXPECT_EQ(FData.qReleasesMain.State(), dsBrowse);
        other.Exec(u"ROLLBACK"_s);
    }
    EXPECT_TRUE(FForm.Lists().Releases().EditField(id, u"Label"_s, u"x"_s));
}

TEST_F(Upkeep, TracksAreEditedAndRemovedInTheirView)
{
    OpenFilled();
    EXPECT_FALSE(FData.qTracksAll.Active()) << "closed until it is used";
    FForm.SetCurrentView(mvTracks);
    ASSERT_EQ(FData.qTracksAll.RecordCount(), 4);
    const qint64 track = FData.qTracksAll.KeyAt(2);
    FForm.Lists().Tracks().SetFocused(track);
    EXPECT_EQ(FForm.Lists().Active().FocusedRelease(), FData.qReleasesMain.KeyAt(2));
    EXPECT_TRUE(FForm.Lists().Tracks().EditField(track, u"TrackTitle"_s, u"Other"_s));
    EXPECT_EQ(Count(FPath, u"SELECT count(*) FROM Tracks2 WHERE TrackTitle = 'Other'"_s), 1);
    FForm.Lists().Tracks().SetSelection({track});
    FForm.Actions().Trigger(u"actRemoveSelected"_s);
    EXPECT_EQ(FData.qTracksAll.RecordCount(), 3);
    EXPECT_EQ(Count(FPath, u"SELECT count(*) FROM Tracks2"_s), 3);
    EXPECT_EQ(Count(FPath, u"SELECT count(*) FROM Releases2"_s), 4);
    FForm.SetCurrentView(mvAlbums);
    EXPECT_EQ(FData.qReleasesMain.ValueAt(2, FData.qReleasesMain.FieldIndex(u"TotalTracksCount"_s)).toInt(), 0);
}

TEST_F(Upkeep, WordsAreFoundInEverythingOnceTheIndexStands)
{
    OpenFilled();
    FForm.Lists().Releases().EditField(FData.qReleasesMain.KeyAt(2), u"Comments"_s, u"Björk sang along"_s);
    FForm.Search().SetSearchBy(EverythingField);
    FForm.Search().SetSearchText(u"bjork SANG"_s);
    FForm.Actions().Trigger(u"actSearch"_s);
    while (FForm.Lists().Active().Filters().Set().Everything.isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(Shown(), QStringList{u"Lexicon"_s});
    FForm.Search().SetSearchText(u""_s);
    FForm.Actions().Trigger(u"actSearch"_s);
    EXPECT_EQ(Shown().size(), 4);
}

} // namespace Kestrune
