// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace Kestrune {

struct TSACDTrackInfo {
    int TrackNo = 0; ///< from 1
    QString Title, Artist, Performer, Composer;
    double DurationSec = 0;
    quint32 StartLSN = 0, LengthLSN = 0; ///< sectors of the image
    quint8 Channels = 0;
    quint32 DSDRate = 0; ///< bits per second and channel
    bool DSTEncoded = false;
};

struct TSACDAlbumInfo {
    QString Title, Artist, Publisher, Copyright, DiscTitle, DiscArtist, CatalogNumber, Genre;
    int Year = 0, Month = 0, Day = 0; ///< 0 unknown
    int DiscNo = 1, DiscCount = 1;
    bool IsHybrid = false;
};

/// Reads the tables of contents of a Super Audio CD image (Scarlet Book): album, and the tracks of its first area,
/// which is the one of two channels where there are two.
class TSACDReader {
public:
    static bool IsSACDImage(const QString& path);
    static bool IsSACDImage(TByteSource& image);

    /// True when at least one track was found.
    bool Open(const QString& isoPath);
    bool Open(std::shared_ptr<TByteSource> image);
    void Close();

    bool Valid() const { return FValid; }
    const std::vector<TSACDTrackInfo>& Tracks() const { return FTracks; }
    const TSACDAlbumInfo& Album() const { return FAlbum; }

    /// A DSF file (DSF File Format Specification 1.01) of a track, by its index from 0. False, with the reason in the
    /// debug log, for a compressed track and for other than two channels.
    bool ExtractTrackToDSF(int trackIdx, QByteArray& dsfBuf) const;

private:
    bool ReadMasterTOC();
    void ReadMasterText(const QByteArray& sector);
    bool ReadAreaTOC();
    void WalkArea();
    void ReadTrackText(qsizetype at);
    void ReadPositions(qsizetype at);
    void ReadTimes(qsizetype at);
    QString DecodeText(QByteArray bytes) const;

    std::shared_ptr<TByteSource> FStream;
    std::vector<TSACDTrackInfo> FTracks;
    TSACDAlbumInfo FAlbum;
    quint32 FArea1LSN = 0, FArea1Size = 0, FArea2LSN = 0, FArea2Size = 0; ///< sectors
    QByteArray FArea1Buf;                                                 ///< the whole table of the first area
    quint8 FChannels = 2;
    quint32 FDSDRate = 2822400;
    quint8 FLoudspeakerConfig = 0, FCharset = 0, FTrackCount = 0, FTrackOffset = 0;
    bool FDSTEncoded = false;
    bool FValid = false;
};

} // namespace Kestrune
