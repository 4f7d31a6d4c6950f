// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uDefaults.h"
#include "uSchema.h"
#include "uScriptedPrompt.h"
#include "uTestFiles.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class Collection : public testing::Test {
protected:
    Collection()
    {
        Defaults() = MakeDefaults();
        FData.CreateNewDB(FPath, FData.GetNewDatabaseSQL());
        FOpen = FData.ConnectToDB(FPath);
    }
    void SetUp() override { ASSERT_TRUE(FOpen); }

    TAlbumRelease Simple(const QString& artist, const QString& name)
    {
        TAlbumRelease release;
        release.SetItem2(u"Artist"_s, artist);
        release.SetItem2(u"ReleaseName"_s, name);
        return release;
    }
    qint64 Add(const TAlbumRelease& release, bool assignNewNo = true)
    {
        FData.AddAlbumReleaseToDB(release, assignNewNo);
        return FData.LastAddedReleaseID();
    }
    TVariant Scalar(const QString& sql)
    {
        TSQLiteConnection other;
        other.Open(FPath, somReadOnly);
        return other.Scalar(sql);
    }
    TVariant Column(qint64 id, const QString& column)
    {
        return Scalar(u"SELECT %1 FROM Releases2 WHERE ID = %2"_s.arg(column).arg(id));
    }
    QStringList Names()
    {
        QStringList names;
        const int field = FData.qReleasesMain.FieldIndex(u"ReleaseName"_s);
        for (int row = 0; row < FData.qReleasesMain.RecordCount(); ++row)
            names << FData.qReleasesMain.ValueAt(row, field).toString();
        return names;
    }

    Kit::TTempDir FDir;
    Kit::TScriptedPrompt FPrompt;
    QString FPath = FDir.File(u"x.db"_s);
    TDataModuleMain FData{FPrompt};
    bool FOpen = false;
};

} // namespace

TEST_F(Collection, AReleaseGetsTheDefaultsOfTheSettings)
{
    const qint64 id = Add(Simple(u"A"_s, u"B"_s));
    const std::pair<QString, TVariant> cases[] = {{u"Rating"_s, 5},
                                                  {u"Quantity"_s, 1},
                                                  {u"Condition"_s, u"As New"_s},
                                                  {u"ConditionMedia"_s, u"As New"_s},
                                                  {u"Channels"_s, u"Stereo"_s},
                                                  {u"Spars"_s, u"DDD"_s},
                                                  {u"Currency"_s, u"$"_s},
                                                  {u"Status"_s, u"In collection"_s},
                                                  {u"IsLive"_s, 0},
                                                  {u"CountryCode"_s, {}},
                                                  {u"Genre"_s, {}},
                                                  {u"No"_s, 1}};
    for (const auto& [column, expected] : cases)
        EXPECT_TRUE(VarEquals(Column(id, column), expected)) << column.toStdString();
    EXPECT_EQ(Column(id, u"typeof(DateAdded)"_s).toString(), u"text"_s);
    EXPECT_EQ(Column(id, u"length(LastModified)"_s).toInt(), 19);
}

TEST_F(Collection, ValuesOfTheReleaseWinOverDefaults)
{
    TAlbumRelease release = Simple(u"A"_s, u"B"_s);
    Defaults().Values.Country = u"DE"_s;
    release.SetItem2(u"CountryCode"_s, TVariant()); // what a source leaves out is the user's to fill
    Defaults().Values.Genre = u"Jazz"_s;
    release.SetItem2(u"Genre"_s, QString());
    release.SetItem2(u"rating_calc"_s, 4.5);
    release.SetItem2(u"Rating"_s, 1);
    release.SetItem2(u"CatalogNo"_s, u"CAT 1"_s);
    release.SetItem2(u"Quantity"_s, u"0"_s);
    release.SetItem2(u"ReleaseDate"_s, u"1987"_s);
    release.SetItem2(u"ReleaseYear"_s, u"nonsense"_s);
    release.SetItem2(u"DatePurchased"_s, QDate(2020, 2, 3));
    release.SetItem2(u"IsLive"_s, true);
    release.SetItem2(u"Price"_s, u"12.5"_s);
    release.SetItem2(u"DateAdded"_s, u"2001-02-03 04:05:06"_s);
    release.SetItem2(u"no such column"_s, 1);
    const qint64 id = Add(release);
    const std::pair<QString, TVariant> cases[] = {{u"CountryCode"_s, u"DE"_s},
                                                  {u"Genre"_s, {}},
                                                  {u"Rating"_s, 9},
                                                  {u"CatalogNO"_s, u"CAT 1"_s},
                                                  {u"Quantity"_s, 0},
                                                  {u"ReleaseDate"_s, u"1987-01-01"_s},
                                                  {u"ReleaseYear"_s, {}},
                                                  {u"DatePurchased"_s, u"2020-02-03"_s},
                                                  {u"IsLive"_s, 1},
                                                  {u"Price"_s, 12.5},
                                                  {u"DateAdded"_s, u"2001-02-03 04:05:06"_s}};
    for (const auto& [column, expected] : cases)
        EXPECT_TRUE(VarEquals(Column(id, column), expected))
            << column.toStdString() << " " << VarToStr(Column(id, column)).toStdString();
}

