// SPDX-License-Identifier: GPL-3.0-or-later
#include "uMediaKit.h"
#include "uUDFReader.h"

#include <functional>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

const QList<TImageFile> VideoDisc = {{"BDMV/index.bdmv", "index"},
                                     {"BDMV/STREAM/00001.m2ts", QByteArray(10000, 's')},
                                     {"BDMV/STREAM/00002.m2ts", QByteArray(9000, 'f'), 3},
                                     {"readme.txt", "text"}};

QByteArray BytesOf(const QByteArray& image, const TUDFFile& file)
{
    QByteArray bytes;
    for (const TUDFExtent& extent : file.Extents)
        bytes += image.mid(extent.Offset, extent.Size);
    return bytes;
}

} // namespace

TEST(UDFReader, FilesAreFoundInEveryShapeOfVolume)
{
    const std::pair<const char*, TUdfOptions> shapes[] = {
        {"plain", {}},
        {"metadata partition", {.Metadata = true}},
        {"data inside the entries", {.Embedded = true, .Extended = false}},
        {"old entries, NSR02", {.Extended = false, .Recognition = "NSR02"}},
        {"anchor in the last sector", {.Anchor = 1}},
        {"anchor at N - 257", {.Metadata = true, .Anchor = 2}},
    };
    for (const auto& [name, options] : shapes) {
        SCOPED_TRACE(name);
        QList<TImageFile> files = VideoDisc;
        if (options.Embedded) // they must fit
            for (TImageFile& file : files)
                file.Bytes.truncate(1000);
        const QByteArray image = UdfImage(files, options);
        TUDFReader reader;
        ASSERT_TRUE(reader.Open(InMemory(image), u"image"_s));
        EXPECT_EQ(reader.VolumeLabel(), u"ALBUM"_s);
        ASSERT_EQ(reader.Files().size(), files.size()) << "deleted entries and the parent do not count";
        for (const TImageFile& expected : files) {
            const auto file = reader.FindFile(QString::fromLatin1(expected.Path).toUpper().replace(u'/', u'\\'));
            ASSERT_TRUE(file) << expected.Path.constData();
            EXPECT_EQ(file->Path, QString::fromLatin1(expected.Path));
            EXPECT_EQ(BytesOf(image, *file), expected.Bytes) << expected.Path.constData();
            EXPECT_EQ(file->Size, expected.Bytes.size());
            EXPECT_EQ(file->Extents.size(), options.Embedded ? 1U : static_cast<size_t>(expected.Fragments));
        }
        EXPECT_FALSE(reader.FindFile(u"BDMV"_s));
        const TTempDir dir;
        ASSERT_TRUE(reader.ExtractToFile(*reader.FindFile(u"BDMV/STREAM/00002.m2ts"_s), dir.File(u"out"_s)));
        EXPECT_EQ(ReadAll(dir.File(u"out"_s)), files[2].Bytes);
    }
}

TEST(UDFReader, TellsWhyAnImageIsNotUnderstood)
{
    constexpr qint64 sector = 2048;
    const auto zero = [](QByteArray image, qint64 at) { return image.replace(at * sector, 2, QByteArray(2, '\0')); };
    const QByteArray good = UdfImage(VideoDisc);
    const QByteArray meta = UdfImage(VideoDisc, {.Metadata = true});
    QByteArray manyMaps = good;
    manyMaps.replace(42 * sector + 268, 4, LE32(9));
    QByteArray otherPartition = good;
    otherPartition.replace(41 * sector + 22, 2, LE16(8));
    QByteArray noFileSet = good;
    noFileSet.replace(42 * sector + 252, 4, LE32(5)); // data of a file
    QByteArray farFileSet = good;
    farFileSet.replace(42 * sector + 252, 4, LE32(0xFFFFFF));
    QByteArray wrongMap = good;
    wrongMap.replace(42 * sector + 256, 2, LE16(3));
    QByteArray sparable = meta;
    sparable.replace(sparable.indexOf("*UDF Metadata"), 23, QByteArray("*UDF Sparable Partition").left(23));
    const struct {
        QByteArray Image;
        QString Line;
    } rows[] = {
        {QByteArray(600000, '\0'), u"[UDF] image: no UDF volume recognition sequence"_s},
        {UdfImage(VideoDisc, {.Recognition = "BEA01"}), u"[UDF] image: no UDF volume recognition sequence"_s},
        {zero(good, 256), u"[UDF] No Anchor Volume Descriptor Pointer found"_s},
        {zero(good, 42), u"[UDF] No Logical Volume Descriptor found"_s},
        {UdfImage(VideoDisc, {.BlockSize = 512}), u"[UDF] Unsupported logical block size 512"_s},
        {manyMaps, u"[UDF] Implausible partition map count 9"_s},
        {otherPartition, u"[UDF] Partition 7 referenced by map 0 not found"_s},
        {zero(good, 300), u"[UDF] Bad File Set Descriptor tag 0"_s},
        {farFileSet, u"[UDF] Cannot read File Set Descriptor at (0:16777215)"_s},
        {wrongMap, u"[UDF] Unsupported partition map 3 referenced"_s},
        {sparable, u"[UDF] Unsupported type 2 partition map \"*UDF Sparable Partition\""_s},
        {zero(meta, 300), u"[UDF] Not a File Entry (tag 0)"_s},
    };
    int number = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(number++);
        const TLogged log;
        TUDFReader reader;
        EXPECT_FALSE(reader.Open(InMemory(row.Image), u"image"_s));
        EXPECT_TRUE(log.Has(row.Line)) << log.All().toStdString();
        EXPECT_TRUE(reader.Files().empty());
    }
}

TEST(UDFReader, AnEmptyVolumeOpensAndABadEntryIsPassedOver)
{
    const TLogged log;
    TUDFReader reader;
    EXPECT_TRUE(reader.Open(InMemory(UdfImage({}, {.Metadata = true})), u"image"_s));
    EXPECT_TRUE(log.Has(u"[UDF] Volume parsed but no files found (meta=2)"_s)) << log.All().toStdString();
    QByteArray image = UdfImage({{"a", "1"}, {"b", "2"}});
    image.replace(302 * 2048, 2, LE16(99)); // the entry of the first file
    EXPECT_TRUE(reader.Open(InMemory(image), u"image"_s));
    ASSERT_EQ(reader.Files().size(), 1U);
    EXPECT_EQ(reader.Files()[0].Path, u"b"_s);
    EXPECT_TRUE(log.Has(u"[UDF] Not a File Entry (tag 99)"_s));
    EXPECT_TRUE(log.Has(u"[UDF] Cannot read File Entry of \"a\""_s));
}

TEST(UDFReader, ADirectoryThatHoldsItselfIsReadOnce)
{
    TUDFReader reader;
    ASSERT_TRUE(reader.Open(InMemory(UdfImage({{"a", "1"}}, {.LoopingDirectory = true})), u"image"_s));
    EXPECT_EQ(reader.Files().size(), 1U);
}

} // namespace Kestrune
