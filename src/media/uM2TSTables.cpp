// SPDX-License-Identifier: GPL-3.0-or-later
#include "uM2TSTables.h"

#include "uByteReader.h"

#include <algorithm>
#include <functional>

namespace Kestrune {

namespace {

constexpr int AssociationPID = 0;
constexpr quint8 AssociationTable = 0, MapTable = 2;
constexpr quint8 RegistrationDescriptor = 5;
constexpr qsizetype LongestSection = 4096;
constexpr int SectionHead = 3, SectionTail = 4; // the tail is a checksum

void ForEachDescriptor(QByteArrayView bytes, const std::function<void(quint8 tag, QByteArrayView content)>& handler)
{
    TByteReader reader(bytes);
    while (reader.Left() >= 2) {
        const quint8 tag = reader.U8();
        const quint8 length = reader.U8();
        handler(tag, reader.Bytes(std::min<qint64>(length, reader.Left())));
    }
}

TM2TSCodec CodecOfDescriptor(quint8 tag, QByteArrayView content)
{
    switch (tag) {
    case 0x6A: return mcAC3;
    case 0x7A: return mcEAC3;
    case 0x7B: return mcDTS;
    case 0x7C: return mcAAC;
    default: break;
    }
    if (tag != RegistrationDescriptor)
        return mcUnknown;
    if (content.startsWith("AC-3"))
        return mcAC3;
    if (content.startsWith("EAC3"))
        return mcEAC3;
    return content.startsWith("DTS") ? mcDTS : mcUnknown;
}

} // namespace

bool TM2TSTables::Take(quint16 pid, bool starts, QByteArrayView payload)
{
    if (FMapRead || pid != (FMapPID < 0 ? AssociationPID : FMapPID))
        return !FMapRead;
    if (starts) {
        const qsizetype pointer = 1 + static_cast<quint8>(payload[0]);
        FSection = pointer < payload.size() ? payload.sliced(pointer).toByteArray() : QByteArray();
    } else if (!FSection.isEmpty()) {
        FSection.append(payload);
    }
    if (FSection.size() < SectionHead)
        return true;
    TByteReader reader(FSection);
    const quint8 table = reader.U8();
    const qsizetype length = SectionHead + (reader.U16BE() & 0xFFF);
    if (FSection.size() < length && FSection.size() < LongestSection)
        return true;
    FSection.truncate(length - SectionTail);
    if (FMapPID < 0 && table == AssociationTable)
        TakeAssociation();
    else if (FMapPID >= 0 && table == MapTable)
        TakeMap();
    FSection.clear();
    return !FMapRead;
}

void TM2TSTables::TakeAssociation()
{
    TByteReader reader(FSection);
    reader.Skip(8);
    while (reader.Left() >= 4) {
        const quint16 program = reader.U16BE();
        const quint16 pid = reader.U16BE() & 0x1FFF;
        if (program != 0 && pid != AssociationPID) {
            FMapPID = pid;
            return;
        }
    }
}

void TM2TSTables::TakeMap()
{
    TByteReader reader(FSection);
    reader.Skip(10);
    const qint64 infoLength = reader.U16BE() & 0xFFF;
    ForEachDescriptor(reader.Bytes(std::min(infoLength, reader.Left())), [this](quint8 tag, QByteArrayView content) {
        FBluray = FBluray || (tag == RegistrationDescriptor && content.startsWith("HDMV"));
    });
    while (reader.Left() >= 5) {
        const quint8 type = reader.U8();
        const quint16 pid = reader.U16BE() & 0x1FFF;
        const qint64 length = reader.U16BE() & 0xFFF;
        const QByteArrayView descriptors = reader.Bytes(std::min(length, reader.Left()));
        if (const TM2TSCodec codec = CodecOf(type, descriptors); codec != mcUnknown)
            FStreams.push_back({pid, codec});
    }
    FMapRead = true;
}

TM2TSCodec TM2TSTables::CodecOf(quint8 streamType, QByteArrayView descriptors) const
{
    switch (streamType) {
    case 0x03:
    case 0x04: return mcMPEG;
    case 0x0F:
    case 0x11: return mcAAC;
    case 0x80: return FBluray ? mcLPCM : mcUnknown; // video elsewhere
    case 0x81: return mcAC3;
    case 0x82: return mcDTS;
    case 0x83: return mcTrueHD;
    case 0x84:
    case 0xA1: return mcEAC3;
    case 0x85:
    case 0x86:
    case 0xA2: return mcDTSHD;
    case 0x87: return mcEAC3; // ATSC
    default: break;
    }
    TM2TSCodec codec = mcUnknown;
    if (streamType == 0x06) // private data, named by its descriptors
        ForEachDescriptor(descriptors, [&](quint8 tag, QByteArrayView content) {
            if (codec == mcUnknown)
                codec = CodecOfDescriptor(tag, content);
        });
    return codec;
}

} // namespace Kestrune
