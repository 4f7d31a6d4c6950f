// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFolderNames.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(FolderNames, DiscFoldersAreTold)
{
    const struct {
        const char* Name;
        int Disc;
        const char* Before = "";
        bool IsBare = false;
    } rows[] = {{"CD1", 1, "", true},
                {"cd 02", 2, "", true},
                {"Disc 2", 2, "", true},
                {"disk-3", 3, "", true},
                {"Media_3", 3, "", true},
                {"[CD . - _ 4]", 4, "", true},
                {"CD1 - Live", 1},
                {" Album (CD 2) ", 2, "ALBUM"},
                {"Best of, Disc 12 of 13", 12, "BEST OF,"},
                {"Solo - Best CD1", 1, "SOLO - BEST"},
                {"CD Disc 5", 5, "CD"},
                {"CD0 CD7", 7, "CD0"},
                {"ABCD 2", 0},
                {"2CD1", 0},
                {"ABCD 2 CD3", 3, "ABCD 2"},
                {"CD", 0},
                {"CD0", 0},
                {"CD 99999999999", 0},
                {"Disc One", 0},
                {"Bonus", 0},
                {"", 0}};
    for (const auto& row : rows) {
        const TDiscFolderName disc = ParseDiscFolderName(QString::fromUtf8(row.Name));
        EXPECT_EQ(disc.Number, row.Disc) << row.Name;
        EXPECT_EQ(disc.Before, QString::fromUtf8(row.Before)) << row.Name;
        EXPECT_EQ(disc.IsBare, row.IsBare) << row.Name;
    }
}

TEST(FolderNames, AlbumFoldersAreRead)
{
    const struct {
        const char *Name, *Artist, *Album;
        int Year;
    } rows[] = {{"Artist - Album (1999)", "Artist", "Album", 1999},
                {"Album [2150]", "", "Album [2150]", 0},
                {"Album [1899]", "", "Album [1899]", 0},
                {"Album [2100]", "", "Album", 2100},
                {"Album [1900)", "", "Album", 1900},
                {"(1999)", "", "", 1999},
                {"[1987] Artist - Album", "Artist", "Album", 1987},
                {"Artist - (1987) Album", "Artist", "Album", 1987},
                {"Artist (1987) Album", "", "Artist Album", 1987},
                {"Album (1999) [2150]", "", "Album [2150]", 1999},
                {"Album (2150) (1999) live", "", "Album (2150) live", 1999},
                {"Album (19999)", "", "Album (19999)", 0},
                {"Album 1999", "", "Album 1999", 0},
                {"A - B - C", "A", "B - C", 0},
                {"A-B", "", "A-B", 0},
                {" - B", "", "- B", 0},
                {"  A  -  B  ", "A", "B", 0},
                {"", "", "", 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const TAlbumName name = ParseAlbumFolderName(QString::fromUtf8(row.Name));
        EXPECT_EQ(name.Artist, QString::fromUtf8(row.Artist));
        EXPECT_EQ(name.Album, QString::fromUtf8(row.Album));
        EXPECT_EQ(name.Year, row.Year);
    }
}

TEST(FolderNames, TrackFilesAreRead)
{
    const struct {
        const char* Path;
        int No;
        const char* Title;
    } rows[] = {{"/m/01 - Title.mp3", 1, "Title"},
                {"/m/1000 Miles.mp3", 0, "1000 Miles"},
                {"/m/999 Miles.mp3", 999, "Miles"},
                {"/m/00 Intro.mp3", 0, "00 Intro"},
                {"/m/07.mp3", 0, "07"},
                {"/m/07 - .mp3", 7, ""},
                {"/m/12._-Title (Remix).flac", 12, "Title (Remix)"},
                {"/m/3rd Stone.mp3", 3, "rd Stone"},
                {"/m/Title.with.points.ogg", 0, "Title.with.points"},
                {"/m/99999999999 Red Balloons.mp3", 0, "99999999999 Red Balloons"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Path);
        const TTrackName name = ParseTrackFileName(QString::fromUtf8(row.Path));
        EXPECT_EQ(name.No, row.No);
        EXPECT_EQ(name.Title, QString::fromUtf8(row.Title));
    }
}

TEST(FolderNames, PathsAreCutAtTheirSeparators)
{
    EXPECT_EQ(FolderOf(u"/a/b.mp3"_s), u"/a"_s);
    EXPECT_EQ(FolderOf(u"/b.mp3"_s), u"/"_s);
    EXPECT_EQ(ExtensionOf(u"/a.b/c"_s), QString());
    EXPECT_EQ(ExtensionOf(u"/a/B.MP3"_s), u".mp3"_s);
    EXPECT_EQ(StemOf(u"/a/b.c.mp3"_s), u"b.c"_s);
    const struct {
        const char* Name;
        bool Audio, Image;
    } rows[] = {{"a.MP3", true, false}, {"a.mp+", true, false},  {"a.iso", true, true},  {"A.ISO.WV", true, true},
                {"a.wv", true, false},  {"a.jpg", false, false}, {"a", false, false},    {"a.", false, false},
                {"mp3", false, false},  {"a.m3u", false, false}, {"a.m2ts", true, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(IsSupportedAudio(QString::fromUtf8(row.Name)), row.Audio) << row.Name;
        EXPECT_EQ(IsDiscImage(QString::fromUtf8(row.Name)), row.Image) << row.Name;
    }
}

} // namespace Kestrune
