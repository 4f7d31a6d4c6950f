// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v2Library.h"

#include "ID3v1Library.h"
#include "ID3v2Library_p.h"
#include "uFilePath.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 ID3v2HeaderSize = 10;

struct TTagHeader {
    int Major = 0;
    int Minor = 0;
    quint8 Flags = 0;
    qint64 BodySize = 0; ///< as stated

    bool HasFooter() const { return Major == 4 && (Flags & 0x10) != 0; }
    qint64 FullSize() const { return ID3v2HeaderSize + BodySize + (HasFooter() ? ID3v2HeaderSize : 0); }
};

std::optional<TTagHeader> ParseHeader(QByteArrayView bytes)
{
    if (bytes.size() < ID3v2HeaderSize || !bytes.startsWith("ID3"))
        return std::nullopt;
    TTagHeader header;
    header.Major = static_cast<quint8>(bytes[3]);
    header.Minor = static_cast<quint8>(bytes[4]);
    header.Flags = static_cast<quint8>(bytes[5]);
    if (header.Major == 0xFF || header.Minor == 0xFF)
        return std::nullopt;
    const QByteArrayView size = bytes.sliced(6, 4);
    quint32 safe = 0;
    bool isSafe = true;
    for (const char byte : size) {
        isSafe = isSafe && static_cast<quint8>(byte) < 0x80;
        safe = safe << 7 | (static_cast<quint8>(byte) & 0x7F);
    }
    // Some writers store a plain number; a set high bit gives them away.
    header.BodySize = isSafe ? safe : TByteReader(size).U32BE();
    return header;
}

// Files of other formats in which a search for MPEG frames could only find false ones.
bool IsForeign(TByteSource& source, qint64 position)
{
    const QByteArray bytes = source.Read(position, 16);
    static constexpr QByteArrayView magics[] = {"fLaC",
                                                "OggS",
                                                "MAC ",
                                                "wvpk",
                                                "MP+",
                                                "MPCK",
                                                "TTA1",
                                                "OFR ",
                                                "RIFF",
                                                "FORM",
                                                QByteArrayView("\x30\x26\xB2\x75\x8E\x66\xCF\x11", 8),
                                                QByteArrayView("\x0B\x77", 2)};
    const QByteArrayView view(bytes);
    return std::ranges::any_of(magics, [&](QByteArrayView magic) { return view.startsWith(magic); }) ||
           (view.size() >= 8 && view.sliced(4, 4) == "ftyp");
}

} // namespace

qint64 ID3v2TagSize(TByteSource& source, qint64 position)
{
    char bytes[ID3v2HeaderSize];
    if (source.ReadAt(position, bytes, ID3v2HeaderSize) != ID3v2HeaderSize)
        return 0;
    const auto header = ParseHeader(QByteArrayView(bytes, ID3v2HeaderSize));
    return header ? std::min(header->FullSize(), source.Size() - position) : 0;
}

void TID3v2Tag::Clear()
{
    TID3v2Tag empty;
    empty.ParseAudioAttributes = ParseAudioAttributes;
    empty.ParseCoverArts = ParseCoverArts;
    empty.UseTLENForPlaytime = UseTLENForPlaytime;
    empty.APEv2TagSize = APEv2TagSize;
    empty.LyricsTagSize = LyricsTagSize;
    empty.BeginningSearchLength = BeginningSearchLength;
    empty.MPEGSearchLength = MPEGSearchLength;
    *this = std::move(empty);
}

int TID3v2Tag::LoadFromFile(const QString& fileName)
{
    Clear();
    const auto source = TFileSource::Open(TextToPath(fileName));
    if (!source)
        return TagResultNoFile;
    SourceFileName = fileName;
    return Load(*source);
}

int TID3v2Tag::Load(TByteSource& source)
{
    Clear();
    FFileSize = source.Size();
    int result = LoadTag(source, 0, FFileSize);
    FAudioStart = ID3v2TagSize(source, 0);
    const TTagPlace place = ReadContainer(source, FAudioStart);
    if (!Loaded && place.Size > 0)
        result = LoadTag(source, place.Offset, place.Offset + place.Size);
    if (FSourceFileType != sftUnknown || IsForeign(source, FAudioStart))
        return result;
    if (!Loaded && FAudioStart == 0)
        result = LoadTagAt(source);
    if (ParseAudioAttributes)
        ReadMPEG(source, FAudioStart);
    return result;
}

// Looks for a tag behind junk at the start of the file.
int TID3v2Tag::LoadTagAt(TByteSource& source)
{
    const QByteArray head = source.Read(0, BeginningSearchLength + ID3v2HeaderSize);
    for (qsizetype at = head.indexOf("ID3"); at >= 0; at = head.indexOf("ID3", at + 1)) {
        const auto header = ParseHeader(QByteArrayView(head).sliced(at));
        if (!header || header->Major < 2 || header->Major > 4 || at + header->FullSize() > FFileSize)
            continue;
        const int result = LoadTag(source, at, FFileSize);
        if (result == TagResultOk)
            FAudioStart = at + header->FullSize();
        return result;
    }
    return TagResultNoTag;
}

