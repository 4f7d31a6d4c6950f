// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v1Library.h"
#include "uTagBuilders.h"
#include "uTagTypes.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(ID3v1Tag, ReadsTheFieldsOfBothRevisions)
{
    TID3v1Tag tag;
    TMemorySource newer("sound" + Kit::Id3v1({"T\xEFtle  ", "Artist", "Album", "2004", "A comment", 7, 17}));
    ASSERT_EQ(tag.Load(newer), TagResultOk);
    EXPECT_EQ(tag.Title, u"T\u00EFtle"_s);
    EXPECT_EQ(tag.Artist, u"Artist"_s);
    EXPECT_EQ(tag.Album, u"Album"_s);
    EXPECT_EQ(tag.Year, u"2004"_s);
    EXPECT_EQ(tag.Comment, u"A comment"_s);
    EXPECT_EQ(tag.Track, 7);
    EXPECT_EQ(tag.Genre, u"Rock"_s);
    EXPECT_TRUE(tag.Revision1);

    TMemorySource older(Kit::Id3v1({QByteArray(40, 't'), {}, {}, {}, QByteArray(30, 'c'), 0, 255}));
    ASSERT_EQ(tag.Load(older), TagResultOk);
    EXPECT_EQ(tag.Title, QString(30, u't'));
    EXPECT_EQ(tag.Comment, QString(30, u'c'));
    EXPECT_FALSE(tag.Revision1);
    EXPECT_EQ(tag.Track, 0);
    EXPECT_EQ(tag.Genre, QString());
    EXPECT_EQ(tag.Artist, QString());
}

TEST(ID3v1Tag, UnknownGenresAreOtherOnlyOnDemand)
{
    TID3v1Tag tag;
    tag.TreatUnknownGenresAsOther = true;
    TMemorySource source(Kit::Id3v1({"t", {}, {}, {}, {}, 0, 200}));
    ASSERT_EQ(tag.Load(source), TagResultOk);
    EXPECT_EQ(tag.Genre, u"Other"_s);
}

TEST(ID3v1Tag, FilesWithoutATagGiveNone)
{
    TID3v1Tag tag;
    const QByteArray apeMark = "APETAGEX" + QByteArray(123, 'x');
    for (const QByteArray& bytes :
         {QByteArray(), apeMark, QByteArray("TAG"), QByteArray(128, 'x'), Kit::Id3v1({}).chopped(1)}) {
        TMemorySource source(bytes);
        EXPECT_EQ(tag.Load(source), TagResultNoTag);
        EXPECT_FALSE(tag.Loaded);
    }
    EXPECT_EQ(tag.LoadFromFile(u"/nowhere/at/all.mp3"_s), TagResultNoFile);
}

TEST(ID3v1Tag, ReadsLyrics3OfBothVersions)
{
    const QByteArray v1 = Kit::Id3v1({"t", {}, {}, {}, {}, 0, 0});
    TID3v1Tag tag;
    const QByteArray first = Kit::Lyrics3v1("some words");
    TMemorySource old("sound" + first + v1);
    ASSERT_EQ(tag.Load(old), TagResultOk);
    EXPECT_EQ(tag.GetLyrics(), u"some words"_s);
    EXPECT_EQ(tag.LyricsTagSize(), first.size());

    const QByteArray second = Kit::Lyrics3v2({{"IND", "111"}, {"LYR", "[00:01]words"}, {"EAL", "A longer album"}});
    TMemorySource source("sound" + second + v1);
    ASSERT_EQ(tag.Load(source), TagResultOk);
    EXPECT_EQ(tag.GetLyrics(), u"[00:01]words"_s);
    ASSERT_EQ(tag.LyricsFrames.size(), 3u);
    EXPECT_EQ(tag.LyricsFrames[2].Text, u"A longer album"_s);
    EXPECT_TRUE(tag.LyricsHasTimeStamp);
    EXPECT_TRUE(tag.InhibitTracksForRandomSelection);
    EXPECT_EQ(tag.LyricsTagSize(), second.size());
}

TEST(ID3v1Tag, LyingLyrics3SizesAreIgnored)
{
    const QByteArray v1 = Kit::Id3v1({"t", {}, {}, {}, {}, 0, 0});
    TID3v1Tag tag;
    for (const QByteArray& lyrics :
         {QByteArray("999999LYRICS200"), QByteArray("00-011LYRICS200"), QByteArray("LYRICSEND"),
          QByteArray("LYRICSBEGIN000011LYRICS200"), QByteArray("LYRICSBEGINLYR99999x000020LYRICS200")}) {
        SCOPED_TRACE(lyrics.toStdString());
        TMemorySource source(lyrics + v1);
        EXPECT_EQ(tag.Load(source), TagResultOk);
        EXPECT_EQ(tag.Title, u"t"_s);
    }
    ASSERT_EQ(tag.LyricsFrames.size(), 1u);
    EXPECT_EQ(tag.GetLyrics(), u"x"_s);
}

} // namespace Kestrune
