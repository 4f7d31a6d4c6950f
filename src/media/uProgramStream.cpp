// SPDX-License-Identifier: GPL-3.0-or-later
#include "uProgramStream.h"

#include "uByteReader.h"

#include <algorithm>

namespace Kestrune {

namespace {

constexpr quint8 PackStart = 0xBA, PrivateStream1 = 0xBD;

bool HasPESHead(quint8 streamID)
{
    // Map, padding, private 2, ECM, EMM, directory and DSM-CC carry their bytes without a head.
    for (const quint8 id : {0xBC, 0xBE, 0xBF, 0xF0, 0xF1, 0xFF, 0xF2, 0xF8})
        if (streamID == id)
            return false;
    return streamID > 0xBB;
}

qint64 ReadTimeStamp(TByteReader& reader)
{
    const quint8 high = reader.U8();
    const quint32 middle = reader.U16BE();
    const quint32 low = reader.U16BE();
    return qint64(high >> 1 & 7) << 30 | qint64(middle >> 1) << 15 | qint64(low >> 1);
}

int ReadExtensionID(TByteReader& reader)
{
    const quint8 flags = reader.U8();
    reader.Skip((flags & 0x80) != 0 ? 16 : 0); // private data
    if ((flags & 0x40) != 0)
        reader.Skip(reader.U8()); // pack header
    reader.Skip(((flags & 0x20) != 0 ? 2 : 0) + ((flags & 0x10) != 0 ? 2 : 0));
    if ((flags & 1) == 0)
        return -1;
    const int length = reader.U8() & 0x7F;
    const quint8 id = length > 0 ? reader.U8() : 0x80;
    return reader.Failed() || (id & 0x80) != 0 ? -1 : id;
}

} // namespace

bool ParsePESHeader(QByteArrayView bytes, TPESHeader& header)
{
    header = {};
    TByteReader reader(bytes);
    if (reader.U24BE() != 1)
        return false;
    header.StreamID = reader.U8();
    reader.Skip(2);
    if (!HasPESHead(header.StreamID)) {
        header.Length = 6;
        return !reader.Failed();
    }
    const quint8 mark = reader.U8();
    const quint8 flags = reader.U8();
    const int rest = reader.U8();
    header.Length = 9 + rest;
    if (reader.Failed() || (mark & 0xC0) != 0x80)
        return false;
    TByteReader fields(bytes.sliced(9, std::min<qsizetype>(rest, bytes.size() - 9)));
    if ((flags & 0x80) != 0)
        header.PTS = ReadTimeStamp(fields);
    fields.Skip(((flags & 0x40) != 0 ? 5 : 0) + ((flags & 0x20) != 0 ? 6 : 0) + ((flags & 0x10) != 0 ? 3 : 0) +
                ((flags & 8) != 0 ? 1 : 0) + ((flags & 4) != 0 ? 1 : 0) + ((flags & 2) != 0 ? 2 : 0));
    if ((flags & 1) != 0)
        header.ExtensionID = ReadExtensionID(fields);
    return true;
}

void WalkPrivateStream1(QByteArrayView sector, const std::function<bool(QByteArrayView payload)>& handler)
{
    qsizetype at = 0;
    while (at + 6 <= sector.size()) {
        TByteReader reader(sector.sliced(at));
        if (reader.U24BE() != 1)
            return;
        const quint8 id = reader.U8();
        if (id == PackStart) {
            reader.Skip(9);
            at += 14 + (reader.U8() & 7); // stuffing
            continue;
        }
        const qsizetype length = reader.U16BE();
        const qsizetype end = std::min(at + 6 + length, sector.size());
        TPESHeader header;
        if (id == PrivateStream1 && ParsePESHeader(sector.sliced(at, end - at), header) && at + header.Length < end &&
            !handler(sector.sliced(at + header.Length, end - at - header.Length)))
            return;
        at = end;
    }
}

qint64 FindMLPSync(QByteArrayView bytes, qint64 from)
{
    for (qint64 at = std::max<qint64>(from, 0) + 4; at + 4 <= bytes.size(); ++at) {
        at = bytes.indexOf(QByteArrayView("\xF8\x72\x6F", 3), at);
        if (at < 0 || at + 4 > bytes.size())
            return -1;
        const quint8 kind = static_cast<quint8>(bytes[at + 3]);
        if (kind == 0xBA || kind == 0xBB)
            return at - 4;
    }
    return -1;
}

int MLPSampleRate(QByteArrayView accessUnit)
{
    if (accessUnit.size() < 10)
        return 0;
    // MLP: the widths of both groups, then the rates; TrueHD begins with the rate.
    const bool trueHD = static_cast<quint8>(accessUnit[7]) == 0xBA;
    const int rate = static_cast<quint8>(accessUnit[trueHD ? 8 : 9]) >> 4;
    return rate == 15 ? 0 : ((rate & 8) != 0 ? 44100 : 48000) << (rate & 7);
}

} // namespace Kestrune
