// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uISOReader.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace Kestrune {

struct TDVDATrack {
    int TrackNo = 0; ///< from 1, running across titles
    int TitleNo = 0; ///< from 1
    double DurationSec = 0;
    quint32 FirstPTS = 0;                    ///< 90 kHz ticks
    quint32 FirstSector = 0, LastSector = 0; ///< in the joined AOB space
    bool IsMLP = false;
    int SampleRate = 0; ///< set on extraction
};

/// Reads the track list of a DVD-Audio image: the titles of ATS_01_0.IFO over the joined space of the files
/// ATS_01_1.AOB to ATS_01_9.AOB.
class TDVDAReader {
public:
    static bool IsDVDAImage(const QString& path);

    /// True when at least one track was found; the debug log has the reason otherwise.
    bool Open(const QString& isoPath);
    bool Open(std::shared_ptr<TByteSource> image, const QString& name);
    void Close();

    const std::vector<TDVDATrack>& Tracks() const { return FTracks; }
    /// The volume label of the image.
    QString AlbumTitle() const { return FAlbumTitle; }

    /// The MLP stream of a track, by its index from 0, from its first major sync on. False for linear PCM.
    bool ExtractTrackMLP(int trackIndex, QByteArray& buffer);

private:
    struct TAOBExtent {
        qint64 ISOOffset = 0;
        quint32 SizeBytes = 0;
    };
    bool CollectExtents(const TISOReader& iso);
    void ParseIFO(const QByteArray& ifo);
    void ParseTitle(const QByteArray& ifo, qint64 table, int title);
    void TakeTrack(const QByteArray& ifo, qint64 entry, qint64 sectors, int title);
    void Sniff(TDVDATrack& track);
    QByteArray ReadSector(quint32 sector) const;

    std::shared_ptr<TByteSource> FStream;
    std::vector<TAOBExtent> FExtents;
    quint32 FAOBTotalSectors = 0;
    std::vector<TDVDATrack> FTracks;
    QString FAlbumTitle;
};

} // namespace Kestrune