TEST_F(Collection, AReleaseWithoutANameKeepsTheTextThatAsksForOne)
{
    for (const TVariant& name : {TVariant(), TVariant(QString())}) {
        TAlbumRelease release;
        release.SetItem2(u"ReleaseName"_s, name);
        EXPECT_EQ(Column(Add(release), u"ReleaseName"_s).toString(), u"Release name"_s);
    }
}

TEST_F(Collection, NumbersAreKeptOrAssigned)
{
    TAlbumRelease release = Simple(u"A"_s, u"B"_s);
    release.SetItem2(u"No"_s, 70);
    EXPECT_EQ(Column(Add(release, false), u"\"No\""_s).toInt(), 70);
    EXPECT_EQ(Column(Add(release, true), u"\"No\""_s).toInt(), 71);
    EXPECT_EQ(Column(Add(Simple(u"A"_s, u"C"_s), false), u"\"No\""_s).toInt(), 72);
}

TEST_F(Collection, TracksAndCreditsFollowTheirRelease)
{
    Add(Simple(u"Earlier"_s, u"Release"_s));
    TAlbumRelease release = Simple(u"Band"_s, u"Album"_s);
    release.SetItem2(u"Genre"_s, u"Jazz"_s);
    TAlbumTrack first;
    first.TrackNo = 1;
    first.TrackName = u"One"_s;
    first.DurationSec = 90;
    first.Rating = 7;
    first.Credits = {{u"Drummer"_s, u"Drums"_s}, {u"Singer"_s, u"Vocals"_s}};
    TAlbumTrack second;
    second.TrackArtist = u"Guest"_s;
    second.TrackGenre = u"Pop"_s;
    second.DurationSec = 10;
    second.DurationFrac = 0.5;
    second.BPM = 120;
    second.Bitrate = 320;
    second.Lyrics = u"La"_s;
    second.IsLive = true;
    release.Tracks = {first, second};
    release.Credits = {{u"Producer"_s, u"Producer"_s}};
    const qint64 id = Add(release);
    const auto track = [&](const QString& column, int index) {
        return Scalar(
            u"SELECT %1 FROM Tracks2 WHERE ReleaseId = %2 ORDER BY ID LIMIT 1 OFFSET %3"_s.arg(column).arg(id).arg(
                index));
    };
    const std::tuple<QString, TVariant, TVariant> cases[] = {{u"Artist"_s, u"Band"_s, u"Guest"_s},
                                                             {u"TrackLength"_s, 90 / 86400.0, 0.5},
                                                             {u"Rating"_s, 7, 0},
                                                             {u"Genre"_s, u"Jazz"_s, u"Pop"_s},
                                                             {u"BPM"_s, {}, 120},
                                                             {u"Bitrate"_s, {}, 320},
                                                             {u"Lyrics"_s, {}, u"La"_s},
                                                             {u"IsLive"_s, 0, 1},
                                                             {u"DiscNo"_s, 0, 0}};
    for (const auto& [column, one, two] : cases) {
        EXPECT_TRUE(VarEquals(track(column, 0), one)) << column.toStdString();
        EXPECT_TRUE(VarEquals(track(column, 1), two)) << column.toStdString();
    }
    EXPECT_EQ(
        Scalar(u"SELECT count(*) FROM Musicians2 WHERE TrackId IN (SELECT ID FROM Tracks2 WHERE TrackTitle='One')"_s)
            .toInt(),
        2);
    EXPECT_EQ(Scalar(u"SELECT count(*) FROM Musicians2 WHERE ReleaseId = %1 AND TrackId IS NULL"_s.arg(id)).toInt(), 1);
    FData.SelectRelease(id);
    EXPECT_EQ(FData.qTracksDetail.RecordCount(), 2);
}

