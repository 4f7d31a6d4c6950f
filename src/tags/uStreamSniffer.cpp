// SPDX-License-Identifier: GPL-3.0-or-later
#include "uStreamSniffer.h"

#include "ID3v2Library.h"
#include "uMPEGplus.h"
#include "uOggTag.h"
#include "uWAVPackfile.h"

#include <algorithm>

namespace Kestrune {

namespace {

TStreamType SniffMagic(QByteArrayView head)
{
    static constexpr std::pair<QByteArrayView, TStreamType> magics[] = {
        {"RIFF", stWAV},     {"RF64", stRF64},    {"MAC", stMonkey}, {"OFR ", stOptimFROG},
        {"MP+", stMusepack}, {"MPC", stMusepack}, {"fLaC", stFlac},  {"DSD ", stDSF}};
    for (const auto& [magic, type] : magics)
        if (head.startsWith(magic))
            return type;
    if (head.size() >= 16 && head.startsWith("FRM8") && head.sliced(12, 4) == "DSD ")
        return stDFF;
    return stUnknown;
}

TStreamType SniffOgg(TByteSource& source, qint64 position)
{
    if (source.Read(position + 29, 4) == "FLAC")
        return stOggFlac;
    TWindowSource window(source, position, source.Size() - position);
    TOpusTag tag;
    tag.ParseCoverArts = false;
    tag.Load(window);
    switch (tag.Format) {
    case ofVorbis: return stOggVorbis;
    case ofOpus: return stOpus;
    case ofTheora: return stTheora;
    default: return stUnknown;
    }
}

bool HasFrameMark(QByteArrayView bytes)
{
    static constexpr quint8 seconds[] = {0xF9, 0xFA, 0xFB, 0xFC, 0xFD, 0xF2, 0xF3, 0xE3};
    for (qsizetype i = bytes.indexOf('\xFF'); i >= 0 && i + 1 < bytes.size(); i = bytes.indexOf('\xFF', i + 1))
        if (std::ranges::find(seconds, static_cast<quint8>(bytes[i + 1])) != std::end(seconds))
            return true;
    return false;
}

} // namespace

TStreamType SniffStream(TByteSource& source)
{
    const qint64 position = ID3v2TagSize(source, 0);
    const QByteArray head = source.Read(position, 16);
    if (const TStreamType type = SniffMagic(head); type != stUnknown)
        return type;
    if (head.startsWith("OggS"))
        if (const TStreamType type = SniffOgg(source, position); type != stUnknown)
            return type;
    if (head.startsWith("FORM")) {
        const QByteArray form = head.mid(8, 4);
        if (form == "AIFF" || form == "AIFC")
            return form == "AIFF" ? stAIFF : stAIFC;
    }
    const qsizetype type = 4 + (head.startsWith(QByteArrayView("\0\0\0\1", 4)) ? 8 : 0);
    if (head.mid(type, 4) == "ftyp")
        return stMP4;
    TWindowSource window(source, position, source.Size() - position);
    if (TWAVPackfile().Load(window, 0))
        return stWAVPack;
    if (TMPEGplus().Load(window, 0, 0))
        return stMusepack;
    return HasFrameMark(source.Read(position, 1026)) ? stMPEG : stUnknown;
}

} // namespace Kestrune
