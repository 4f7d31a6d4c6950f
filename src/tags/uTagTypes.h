// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <vector>

namespace Kestrune {

/// Results of the readers' loads.
inline constexpr int TagResultOk = 0;
inline constexpr int TagResultNoTag = 1;        ///< the file holds no tag of this kind
inline constexpr int TagResultCorrupt = 2;      ///< a tag begins but cannot be read
inline constexpr int TagResultNotSupported = 3; ///< a version that nobody has defined
inline constexpr int TagResultNoFile = 5;       ///< the file does not exist or cannot be opened

enum class TTagPictureFormat : quint8 { tpfUnknown, tpfJPEG, tpfPNG, tpfBMP, tpfGIF, tpfTIFF };
using enum TTagPictureFormat;

/// The format that the first bytes of a picture tell; `tpfUnknown` for an empty one.
TTagPictureFormat PictureStreamType(QByteArrayView picture);

/// "image/jpeg" and so on; empty for an unknown format.
QString PictureMIMEType(TTagPictureFormat format);

/// So many texts and so many pictures of one tag are kept. No honest tag has a tenth of them; a few megabytes of the
/// shortest ones would fill hundreds of megabytes of memory.
inline constexpr size_t MostFields = 65536;
inline constexpr size_t MostPictures = 1024;

/// One named text of a tag whose format names its fields itself. Several texts under one name are several fields.
struct TTagField {
    QString Name;
    QString Value;
};

/// One picture of a tag, its bytes as stored.
struct TTagPicture {
    QString Name; ///< name of the field that holds it, where the format has one
    QByteArray Data;
    QString Description;
    QString MIMEType;  ///< as stored; empty where the format stores none
    int CoverType = 0; ///< picture type of ID3v2 (APIC), 3 is the front cover
    int Width = 0;
    int Height = 0;
    int ColorDepth = 0;
    int NoOfColors = 0;
};

/// Facts about an audio stream; 0 where the file does not tell.
struct TAudioAttributes {
    int Channels = 0;
    int SamplesPerSec = 0;
    int BitsPerSample = 0;
    double PlayTime = 0;    ///< seconds
    qint64 SampleCount = 0; ///< per channel
    qint64 BitRate = 0;     ///< bits per second
};

/// A file's unsigned number as an int; one that does not fit gives 0, since no field here means that much.
inline int CheckedInt(quint64 value) { return value <= 0x7FFFFFFF ? static_cast<int>(value) : 0; }

/// Samples in `seconds` at a rate, rounded; 0 when that is out of all range.
qint64 SampleCountOf(double seconds, int rate);

/// `bytes` in `seconds` as bits per second, rounded; 0 when there is no time.
qint64 BitRateOf(qint64 bytes, double seconds);

} // namespace Kestrune