TEST_F(Collection, PicturesAreStoredAsReceivedWithAThumbnailOfTheirOwn)
{
    const QByteArray front = Kit::MakePicture(600, 300, "JPG", 1);
    const QByteArray other = Kit::MakePicture(20, 20, "PNG", 2);
    TAlbumRelease release = Simple(u"A"_s, u"B"_s);
    release.AddPicture(cptFrontLarge).LoadFromBytes(front);
    release.AddPicture(cptFrontThumb).LoadFromBytes(Kit::MakePicture(10, 10, "PNG", 3));
    release.AddPicture(cptBackThumb).LoadFromBytes(other);
    release.AddPicture(cptOther).LoadFromBytes(other);
    release.AddPicture(cptOther).SetURL(u"http://not.fetched/"_s);
    release.AddPicture(cptOther).LoadFromBytes(Kit::MakePicture(1, 1, "PNG"));
    const qint64 id = Add(release);
    EXPECT_TRUE(Column(id, u"LargePicture"_s).toByteArray() == front);
    const QImage thumb = QImage::fromData(Column(id, u"ThumbPicture"_s).toByteArray());
    EXPECT_EQ(thumb.size(), QSize(500, 250));
    EXPECT_TRUE(Column(id, u"ThumbPictureBack"_s).toByteArray() == other);
    EXPECT_EQ(Scalar(u"SELECT count(*) FROM OtherPictures2"_s).toInt(), 1);

    TAlbumRelease noLarge = Simple(u"A"_s, u"C"_s);
    noLarge.AddPicture(cptFrontThumb).LoadFromBytes(other);
    EXPECT_TRUE(Column(Add(noLarge), u"ThumbPicture"_s).toByteArray() == other) << "a thumbnail alone stays";
}

TEST_F(Collection, AThumbnailMadeBeforehandIsTheOneThatWouldBeMade)
{
    const QByteArray front = Kit::MakePicture(400, 400, "JPG", 1);
    TAlbumRelease one = Simple(u"A"_s, u"B"_s);
    one.AddPicture(cptFrontLarge).LoadFromBytes(front);
    TAlbumRelease two = Simple(u"A"_s, u"C"_s);
    two.AddPicture(cptFrontLarge).LoadFromBytes(front);
    two.GetPicByType(cptFrontLarge)->PrepareThumbnail(Defaults().LargeHeight);
    EXPECT_TRUE(Column(Add(one), u"ThumbPicture"_s).toByteArray() == Column(Add(two), u"ThumbPicture"_s).toByteArray());
}

TEST_F(Collection, ClearingTheLargePictureClearsItsThumbnail)
{
    TAlbumRelease release = Simple(u"A"_s, u"B"_s);
    release.AddPicture(cptFrontLarge).LoadFromBytes(Kit::MakePicture(50, 50, "PNG"));
    const qint64 id = Add(release);
    FData.SelectRelease(id);
    FData.qReleaseInfo.SetValue(u"LargePicture"_s, TVariant());
    FData.qReleaseInfo.Post();
    EXPECT_TRUE(VarIsNull(Column(id, u"LargePicture"_s)));
    EXPECT_TRUE(VarIsNull(Column(id, u"ThumbPicture"_s)));
}

