// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <utility>

/// Disc images, built byte by byte.
namespace Kestrune::Kit {

struct TImageFile {
    QByteArray Path; ///< components joined by "/"; a path that ends with "/" is an empty directory
    QByteArray Bytes;
    int Fragments = 1; ///< UDF: pieces with a gap of one sector between them
};

/// An ISO 9660 image with a primary descriptor only. File names get ";1".
QByteArray IsoImage(const QByteArray& label, const QList<TImageFile>& files);

struct TUdfOptions {
    bool Metadata = false; ///< directories lie in a metadata partition of two extents
    bool Embedded = false; ///< file data stands inside the File Entries
    int Anchor = 0;        ///< 0 at sector 256, 1 at the last sector, 2 at N - 257
    quint32 BlockSize = 2048;
    bool Extended = true; ///< Extended File Entries
    QByteArray Recognition = "NSR03";
    bool LoopingDirectory = false; ///< the root holds itself under the name "LOOP"
};
QByteArray UdfImage(const QList<TImageFile>& files, const TUdfOptions& options = {});

struct TSacdTrack {
    QByteArray Title = {}, Performer = {}, Composer = {};
    int Minutes = 0, Seconds = 0, Frames = 0; ///< 75 frames a second
    QByteArray Sound = {};                    ///< bytes of both channels in turn, in frames of 9,408
};
struct TSacdOptions {
    QByteArray Title = {}, Artist = {}, Catalog = "CAT-1";
    int Year = 2004;
    int Charset = 2;
    int DiscNo = 1, DiscCount = 1;
    bool Compressed = false, Hybrid = false;
    int Channels = 2;
    bool SecondText = false; ///< a further text sector in another language
};
QByteArray SacdImage(const QList<TSacdTrack>& tracks, const TSacdOptions& options = {});

struct TDvdaTrack {
    double Seconds = 0;
    quint32 FirstSector = 0, LastSector = 0;
};
/// The information file of title set 1; each inner list is a title.
QByteArray DvdaIfo(const QList<QList<TDvdaTrack>>& titles);
/// Sectors of a program stream that carry the bytes in private stream 1, in pieces of at most 1,900.
QByteArray AobSectors(const QByteArray& sound, quint8 subStream = 0xA1);

/// A transport stream of tables and of PES packets of one elementary stream, one per time stamp (90 kHz), in packets
/// of 192 bytes.
QByteArray TransportStream(quint8 streamType, const QList<std::pair<qint64, QByteArray>>& packets,
                           int extensionID = -1);

} // namespace Kestrune::Kit
