// SPDX-License-Identifier: GPL-3.0-or-later
#include "uByteReader.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;

TEST(ByteReader, ReadsBothByteOrders)
{
    TByteReader reader(QByteArrayView("\x01\x02\x03\x04\x05\x06\x07\x08\x09", 9));
    EXPECT_EQ(reader.U16BE(), 0x0102);
    EXPECT_EQ(reader.U16LE(), 0x0403);
    EXPECT_EQ(reader.U24BE(), 0x050607u);
    EXPECT_EQ(reader.U8(), 8);
    EXPECT_EQ(reader.Left(), 1);
    EXPECT_FALSE(reader.Failed());
}

TEST(ByteReader, StaysFailedAfterAReadPastTheEnd)
{
    TByteReader reader(QByteArrayView("abc", 3));
    EXPECT_EQ(reader.U32BE(), 0u);
    EXPECT_TRUE(reader.Failed());
    EXPECT_TRUE(reader.AtEnd());
    TByteReader huge(QByteArrayView("abc", 3));
    huge.Skip(std::numeric_limits<qint64>::max());
    EXPECT_TRUE(huge.Failed());
    TByteReader negative(QByteArrayView("abc", 3));
    EXPECT_TRUE(negative.Bytes(-1).isEmpty());
    EXPECT_TRUE(negative.Failed());
}

TEST(ByteSource, FileGivesTheSameBytesFromHeadMiddleAndTail)
{
    const Kit::TTempDir dir;
    QByteArray bytes;
    for (int i = 0; i < 300000; ++i)
        bytes += static_cast<char>(i * 7 + i / 251);
    const auto file = TFileSource::Open(dir.Write(u"a.bin"_s, bytes).toStdString());
    ASSERT_TRUE(file);
    ASSERT_EQ(file->Size(), bytes.size());
    const qint64 head = TFileSource::HeadSize;
    const qint64 tail = bytes.size() - TFileSource::TailSize;
    const std::pair<qint64, qint64> cases[] = {{0, 10},        {head - 6, 6}, {head - 6, 7},     {head, 1},
                                               {100000, 1000}, {tail, 100},   {tail - 64, 2000}, {299990, 10},
                                               {299990, 100},  {300000, 1},   {0, 300000},       {-1, 5}};
    for (const auto& [offset, length] : cases) {
        SCOPED_TRACE(testing::Message() << offset << " " << length);
        const QByteArray expected = offset < 0 ? QByteArray() : bytes.mid(offset, length);
        EXPECT_TRUE(file->Read(offset, length) == expected);
    }
}

TEST(ByteSource, AFileCutWhileReadGivesWhatIsLeft)
{
    const Kit::TTempDir dir;
    const QString path = dir.Write(u"a.bin"_s, QByteArray(200000, 'x'));
    const auto file = TFileSource::Open(path.toStdString());
    Kit::WriteAll(path, QByteArray(1000, 'x'));
    EXPECT_EQ(file->Read(0, 100).size(), 100);
    EXPECT_EQ(file->Read(190000, 100).size(), 0);
    EXPECT_EQ(file->Read(70000, 70000).size(), 0);
}

TEST(ByteSource, FoldersAndMissingFilesDoNotOpen)
{
    const Kit::TTempDir dir;
    EXPECT_FALSE(TFileSource::Open(dir.Path().toStdString()));
    EXPECT_FALSE(TFileSource::Open(dir.File(u"none"_s).toStdString()));
}

TEST(ByteSource, WindowIsCutAtTheEndOfItsSource)
{
    TMemorySource memory("0123456789");
    TWindowSource window(memory, 4, 100);
    EXPECT_EQ(window.Size(), 6);
    EXPECT_TRUE(window.Read(2, 100) == "6789");
    TWindowSource outside(memory, 50, 10);
    EXPECT_EQ(outside.Size(), 0);
}

} // namespace Kestrune