TEST_F(Collection, StoringWhatWasReadCopiesTheRelease)
{
    TAlbumRelease release = Simple(u"Björk"_s, u"Ok"_s);
    release.SetItem2(u"ReleaseDate"_s, u"1995-06-13"_s);
    release.SetItem2(u"Custom3"_s, u"007"_s);
    release.SetItem2(u"Rating_Calc"_s, 3.5);
    release.AddPicture(cptFrontLarge).LoadFromBytes(Kit::MakePicture(30, 30, "PNG"));
    release.AddPicture(cptOther).LoadFromBytes(Kit::MakePicture(31, 30, "PNG"));
    TAlbumTrack track;
    track.TrackName = u"T"_s;
    track.DurationSec = 61;
    track.IsCover = true;
    track.IsHidden = true;
    track.Rating = 4;
    track.Credits = {{u"M"_s, u"I"_s}};
    release.Tracks = {track};
    release.Credits = {{u"P"_s, u"Q"_s}};
    const qint64 first = Add(release);
    FData.SelectRelease(first);
    const qint64 second = Add(FData.CurrentReleaseToAlbumRelease());
    ASSERT_NE(first, second);
    const QString same = u"SELECT count(*) FROM Releases2 a JOIN Releases2 b ON a.ID = %1 AND b.ID = %2 WHERE "
                         "a.Artist IS b.Artist AND a.ReleaseDate IS b.ReleaseDate AND a.Custom3 IS b.Custom3 AND "
                         "a.Rating IS b.Rating AND a.LargePicture IS b.LargePicture AND a.DateAdded IS b.DateAdded"_s;
    EXPECT_EQ(Scalar(same.arg(first).arg(second)).toInt(), 1);
    FData.SelectRelease(second);
    const TAlbumRelease copy = FData.CurrentReleaseToAlbumRelease();
    ASSERT_EQ(copy.Tracks.size(), 1u);
    EXPECT_EQ(copy.Tracks[0].DurationSec, 61);
    EXPECT_TRUE(copy.Tracks[0].IsCover);
    EXPECT_FALSE(copy.Tracks[0].IsHidden);
    EXPECT_EQ(copy.Tracks[0].Rating, 0);
    EXPECT_EQ(copy.Tracks[0].Credits, (std::vector<TAlbumCredit>{{u"M"_s, u"I"_s}}));
    EXPECT_EQ(copy.Credits, release.Credits);
    EXPECT_EQ(copy.Pictures.size(), 3u);
    EXPECT_EQ(Column(second, u"Custom3"_s).toInt(), 7) << "custom columns have numeric affinity";
}

TEST_F(Collection, AFailedStoreLeavesNothingBehind)
{
    Add(Simple(u"A"_s, u"B"_s));
    FData.ExecSQL(
        u"CREATE TRIGGER bad BEFORE INSERT ON Tracks2 WHEN NEW.TrackTitle = 'bad' BEGIN SELECT RAISE(ABORT, 'no'); END"_s);
    TAlbumRelease release = Simple(u"A"_s, u"C"_s);
    TAlbumTrack track;
    track.TrackName = u"bad"_s;
    release.Tracks = {TAlbumTrack(), track};
    EXPECT_THROW(FData.AddAlbumReleaseToDB(release, true), EDatabaseError);
    EXPECT_FALSE(FData.AddingReleases());
    EXPECT_EQ(FData.qReleasesMain.RecordCount(), 1);
    EXPECT_EQ(Scalar(u"SELECT (SELECT count(*) FROM Releases2) + (SELECT count(*) FROM Tracks2)"_s).toInt(), 1);
    EXPECT_EQ(FData.qReleasesMain.State(), dsBrowse);
    Add(Simple(u"A"_s, u"D"_s));
    EXPECT_EQ(Names(), QStringList({u"B"_s, u"D"_s}));
}

