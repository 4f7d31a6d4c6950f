// SPDX-License-Identifier: GPL-3.0-or-later
// Cue sheets: decoding, parsing and cutting the files of a folder.
#include "uCueSheet.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

TKRN_MP3_Track FuzzSource(const QString& path, const QString& type, int seconds)
{
    TKRN_MP3_Track track;
    track.FilePath = path;
    track.FileType = type;
    track.DurationSec = seconds;
    return track;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TKRN_MP3_Tracks scanned{FuzzSource(u"/m/a.wav"_s, {}, 300), FuzzSource(u"/m/b.flac"_s, {}, 0),
                                         FuzzSource(u"/m/c.iso"_s, u"ISO:/D.WAV"_s, 60)};
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const TCueSheet sheet = ParseCueSheet(DecodeCueText(bytes));
    for (const TKRN_MP3_Tracks& files : {scanned, TKRN_MP3_Tracks{scanned[0]}}) {
        const std::vector<TKRN_MP3_Tracks> albums = CutIntoAlbums({sheet, sheet}, files, {u"e.wav"_s});
        size_t count = 0;
        for (const TKRN_MP3_Tracks& tracks : albums) {
            count += tracks.size();
            for (const TKRN_MP3_Track& track : tracks)
                if (track.DurationSec < 0 || track.FilePath.isEmpty())
                    std::abort();
        }
        if (count < 1 || count > sheet.Tracks.size() + files.size())
            std::abort();
    }
    return 0;
}