// Skips the extended header, whose form differs between versions 3 and 4. False when it is cut off.
bool TID3v2Tag::SkipExtendedHeader(QByteArrayView& body) const
{
    if (body.size() < 4)
        return false;
    // A frame where the header should be: the flag was set in error.
    const auto isIDCharacter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); };
    if (std::ranges::all_of(body.first(4), isIDCharacter))
        return true;
    quint32 plain = TByteReader(body).U32BE();
    qint64 size = 4 + static_cast<qint64>(plain);
    if (MajorVersion == 4) {
        size = (plain >> 24 & 0x7F) << 21 | (plain >> 16 & 0x7F) << 14 | (plain >> 8 & 0x7F) << 7 | (plain & 0x7F);
        size = std::max<qint64>(size, 6);
    }
    if (size > body.size())
        return false;
    body = body.sliced(size);
    return true;
}

int TID3v2Tag::LoadTag(TByteSource& source, qint64 position, qint64 end)
{
    char bytes[ID3v2HeaderSize];
    if (position > end - ID3v2HeaderSize || source.ReadAt(position, bytes, ID3v2HeaderSize) != ID3v2HeaderSize)
        return TagResultNoTag;
    const auto header = ParseHeader(QByteArrayView(bytes, ID3v2HeaderSize));
    if (!header)
        return TagResultNoTag;
    if (header->Major < 2 || header->Major > 4)
        return TagResultNotSupported;
    MajorVersion = header->Major;
    MinorVersion = header->Minor;
    Flags = header->Flags;
    Unsynchronised = (Flags & 0x80) != 0;
    Compressed = MajorVersion == 2 && (Flags & 0x40) != 0;
    ExtendedHeader = MajorVersion > 2 && (Flags & 0x40) != 0;
    Experimental = MajorVersion > 2 && (Flags & 0x20) != 0;
    FooterPresent = header->HasFooter();
    // Version 2 names a compression that was never defined: such a tag is to be passed over.
    if (Compressed)
        return TagResultNotSupported;
    QByteArray body =
        source.Read(position + ID3v2HeaderSize, std::min(header->BodySize, end - position - ID3v2HeaderSize));
    Size = ID3v2HeaderSize + body.size() + (FooterPresent ? ID3v2HeaderSize : 0);
    if (Unsynchronised && MajorVersion < 4 && LooksUnsynchronised(body))
        body = UndoUnsynchronisation(body);
    QByteArrayView rest(body);
    if (ExtendedHeader && !SkipExtendedHeader(rest))
        return TagResultCorrupt;
    if (rest.size() != body.size())
        body = body.sliced(body.size() - rest.size());
    Frames.Load(std::move(body), MajorVersion, Unsynchronised);
    if (!ParseCoverArts)
        Frames.DeleteAllFrames("APIC");
    PaddingSize = Frames.PaddingSize();
    Loaded = true;
    return TagResultOk;
}

TTagPlace TID3v2Tag::ReadContainer(TByteSource& source, qint64 position)
{
    FSourceFileType = ContainerAt(source, position);
    switch (FSourceFileType) {
    case sftWAVE:
    case sftRF64: ReadWAVInfo(source, position, WAVInfo); return WAVInfo.ID3;
    case sftAIFF: ReadAIFFInfo(source, position, AIFFInfo); return AIFFInfo.ID3;
    case sftDSF: ReadDSFInfo(source, position, DSFInfo); return DSFInfo.ID3;
    case sftDFF: ReadDFFInfo(source, position, DFFInfo); return DFFInfo.ID3;
    case sftMPEG:
    case sftUnknown: break;
    }
    return {};
}

void TID3v2Tag::ReadMPEG(TByteSource& source, qint64 position)
{
    // Some writers add a second tag and leave the first.
    for (int more = 0; more < 8; ++more) {
        const qint64 size = ID3v2TagSize(source, position);
        if (size == 0)
            break;
        position += size;
    }
    const qint64 audioEnd = FFileSize - ID3v1TagSize(source) - APEv2TagSize - LyricsTagSize;
    if (!ReadMPEGInfo(source, position, MPEGSearchLength, audioEnd, MPEGInfo))
        return;
    FSourceFileType = sftMPEG;
    const int length = UseTLENForPlaytime ? Frames.FrameExists("TLEN") : -1;
    const qint64 milliseconds =
        length >= 0 ? Frames.Items()[static_cast<size_t>(length)].GetUnicodeText().toLongLong() : 0;
    if (milliseconds > 0)
        MPEGInfo.PlayTime = static_cast<double>(milliseconds) / 1000;
}

TAudioAttributes TID3v2Tag::AudioAttributes() const
{
    if (!ParseAudioAttributes)
        return {};
    switch (FSourceFileType) {
    case sftMPEG:
        return {.Channels = MPEGChannels(MPEGInfo.Frame.ChannelMode),
                .SamplesPerSec = MPEGInfo.Frame.SampleRate,
                .BitsPerSample = 0,
                .PlayTime = MPEGInfo.PlayTime,
                .SampleCount = MPEGInfo.SampleCount,
                .BitRate = MPEGInfo.BitRate};
    case sftWAVE:
    case sftRF64: return WAVInfo.Audio;
    case sftAIFF: return AIFFInfo.Audio;
    case sftDSF: return DSFInfo.Audio;
    case sftDFF: return DFFInfo.Audio;
    case sftUnknown: break;
    }
    return {};
}

} // namespace Kestrune