TEST_F(Collection, SearchAndSortIgnoreCaseInAllScripts)
{
    for (const auto& name : {u"Ärger"_s, u"zebra"_s, u"ЖУК"_s, u"Apple"_s, u"ärmel"_s, u"éclair"_s})
        Add(Simple(u"The "_s + name, name));
    const auto found = [&](const QString& pattern) {
        FData.qReleasesMain.Filter().Clear();
        FData.qReleasesMain.Filter().Add({u"ReleaseName"_s, foLike, pattern, {}});
        FData.qReleasesMain.SetFilterActive(true);
        FData.qReleasesMain.ApplyFilter();
        return Names();
    };
    EXPECT_EQ(found(u"ÄR%"_s), QStringList({u"Ärger"_s, u"ärmel"_s}));
    EXPECT_EQ(found(u"%жу%"_s), QStringList({u"ЖУК"_s}));
    EXPECT_EQ(found(u"a____"_s), QStringList({u"Apple"_s}));
    EXPECT_EQ(found(u"%%"_s).size(), 6);
    FData.qReleasesMain.SetFilterActive(false);
    FData.qReleasesMain.SetSort({{u"ReleaseName"_s, false}});
    const QStringList sorted{u"Apple"_s, u"Ärger"_s, u"ärmel"_s, u"éclair"_s, u"zebra"_s, u"ЖУК"_s};
    EXPECT_EQ(Names(), sorted);
    FData.qReleasesMain.SetSort({{u"artist"_s, false}});
    EXPECT_EQ(Names(), sorted) << "artists sort without their article";
}

TEST_F(Collection, FirstLettersAreThoseOfTheStoredNames)
{
    EXPECT_TRUE(FData.Queries().FirstLetters(u"Artist"_s).isEmpty());
    for (const QString& artist : {u"abba"_s, u"Abc"_s, u"Zappa"_s, u"émilie"_s, u"\U0001F3B8 band"_s, u"10cc"_s})
        Add(Simple(artist, u"Home"_s));
    Add(Simple({}, u"\uFF21 wide"_s)); // no artist, and a letter behind the surrogates
    EXPECT_EQ(FData.Queries().FirstLetters(u"Artist"_s),
              (QSet<QString>{u"A"_s, u"Z"_s, u"É"_s, u"1"_s, u"\U0001F3B8"_s}));
    EXPECT_EQ(FData.Queries().FirstLetters(u"ReleaseName"_s), (QSet<QString>{u"H"_s, u"\uFF21"_s}));
    FData.Disconnect();
    EXPECT_TRUE(FData.Queries().FirstLetters(u"Artist"_s).isEmpty());
}

TEST_F(Collection, CriteriaOfOneRootMustAllHold)
{
    for (int i = 0; i < 6; ++i) {
        TAlbumRelease release = Simple(i % 2 ? u"Odd"_s : u"Even"_s, QString::number(i));
        release.SetItem2(u"ReleaseYear"_s, 2000 + i);
        release.SetItem2(u"Status"_s, i < 3 ? u"Wanted item"_s : u"For sale"_s);
        Add(release);
    }
    TListDataset& list = FData.qReleasesMain;
    list.SetFilterActive(true);
    const auto status = list.Filter().Add({u"Status"_s, foEquals, u"wanted ITEM"_s, {}});
    list.Filter().Add({u"Artist"_s, foLike, u"e%"_s, {}});
    list.ApplyFilter();
    EXPECT_EQ(Names(), QStringList({u"0"_s, u"2"_s}));
    EXPECT_TRUE(list.Filter().Remove(status));
    EXPECT_FALSE(list.Filter().Remove(status));
    TFilterGroup& any = list.Filter().AddGroup(flAny);
    any.Add({u"ReleaseYear"_s, foGreaterOrEqual, 2004, {}});
    any.Add({u"ReleaseYear"_s, foIsNull, {}, {}});
    any.Add({u"gone column"_s, foEquals, 1, {}});
    list.ApplyFilter();
    EXPECT_EQ(Names(), QStringList({u"4"_s}));
    list.Filter().AddGroup(flAll, true).Add({u"ReleaseYear"_s, foEquals, 2004, {}});
    list.ApplyFilter();
    EXPECT_TRUE(Names().isEmpty());
}

TEST_F(Collection, TheCurrentReleaseStaysUnderFilterAndSort)
{
    for (const auto& name : {u"c"_s, u"a"_s, u"b"_s})
        Add(Simple(u"X"_s, name));
    TListDataset& list = FData.qReleasesMain;
    list.MoveTo(2);
    list.SetSort({{u"ReleaseName"_s, true}});
    EXPECT_EQ(list.Value(u"ReleaseName"_s).toString(), u"b"_s);
    EXPECT_EQ(list.RecNo(), 1);
    EXPECT_EQ(FData.qTracksDetail.Master(), &list);
}

