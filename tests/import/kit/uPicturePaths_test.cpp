// SPDX-License-Identifier: GPL-3.0-or-later
#include "uPicturePaths.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(PicturePaths, PathsOfOtherProgramsAreFound)
{
    const Kit::TTempDir dir;
    for (const char* name : {"Shelf/My Discs.dat", "Shelf/cover.jpg", "Shelf/Covers/1.JPG", "Shelf/Covers/2.jpg",
                             "Shelf/My Discs/3.jpg", "Shelf/back\\slash.jpg", "Shelf/folder.jpg/x", "Other/4.jpg"})
        dir.Write(QString::fromUtf8(name), "x");
    qputenv("KRN_TEST_PICTURES", dir.File(u"Other"_s).toUtf8());
    TPicturePaths paths(dir.File(u"Shelf/My Discs.dat"_s));
    const QString root = dir.Path() + u'/';
    const struct {
        const char *Name, *Path, *Found;
    } rows[] = {
        {"relative", "Covers/2.jpg", "Shelf/Covers/2.jpg"},
        {"backslashes", "Covers\\2.jpg", "Shelf/Covers/2.jpg"},
        {"another case", "COVERS\\1.jpg", "Shelf/Covers/1.JPG"},
        {"the folder's token", "%relativepath%\\Covers\\2.jpg", "Shelf/Covers/2.jpg"},
        {"the token without separator", "%RELATIVEPATH%cover.jpg", "Shelf/cover.jpg"},
        {"the name's token", "%RelativePath%\\%DBFilenameWithoutExt%\\3.JPG", "Shelf/My Discs/3.jpg"},
        {"the environment", "%KRN_TEST_PICTURES%\\4.jpg", "Other/4.jpg"},
        {"an environment of another machine", "%ALLUSERSPROFILE%\\Shelf\\Covers\\2.jpg", "Shelf/Covers/2.jpg"},
        {"a drive", "C:\\Users\\Me\\Covers\\1.jpg", "Shelf/Covers/1.JPG"},
        {"a drive without separator", "d:covers\\1.jpg", "Shelf/Covers/1.JPG"},
        {"a name in the root of a drive", "C:\\cover.jpg", "Shelf/cover.jpg"},
        {"a name in another folder of a drive", "C:\\Albums\\One\\cover.jpg", ""},
        {"a share", "\\\\server\\music\\covers\\2.jpg", "Shelf/Covers/2.jpg"},
        {"up and down", "..\\Other\\4.JPG", "Shelf/../Other/4.jpg"},
        {"a backslash in a name", "<root>Shelf/back\\slash.jpg", "Shelf/back\\slash.jpg"},
        {"absolute", "<root>Other/4.jpg", "Other/4.jpg"},
        {"absolute in another case", "<root>other/4.JPG", "Other/4.jpg"},
        {"a folder", "folder.jpg", ""},
        {"a device", "/dev/zero", ""},
        {"nothing there", "Covers\\9.jpg", ""},
        {"no path", " ", ""},
        {"only separators", "C:\\\\", ""},
        {"a lone percent sign", "100%\\x.jpg", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const QString found = paths.Find(QString::fromUtf8(row.Path).replace(u"<root>"_s, root));
        EXPECT_EQ(QString(found).replace(root, QString()), QString::fromUtf8(row.Found));
    }
    EXPECT_EQ(paths.Find(u"C:\\"_s + QString(5000, u'a')), QString());
    qunsetenv("KRN_TEST_PICTURES");
}

// One folder holds the covers of a whole collection, named in another case: listing it for each would take minutes.
TEST(PicturePaths, AFolderIsListedOnce)
{
    const Kit::TTempDir dir;
    constexpr int count = 3000;
    for (int i = 0; i < count; ++i)
        dir.Write(u"Covers/Cover%1.jpg"_s.arg(i), "x");
    TPicturePaths paths(dir.File(u"x.dat"_s));
    int found = 0;
    for (int round = 0; round < 20; ++round)
        for (int i = 0; i < count; ++i)
            found += paths.Find(u"C:\\Data\\covers\\cover%1.JPG"_s.arg(i)).isEmpty() ? 0 : 1;
    EXPECT_EQ(found, 20 * count);
}

} // namespace Kestrune
