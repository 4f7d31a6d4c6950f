// SPDX-License-Identifier: GPL-3.0-or-later
#include "uReleasePictures.h"
#include "uReleaseValues.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(ReleaseKit, WhatASourceLeavesOutStaysOut)
{
    TAlbumRelease release;
    SetText(release, u"Label"_s, {});
    SetNumber(release, u"ReleaseYear"_s, 0);
    SetDate(release, u"ReleaseDate"_s, {});
    for (const QString& country : {u""_s, u"Atlantis"_s})
        SetCountry(release, country);
    EXPECT_TRUE(release.Items().empty());
    SetText(release, u"Label"_s, u"L"_s);
    SetNumber(release, u"ReleaseYear"_s, -1);
    SetDate(release, u"ReleaseDate"_s, {2004, 5, 1});
    SetCountry(release, u" united kingdom "_s);
    EXPECT_EQ(VarToStr(release[u"Label"_s]) + VarToStr(release[u"ReleaseYear"_s]), u"L-1"_s);
    EXPECT_EQ(VarToStr(release[u"ReleaseDate"_s]) + VarToStr(release[u"CountryCode"_s]), u"2004-05-01GB"_s);
}

TEST(ReleaseKit, PicturesAreTakenFromFilesAndBytes)
{
    const Kit::TTempDir dir;
    const QByteArray picture = Kit::MakePicture(30, 20, "PNG");
    const struct {
        const char* Name;
        QString Path;
        bool Taken;
    } rows[] = {{"a picture", dir.Write(u"a.png"_s, picture), true},
                {"a cut one", dir.Write(u"cut.png"_s, picture.first(10)), false},
                {"a text", dir.Write(u"text.png"_s, "no picture"), false},
                {"nothing there", dir.File(u"none.png"_s), false},
                {"a folder", dir.Path(), false},
                {"no path", {}, false}};
    for (const auto& row : rows) {
        TAlbumRelease release;
        EXPECT_EQ(AddPictureFile(release, cptFrontLarge, row.Path), row.Taken) << row.Name;
        EXPECT_EQ(release.Pictures.size(), row.Taken ? 1U : 0U) << row.Name;
    }
}

TEST(ReleaseKit, ThumbnailsAreMadeWhereThereIsNone)
{
    TAlbumRelease release;
    AddThumbnails(release);
    EXPECT_TRUE(release.Pictures.empty());
    AddPictureBytes(release, cptFrontLarge, Kit::MakePicture(300, 200, "JPG", 1));
    AddPictureBytes(release, cptBackLarge, Kit::MakePicture(10, 20, "PNG", 2));
    AddPictureBytes(release, cptMediaLarge, Kit::MakePicture(300, 200, "PNG", 3));
    const QByteArray own = Kit::MakePicture(7, 7, "PNG", 4);
    AddPictureBytes(release, cptBackThumb, own);
    AddThumbnails(release);
    ASSERT_TRUE(release.GetPicByType(cptFrontThumb));
    EXPECT_EQ(release.GetPicByType(cptFrontThumb)->Size(), QSize(120, 120));
    EXPECT_EQ(release.GetPicByType(cptFrontThumb)->Format(), QByteArray("jpeg"));
    EXPECT_EQ(release.GetPicByType(cptBackThumb)->Bytes(), own) << "the source's own thumbnail stays";
    EXPECT_EQ(release.Pictures.size(), 5U);
    TAlbumRelease torn;
    AddPictureBytes(torn, cptFrontLarge, Kit::MakePicture(300, 200, "PNG").first(100));
    AddThumbnails(torn);
    EXPECT_FALSE(torn.GetPicByType(cptFrontThumb)) << "a picture that is cut behind its head";
}

} // namespace Kestrune
