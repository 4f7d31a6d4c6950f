// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uFourCC.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace Kestrune {

struct TMP4AudioTrack {
    TFourCC Codec; ///< of the sample description: "mp4a", "alac", "ac-3", "ec-3", "mlpa" (TrueHD), "fLaC", "Opus"
    double DurationSec = 0;
    int Channels = 0;
    int SampleRate = 0;
    bool IsTrueHD() const { return Codec == TFourCC("mlpa"); }

    qint64 TableOffset = 0, TableEnd = 0; ///< of the sample table in the file
};

/// Lists the audio tracks of an MP4 or QuickTime file (ISO/IEC 14496-12) and takes raw streams out of it.
class TMP4Reader {
public:
    /// True when the file holds at least one audio track.
    bool Open(const QString& filePath);
    bool Open(std::shared_ptr<TByteSource> file);
    void Close();

    const std::vector<TMP4AudioTrack>& Tracks() const { return FTracks; }
    /// Index of the first TrueHD track, or -1.
    int TrueHDTrack() const;
    /// The samples of a track one behind the other; false when its tables do not tell where they are.
    bool ExtractTrack(int index, QByteArray& out) const;

private:
    void TakeTrack(qint64 start, qint64 end);

    std::shared_ptr<TByteSource> FFile;
    std::vector<TMP4AudioTrack> FTracks;
};

} // namespace Kestrune
