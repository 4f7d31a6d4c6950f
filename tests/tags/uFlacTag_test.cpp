// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFlacTag.h"
#include "uTagBuilders.h"
#include "uTestFiles.h"

#include <gtest/gtest.h>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

TEST(FlacTag, ReadsCommentsPicturesAndStreamInfo)
{
    const QByteArray png = MakePicture(3, 2, "PNG");
    const QByteArray body =
        "fLaC" + FlacBlock(0, FlacStreamInfo(96000, 6, 24, 192000)) +
        FlacBlock(4, VorbisComments({"TITLE=T\xC3\xADtle", "artist=A", "ARTIST=B", "no equals", "=x", "EMPTY="})) +
        FlacBlock(6, FlacPicture(3, "image/png", "fr\xC3\xB6nt", png, 3, 2, 24, 0)) +
        FlacBlock(6, FlacPicture(4, "image/png", "", png)) + FlacBlock(1, QByteArray(50, '\0'), true) +
        QByteArray(48000, 's');
    for (const QByteArray& prefix : {QByteArray(), Id3v2(3, {}, 0, 3000)}) {
        TMemorySource source(prefix + body);
        TFlacTag tag;
        ASSERT_EQ(tag.Load(source), TagResultOk);
        ASSERT_EQ(tag.Comments.Fields.size(), 4u);
        EXPECT_EQ(tag.Comments.Fields[0].Value, u"T\u00EDtle"_s);
        EXPECT_EQ(tag.Comments.Fields[1].Name, u"artist"_s);
        EXPECT_EQ(tag.Comments.Fields[2].Value, u"B"_s);
        ASSERT_EQ(tag.Pictures.size(), 2u);
        EXPECT_EQ(tag.Pictures[0].Description, u"fr\u00F6nt"_s);
        EXPECT_EQ(tag.Pictures[0].Width, 3);
        EXPECT_EQ(tag.Pictures[0].ColorDepth, 24);
        EXPECT_TRUE(tag.Pictures[1].Data == png);
        EXPECT_EQ(tag.Audio.Channels, 6);
        EXPECT_EQ(tag.Audio.SamplesPerSec, 96000);
        EXPECT_EQ(tag.Audio.BitsPerSample, 24);
        EXPECT_DOUBLE_EQ(tag.Audio.PlayTime, 2.0);
        EXPECT_EQ(tag.Audio.BitRate, 192000);
    }
}

TEST(VorbisComments, PicturesInBase64OfAnyLengthAndShape)
{
    for (int size = 1; size < 20; ++size) {
        QByteArray picture;
        for (int i = 0; i < size; ++i)
            picture += static_cast<char>(i * 37 + 200);
        const QByteArray base64 = picture.toBase64();
        const QByteArray shapes[] = {base64, picture.toBase64(QByteArray::OmitTrailingEquals),
                                     base64.left(3) + "\r\n" + base64.mid(3), " " + base64 + "\n"};
        for (const QByteArray& shape : shapes) {
            TVorbisComments comments;
            comments.Parse(VorbisComments({"coverart=" + shape}), true);
            ASSERT_EQ(comments.Pictures.size(), 1u);
            EXPECT_TRUE(comments.Pictures[0].Data == picture) << shape.toStdString();
        }
    }
    TVorbisComments faulty;
    EXPECT_TRUE(faulty.Parse(
        VorbisComments({"COVERART=", "COVERART=A", "COVERART=$$$$", "METADATA_BLOCK_PICTURE=AAAA"}), true));
    EXPECT_TRUE(faulty.Pictures.empty());
}

TEST(FlacTag, KeepsWhatCameBeforeALie)
{
    const QByteArray start = "fLaC" + FlacBlock(0, FlacStreamInfo(44100, 2, 16, 44100));
    QByteArray comments = VorbisComments({"TITLE=T", "ALBUM=A"});
    struct TCase {
        const char* Name;
        QByteArray Bytes;
    };
    const QByteArray manyStated = LE32(0) + LE32(0xFFFFFFFF) + LE32(7) + "TITLE=T";
    const QByteArray longStated = LE32(0) + LE32(2) + LE32(7) + "TITLE=T" + LE32(0xFFFFFFF0) + "ALBUM=A";
    const TCase cases[] = {
        {"count of comments", start + FlacBlock(4, manyStated, true)},
        {"length of a comment", start + FlacBlock(4, longStated, true)},
        {"size of the block", start + QByteArray("\x84\xFF\xFF\xFF", 4) + comments},
        {"sizes of a picture",
         start + FlacBlock(4, comments) + FlacBlock(6, BE32(3) + BE32(0xFFFFFFFF) + "image", true)},
        {"block of the forbidden type", start + FlacBlock(4, comments) + QByteArray("\x7F\xFF\xFF\xFF", 4)},
        {"a second STREAMINFO", start + FlacBlock(4, comments) + FlacBlock(0, FlacStreamInfo(300000, 8, 32, 0), true)},
        {"a picture of size 0, whose bytes look like STREAMINFO", start + FlacBlock(4, comments) + FlacBlock(6, {}) +
                                                                      FlacBlock(0, FlacStreamInfo(300000, 8, 32, 0)) +
                                                                      FlacBlock(0, QByteArray(34, '\0'), true)},
        {"a picture of size 0 and STREAMINFO of nothing before it", "fLaC" + FlacBlock(6, {}) +
                                                                        FlacBlock(0, QByteArray(34, '\0')) +
                                                                        start.sliced(4) + FlacBlock(4, comments, true)},
        {"no last block", start + FlacBlock(4, comments)},
    };
    for (const TCase& c : cases) {
        SCOPED_TRACE(c.Name);
        TMemorySource source(c.Bytes);
        TFlacTag tag;
        EXPECT_EQ(tag.Load(source), TagResultOk);
        ASSERT_FALSE(tag.Comments.Fields.empty());
        EXPECT_EQ(tag.Comments.Fields[0].Value, u"T"_s);
        EXPECT_EQ(tag.Audio.SamplesPerSec, 44100);
        EXPECT_TRUE(tag.Pictures.empty());
    }
}

} // namespace Kestrune
