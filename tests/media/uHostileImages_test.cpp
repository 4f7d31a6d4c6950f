// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDVDAReader.h"
#include "uISOReader.h"
#include "uM2TSReader.h"
#include "uMP4Reader.h"
#include "uMediaKit.h"
#include "uSACDReader.h"
#include "uUDFReader.h"

#include <functional>

namespace Kestrune {

using namespace Qt::StringLiterals;
using namespace Kit;

namespace {

// Opens an image with every reader and takes out what they list; it must end, and nothing may come that is not there.
void TryAll(const QByteArray& image)
{
    const auto source = InMemory(image);
    QByteArray out;
    TISOReader iso;
    iso.Open(source);
    EXPECT_LE(iso.Files().size(), static_cast<size_t>(image.size() / 33));
    TUDFReader udf;
    udf.Open(source, u"image"_s);
    EXPECT_LE(udf.Files().size(), static_cast<size_t>(image.size() / 38));
    TSACDReader sacd;
    sacd.Open(source);
    for (int i = 0; i < 3; ++i) {
        sacd.ExtractTrackToDSF(i, out);
        EXPECT_LE(out.size(), image.size() + 3 * 8192);
    }
    TDVDAReader dvda;
    dvda.Open(source, u"image"_s);
    for (int i = 0; i < 3; ++i) {
        dvda.ExtractTrackMLP(i, out);
        EXPECT_LE(out.size(), image.size());
    }
    TM2TSReader stream;
    stream.Open(source);
    stream.ExtractTrueHD(out);
    EXPECT_LE(out.size(), image.size());
    TMP4Reader mp4;
    mp4.Open(source);
    mp4.ExtractTrack(0, out);
}

struct THostileSeed {
    const char* Name;
    QByteArray Image;
    QList<qint64> Interesting; ///< sectors whose bytes are falsified
};

QList<THostileSeed> Seeds()
{
    const QByteArray sync = QByteArray("\x10\x20\0\0\xF8\x72\x6F\xBA", 8) + QByteArray(200, 't');
    const QByteArray aob = AobSectors(sync.repeated(20));
    const QByteArray dvda =
        IsoImage("X", {{"AUDIO_TS/ATS_01_0.IFO", DvdaIfo({{{1, 0, 1}, {2, 1, 1}}})}, {"AUDIO_TS/ATS_01_1.AOB", aob}});
    return {
        {"iso", IsoImage("X", {{"A/B/C.TXT", "c"}, {"A/D.FLA", QByteArray(3000, 'd')}}), {16, 18, 19, 20}},
        {"udf",
         UdfImage({{"a/b.m2ts", QByteArray(9000, 'b'), 3}}, {.Metadata = true}),
         {16, 17, 32, 41, 42, 256, 300, 301, 302, 303, 304, 305, 306, 307}},
        {"sacd",
         SacdImage({{.Title = "One", .Sound = QByteArray(9408, 's')}}, {.Title = "T"}),
         {510, 511, 544, 545, 546, 547, 600}},
        {"dvda", dvda, {18, 19, 20, 21, 22}},
        {"m2ts", TransportStream(0x83, {{9000, sync}, {18000, sync}}, 0x72), {0}},
    };
}

} // namespace

TEST(HostileImages, CutAnywhereNothingBreaks)
{
    for (const THostileSeed& seed : Seeds()) {
        SCOPED_TRACE(seed.Name);
        TryAll(seed.Image);
        // Every byte of the places that are parsed, then coarser.
        for (const qint64 sector : seed.Interesting)
            for (qint64 at = 0; at < 256; at += 3)
                TryAll(seed.Image.left(sector * 2048 + at));
        for (qint64 size = 0; size < seed.Image.size(); size += 4099)
            TryAll(seed.Image.left(size));
    }
}

TEST(HostileImages, FalseNumbersAnywhereNothingBreaks)
{
    for (const THostileSeed& seed : Seeds()) {
        SCOPED_TRACE(seed.Name);
        for (const qint64 sector : seed.Interesting)
            for (qint64 at = sector * 2048; at < std::min<qint64>(sector * 2048 + 480, seed.Image.size()); ++at)
                for (const char value : {'\0', '\xFF', '\x7F', '\x10'}) {
                    QByteArray image = seed.Image;
                    image[at] = value;
                    TryAll(image);
                }
    }
}

TEST(HostileImages, ADirectoryThatHoldsItselfEnds)
{
    QByteArray image = IsoImage("X", {{"LOOP/A.TXT", "a"}});
    const qsizetype name = image.indexOf("LOOP");
    image.replace(name - 31, 8, LE32(18) + BE32(18)); // the root
    TISOReader reader;
    ASSERT_TRUE(reader.Open(InMemory(image)));
    EXPECT_EQ(reader.Files().size(), 1U);
}

} // namespace Kestrune
