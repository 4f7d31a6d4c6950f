// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTagTypes.h"

#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

TTagPictureFormat PictureStreamType(QByteArrayView picture)
{
    struct TSignature {
        QByteArrayView Bytes;
        TTagPictureFormat Format;
    };
    static constexpr TSignature signatures[] = {
        {QByteArrayView("GI", 2), tpfGIF},          {QByteArrayView("BM", 2), tpfBMP},
        {QByteArrayView("\x89P", 2), tpfPNG},       {QByteArrayView("\xFF\xD8", 2), tpfJPEG},
        {QByteArrayView("II\x2A\x00", 4), tpfTIFF}, {QByteArrayView("MM\x00\x2A", 4), tpfTIFF},
    };
    for (const TSignature& signature : signatures)
        if (picture.startsWith(signature.Bytes))
            return signature.Format;
    return tpfUnknown;
}

QString PictureMIMEType(TTagPictureFormat format)
{
    switch (format) {
    case tpfJPEG: return u"image/jpeg"_s;
    case tpfPNG: return u"image/png"_s;
    case tpfBMP: return u"image/bmp"_s;
    case tpfGIF: return u"image/gif"_s;
    case tpfTIFF: return u"image/tiff"_s;
    case tpfUnknown: break;
    }
    return {};
}

qint64 BitRateOf(qint64 bytes, double seconds)
{
    // Below a millisecond a lying header could make the quotient anything.
    if (bytes <= 0 || !(seconds > 0.001))
        return 0;
    const double rate = static_cast<double>(bytes) * 8 / seconds;
    return rate < 1e18 ? static_cast<qint64>(std::llround(rate)) : 0;
}

qint64 SampleCountOf(double seconds, int rate)
{
    const double count = seconds * rate;
    return count > 0 && count < 1e18 ? static_cast<qint64>(std::llround(count)) : 0;
}

} // namespace Kestrune
