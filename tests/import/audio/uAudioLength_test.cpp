// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAudioLength.h"
#include "uByteReader.h"
#include "uTagBuilders.h"

#include <gtest/gtest.h>

namespace Kestrune {

namespace {

QByteArray TTA(quint32 rate, quint32 samples)
{
    return "TTA1" + Kit::LE16(1) + Kit::LE16(2) + Kit::LE16(16) + Kit::LE32(rate) + Kit::LE32(samples);
}

QByteArray Page(quint64 granule)
{
    return QByteArray("OggS") + QByteArray(2, '\0') + Kit::LE64(granule) + QByteArray(14, 'x');
}

} // namespace

TEST(AudioLength, TrueAudioHeadersTellTheirLength)
{
    const QByteArray pad(40, '\0');
    const struct {
        const char* Name;
        QByteArray Bytes;
        int Seconds;
    } rows[] = {
        {"bare", TTA(44100, 44100 * 7 + 44099) + pad, 7},
        {"behind a tag", QByteArray("ID3\x04\0\0\0\0\x01\x02", 10) + QByteArray(130, 't') + TTA(48000, 480000) + pad,
         10},
        {"no rate", TTA(0, 1000) + pad, 0},
        {"too short", TTA(44100, 88200).left(21), 0},
        {"cut in the header",
         QByteArray("ID3\x04\0\0\0\0\0\x0C", 10) + QByteArray(12, 't') + TTA(44100, 88200).left(10), 0},
        {"a tag past the end", QByteArray("ID3\x04\0\0\x7F\x7F\x7F\x7F", 10) + TTA(44100, 88200), 0},
        {"something else", QByteArray("TTA2") + pad, 0},
        {"most samples", TTA(1, 0xFFFFFFFFu) + pad, 0x7FFFFFFF},
    };
    for (const auto& row : rows) {
        TMemorySource source(row.Bytes);
        EXPECT_EQ(TTADurationSec(source), row.Seconds) << row.Name;
    }
}

TEST(AudioLength, OpusFilesTellTheirLengthInTheLastPage)
{
    const QByteArray pad(100, 'p');
    const struct {
        const char* Name;
        QByteArray Bytes;
        int Seconds;
    } rows[] = {
        {"the last page counts", pad + Page(48000) + Page(48000 * 9 + 47999), 9},
        {"a file under 100 bytes", Page(480000), 0},
        {"a negative position", pad + Page(~quint64(0)), 0},
        {"a mark too near to the end", pad + Page(96000) + "OggS" + QByteArray(9, '\0'), 2},
        {"a mark with just its position behind it", pad + Page(96000) + Page(144000).left(14), 3},
        {"a mark before the last 64 KiB", pad + Page(96000) + QByteArray(65536, 'z'), 0},
        {"no mark", pad + pad, 0},
    };
    for (const auto& row : rows) {
        TMemorySource source(row.Bytes);
        EXPECT_EQ(OpusDurationSec(source), row.Seconds) << row.Name;
    }
}

} // namespace Kestrune