TEST_F(Collection, RatingsStayWithinTheirBounds)
{
    const qint64 id = Add(Simple(u"A"_s, u"B"_s));
    const std::pair<TVariant, int> cases[] = {{-1.0, 0}, {0.0, 0}, {2.25, 4}, {5.0, 10}, {7.5, 10}, {1e300, 10}};
    for (const auto& [stars, stored] : cases) {
        FData.qReleasesMain.Locate(id);
        FData.qReleasesMain.SetValue(u"Rating_Calc"_s, stars);
        FData.qReleasesMain.Post();
        EXPECT_EQ(Column(id, u"Rating"_s).toInt(), stored) << stars.toDouble();
    }
}

TEST_F(Collection, NewRowsSayInLocalTimeWhenTheyWereAdded)
{
    TAlbumRelease release = Simple(u"A"_s, u"B"_s);
    release.Tracks.resize(1);
    const qint64 id = Add(release);
    EXPECT_EQ(Column(id, u"DateAdded"_s), Column(id, u"LastModified"_s));
    EXPECT_EQ(Scalar(u"SELECT DateAdded IS LastModified FROM Tracks2"_s).toInt(), 1);
}

TEST_F(Collection, ACopyCarriesPicturesThatNobodyHereCanDecode)
{
    const QByteArray strange = "a format of the year 2050";
    const qint64 id = Add(Simple(u"A"_s, u"B"_s));
    FData.ExecSQL(
        u"UPDATE Releases2 SET LargePictureBack = x'%1', ThumbPicture = x'%1' WHERE ID = %2;"
        "INSERT INTO OtherPictures2(ReleaseId, Picture) VALUES (%2, x'%1')"_s.arg(QString::fromLatin1(strange.toHex()))
            .arg(id));
    const qint64 copy = Add(TDataModuleMain::ToAlbumRelease(FData.ReadRelease(id)));
    EXPECT_EQ(Column(copy, u"LargePictureBack"_s).toByteArray(), strange);
    EXPECT_EQ(Column(copy, u"ThumbPicture"_s).toByteArray(), strange);
    EXPECT_EQ(Scalar(u"SELECT Picture FROM OtherPictures2 WHERE ReleaseId = %1"_s.arg(copy)).toByteArray(), strange);
}

TEST_F(Collection, PostWritesRatingBothWaysAndTheTime)
{
    const qint64 id = Add(Simple(u"A"_s, u"B"_s));
    FData.ExecSQL(u"UPDATE Releases2 SET LastModified = '2000-01-01 00:00:00'"_s);
    FData.qReleasesMain.Locate(id);
    FData.qReleasesMain.SetValue(u"Rating_Calc"_s, 3.5);
    EXPECT_EQ(FData.qReleasesMain.Value(u"Rating"_s).toInt(), 7);
    FData.qReleasesMain.SetValue(u"ReleaseYear"_s, 0);
    FData.qReleasesMain.Post();
    EXPECT_EQ(Column(id, u"Rating"_s).toInt(), 7);
    EXPECT_TRUE(VarIsNull(Column(id, u"ReleaseYear"_s)));
    EXPECT_GT(Column(id, u"LastModified"_s).toString(), u"2020"_s);
}

TEST_F(Collection, DeletingAReleaseTakesItsChildren)
{
    TAlbumRelease release = Simple(u"A"_s, u"B"_s);
    TAlbumTrack track;
    track.Credits = {{u"M"_s, u"I"_s}};
    release.Tracks = {track};
    release.Credits = {{u"M"_s, u"I"_s}};
    release.AddPicture(cptOther).LoadFromBytes(Kit::MakePicture(5, 5, "PNG"));
    const qint64 id = Add(release);
    const qint64 kept = Add(Simple(u"A"_s, u"C"_s));
    FData.ExecSQL(
        u"INSERT INTO Friends2 (ID, Name) VALUES (1, 'F'); INSERT INTO Loans2 (FriendID, ReleaseId) VALUES (1, %1)"_s
            .arg(id));
    FData.qReleasesMain.DeleteKeys({id});
    for (const auto& table : {u"Tracks2"_s, u"Musicians2"_s, u"OtherPictures2"_s, u"Loans2"_s})
        EXPECT_EQ(Scalar(u"SELECT count(*) FROM "_s + table).toInt(), 0) << table.toStdString();
    EXPECT_EQ(FData.qReleasesMain.Keys(), std::vector<qint64>{kept});
    EXPECT_EQ(FData.ExecSQLAndGetID(u"SELECT max(ID) FROM Tracks2"_s), -1);
}

