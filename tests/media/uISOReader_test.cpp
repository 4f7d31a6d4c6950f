// SPDX-License-Identifier: GPL-3.0-or-later
#include "uISOReader.h"
#include "uMediaKit.h"

#include <QBuffer>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

QStringList Listing(const TISOReader& reader)
{
    QStringList lines;
    for (const TISOFile& file : reader.Files())
        lines += file.IsDir ? file.FullPath + u'/' : u"%1 %2"_s.arg(file.FullPath).arg(file.Size);
    return lines;
}

} // namespace

TEST(ISOReader, ListsTheTreeOfThePrimaryDescriptor)
{
    const QByteArray image = IsoImage("MY ALBUM", {{"TRACK01.FLA", QByteArray(5000, 'a')},
                                                   {"SCANS/FRONT.JPG", "picture"},
                                                   {"SCANS/DEEP/README.", "point"},
                                                   {"EMPTY/", {}},
                                                   {"ZERO.TXT", {}}});
    TISOReader reader;
    ASSERT_TRUE(reader.Open(InMemory(image)));
    EXPECT_EQ(reader.VolumeLabel(), u"MY ALBUM"_s);
    EXPECT_EQ(Listing(reader),
              (QStringList{u"TRACK01.FLA 5000"_s, u"SCANS/"_s, u"SCANS/FRONT.JPG 7"_s, u"SCANS/DEEP/"_s,
                           u"SCANS/DEEP/README. 5"_s, u"EMPTY/"_s, u"ZERO.TXT 0"_s}));
    qint64 offset = 0;
    quint32 size = 0;
    ASSERT_TRUE(reader.GetFileOffset(u"scans/front.jpg"_s, offset, size));
    EXPECT_EQ(image.mid(offset, size), "picture");
    EXPECT_TRUE(reader.GetFileOffset(u"front.JPG"_s, offset, size)) << "by its name alone";
    EXPECT_FALSE(reader.GetFileOffset(u"SCANS"_s, offset, size)) << "a directory is no file";
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    ASSERT_TRUE(reader.ExtractToStream(reader.Files()[0], out));
    EXPECT_EQ(out.data(), QByteArray(5000, 'a'));
    reader.Close();
    EXPECT_FALSE(reader.ExtractToStream({}, out));
}

TEST(ISOReader, ADirectoryGoesOnInTheNextSector)
{
    QList<TImageFile> files;
    for (int i = 0; i < 300; ++i)
        files << TImageFile{"FILE" + QByteArray::number(1000 + i) + ".TXT", QByteArray(i, 'x')};
    TISOReader reader;
    ASSERT_TRUE(reader.Open(InMemory(IsoImage("X", files))));
    ASSERT_EQ(reader.Files().size(), 300U);
    EXPECT_EQ(reader.Files()[299].Name, u"FILE1299.TXT"_s);
}

TEST(ISOReader, RefusesWhatIsNoImage)
{
    QByteArray image = IsoImage("X", {{"A.TXT", "a"}});
    TISOReader reader;
    EXPECT_FALSE(reader.Open(InMemory(image.left(0x87FF))));
    EXPECT_FALSE(reader.Open(InMemory(QByteArray(100000, '\0'))));
    EXPECT_FALSE(reader.Open(u"/nowhere/at all.iso"_s));
    image[0x8000] = 2;
    EXPECT_FALSE(reader.Open(InMemory(image)));
    EXPECT_TRUE(reader.Files().empty());
}

TEST(ISOReader, AFileThatIsCutOffIsNotWritten)
{
    const TTempDir dir;
    const QByteArray image = IsoImage("X", {{"A.TXT", QByteArray(5000, 'a')}});
    TISOReader reader;
    ASSERT_TRUE(reader.Open(InMemory(image.left(image.size() - 4096))));
    EXPECT_FALSE(reader.ExtractToFile(reader.Files()[0], dir.File(u"a.txt"_s)));
    EXPECT_FALSE(QFile::exists(dir.File(u"a.txt"_s)));
}

// What other programs make of the same images, without Joliet and Rock Ridge.
TEST(ISOReader, AgreesWithIsoinfoOnImagesOfTwoMakers)
{
    const TTempDir dir;
    dir.Write(u"tree/Long name with blanks.flac"_s, QByteArray(70000, 'l'));
    dir.Write(u"tree/sub/deep/er/a.cue"_s, "cue");
    dir.Write(u"tree/sub/noextension"_s, "n");
    for (int i = 0; i < 80; ++i)
        dir.Write(u"tree/many/file number %1.txt"_s.arg(i), QByteArray::number(i));
    const std::pair<QString, QStringList> makers[] = {
        {u"genisoimage"_s, {u"-quiet"_s, u"-J"_s, u"-R"_s, u"-V"_s, u"LABEL"_s, u"-o"_s}},
        {u"xorriso"_s, {u"-as"_s, u"mkisofs"_s, u"-quiet"_s, u"-J"_s, u"-R"_s, u"-V"_s, u"LABEL"_s, u"-o"_s}}};
    for (const auto& [program, arguments] : makers) {
        SCOPED_TRACE(program.toStdString());
        const QString image = dir.File(program + u".iso"_s);
        ASSERT_TRUE(RunProgram(program, arguments + QStringList{image, dir.File(u"tree"_s)}));
        TISOReader reader;
        ASSERT_TRUE(reader.Open(image));
        EXPECT_EQ(reader.VolumeLabel(), u"LABEL"_s);
        QByteArray output;
        ASSERT_TRUE(RunProgram(u"isoinfo"_s, {u"-f"_s, u"-i"_s, image}, &output));
        QStringList expected;
        for (const QByteArray& line : output.trimmed().split('\n'))
            expected += QString::fromLatin1(line.mid(1)).section(u';', 0, 0);
        QStringList found;
        for (const TISOFile& file : reader.Files())
            found += file.FullPath;
        std::ranges::sort(expected);
        std::ranges::sort(found);
        EXPECT_EQ(found, expected);
        for (const TISOFile& file : reader.Files()) {
            if (file.IsDir)
                continue;
            QByteArray bytes;
            ASSERT_TRUE(RunProgram(u"isoinfo"_s, {u"-i"_s, image, u"-x"_s, u'/' + file.FullPath + u";1"_s}, &bytes));
            QBuffer out;
            out.open(QIODevice::WriteOnly);
            ASSERT_TRUE(reader.ExtractToStream(file, out));
            EXPECT_EQ(out.data(), bytes) << file.FullPath.toStdString();
        }
    }
}

TEST(ISOReader, ReadsBehindFourGigabytes)
{
    const TTempDir dir;
    QByteArray head = IsoImage("BIG", {{"FAR.TXT", "far away"}});
    // The record of the one file is moved to a block behind 5 GiB.
    const qint64 block = 5LL * 1024 * 1024 * 1024 / DiscSectorSize;
    const qsizetype name = head.indexOf("FAR.TXT");
    head.replace(name - 31, 8, LE32(static_cast<quint32>(block)) + BE32(static_cast<quint32>(block)));
    QFile file(dir.File(u"big.iso"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(head);
    ASSERT_TRUE(file.seek(block * DiscSectorSize)); // the file is sparse
    file.write("far away");
    file.close();
    TISOReader reader;
    ASSERT_TRUE(reader.Open(file.fileName()));
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    ASSERT_TRUE(reader.ExtractToStream(reader.Files()[0], out));
    EXPECT_EQ(out.data(), "far away");
}

} // namespace Kestrune