TEST_F(Collection, AllTracksShowTheirRelease)
{
    TAlbumRelease release = Simple(u"Band"_s, u"Album"_s);
    TAlbumTrack track;
    track.TrackName = u"Song"_s;
    track.TrackArtist = u"Guest"_s;
    release.Tracks = {track};
    Add(release);
    FData.qTracksAll.Open();
    EXPECT_EQ(FData.qTracksAll.Value(u"ReleaseArtist"_s).toString(), u"Band"_s);
    EXPECT_EQ(FData.qTracksAll.Value(u"Artist"_s).toString(), u"Guest"_s);
    FData.qTracksAll.SetValue(u"Rating_Calc"_s, 3.5);
    FData.qTracksAll.Post();
    EXPECT_EQ(Scalar(u"SELECT Rating FROM Tracks2"_s).toInt(), 7);
    EXPECT_EQ(Scalar(u"SELECT Artist FROM Releases2"_s).toString(), u"Band"_s);
}

TEST_F(Collection, NewFilesCarryTheirMarks)
{
    EXPECT_EQ(Scalar(u"PRAGMA auto_vacuum"_s).toInt(), 2);
    EXPECT_EQ(Scalar(u"PRAGMA application_id"_s).toInt(), CollectionApplicationId);
    EXPECT_EQ(Scalar(u"PRAGMA journal_mode"_s).toString(), u"wal"_s);
    EXPECT_EQ(
        Scalar(
            u"SELECT count(*) FROM sqlite_master WHERE type='index' AND name IN ('idx_releases_no', 'idx_musicians_trackid')"_s)
            .toInt(),
        2);
}

TEST_F(Collection, AnEditThatFailsStaysOpen)
{
    const qint64 id = Add(Simple(u"A"_s, u"B"_s));
    FData.qReleasesMain.Locate(id);
    FData.qReleasesMain.SetValue(u"ReleaseName"_s, TVariant());
    EXPECT_THROW(FData.qReleasesMain.Post(), EDatabaseError);
    EXPECT_EQ(FData.qReleasesMain.State(), dsEdit);
    FData.qReleasesMain.SetValue(u"ReleaseName"_s, u"Mended"_s);
    FData.qReleasesMain.Post();
    EXPECT_EQ(Column(id, u"ReleaseName"_s).toString(), u"Mended"_s);
}

TEST_F(Collection, ListsReadRowsInBlocksAndFreshOnesAfterAChange)
{
    FData.DisableControlsAll();
    for (int i = 0; i < 150; ++i)
        Add(Simple(u"A"_s, QString::number(i)));
    FData.EnableControlsAll();
    const int name = FData.qReleasesMain.FieldIndex(u"ReleaseName"_s);
    for (int row = 0; row < 150; ++row)
        ASSERT_EQ(FData.qReleasesMain.ValueAt(row, name).toString(), QString::number(row));
    FData.ExecSQL(u"UPDATE Releases2 SET ReleaseName = 'changed' WHERE ID = 100"_s);
    EXPECT_EQ(FData.qReleasesMain.ValueAt(99, name).toString(), u"changed"_s) << "what was written here is known";
    {
        TSQLiteConnection other;
        other.Open(FPath);
        other.Exec(u"UPDATE Releases2 SET ReleaseName = 'elsewhere' WHERE ID = 100"_s);
    }
    FData.qReleasesMain.InvalidateRow(100);
    EXPECT_EQ(FData.qReleasesMain.ValueAt(99, name).toString(), u"elsewhere"_s);
    EXPECT_TRUE(VarIsNull(FData.qReleasesMain.ValueAt(150, name)));
    EXPECT_TRUE(VarIsNull(FData.qReleasesMain.ValueAt(-1, name)));
}

} // namespace Kestrune
