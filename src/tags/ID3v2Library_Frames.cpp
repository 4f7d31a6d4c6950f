// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v2Library.h"
#include "uDebugLog.h"

#include <algorithm>
#include <unordered_map>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// All frames of a tag together may inflate to this much: a small file must neither fill the memory nor keep us busy.
constexpr qint64 InflateBudget = 12 * 1024 * 1024;

bool IsIDCharacter(char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }

bool IsFrameID(QByteArrayView id) { return std::ranges::all_of(id, IsIDCharacter); }

quint32 SyncSafe(QByteArrayView bytes)
{
    quint32 value = 0;
    for (const char byte : bytes)
        value = value << 7 | (static_cast<quint8>(byte) & 0x7F);
    return value;
}

// Frames whose content begins with a text encoding.
bool HasEncoding(TFrameID id)
{
    static constexpr TFrameID others[] = {"WXXX", "COMM", "USLT", "APIC", "GEOB",
                                          "SYLT", "USER", "OWNE", "COMR", "IPLS"};
    return id.Bytes[0] == 'T' || std::ranges::find(others, id) != std::end(others);
}

struct TFrameFlags {
    bool TagAlter, FileAlter, ReadOnly, Compressed, Encrypted, Grouped, Unsynchronised, HasLength;
};

TFrameFlags FrameFlags(quint16 flags, int majorVersion)
{
    const auto bit = [flags](quint16 mask) { return (flags & mask) != 0; };
    if (majorVersion == 3)
        return {bit(0x8000), bit(0x4000), bit(0x2000), bit(0x80), bit(0x40), bit(0x20), false, bit(0x80)};
    return {bit(0x4000), bit(0x2000), bit(0x1000), bit(0x08), bit(0x04), bit(0x40), bit(0x02), bit(0x01)};
}

const std::unordered_map<std::string_view, TFrameID>& Version2Map()
{
    static const std::unordered_map<std::string_view, TFrameID> map = {
        {"BUF", "RBUF"},
        {"CNT", "PCNT"},
        {"COM", "COMM"},
        {"CRA", "AENC"},
        {"ETC", "ETCO"},
        {"EQU", "EQUA"},
        {"GEO", "GEOB"},
        {"IPL", "IPLS"},
        {"LNK", "LINK"},
        {"MCI", "MCDI"},
        {"MLL", "MLLT"},
        {"PIC", "APIC"},
        {"POP", "POPM"},
        {"REV", "RVRB"},
        {"RVA", "RVAD"},
        {"SLT", "SYLT"},
        {"STC", "SYTC"},
        {"TAL", "TALB"},
        {"TBP", "TBPM"},
        {"TCM", "TCOM"},
        {"TCO", "TCON"},
        {"TCR", "TCOP"},
        {"TDA", "TDAT"},
        {"TDY", "TDLY"},
        {"TEN", "TENC"},
        {"TFT", "TFLT"},
        {"TIM", "TIME"},
        {"TKE", "TKEY"},
        {"TLA", "TLAN"},
        {"TLE", "TLEN"},
        {"TMT", "TMED"},
        {"TOA", "TOPE"},
        {"TOF", "TOFN"},
        {"TOL", "TOLY"},
        {"TOR", "TORY"},
        {"TOT", "TOAL"},
        {"TP1", "TPE1"},
        {"TP2", "TPE2"},
        {"TP3", "TPE3"},
        {"TP4", "TPE4"},
        {"TPA", "TPOS"},
        {"TPB", "TPUB"},
        {"TRC", "TSRC"},
        {"TRD", "TRDA"},
        {"TRK", "TRCK"},
        {"TSI", "TSIZ"},
        {"TSS", "TSSE"},
        {"TT1", "TIT1"},
        {"TT2", "TIT2"},
        {"TT3", "TIT3"},
        {"TXT", "TEXT"},
        {"TXX", "TXXX"},
        {"TYE", "TYER"},
        {"UFI", "UFID"},
        {"ULT", "USLT"},
        {"WAF", "WOAF"},
        {"WAR", "WOAR"},
        {"WAS", "WOAS"},
        {"WCM", "WCOM"},
        {"WCP", "WCOP"},
        {"WPB", "WPUB"},
        {"WXX", "WXXX"},
        // not in the standard, written by a widespread player
        {"PCS", "PCST"},
        {"TCP", "TCMP"},
        {"TCT", "TCAT"},
        {"TDR", "TDRL"},
        {"TDS", "TDES"},
        {"TID", "TGID"},
        {"TKW", "TKWD"},
        {"TS2", "TSO2"},
        {"TSA", "TSOA"},
        {"TSC", "TSOC"},
        {"TSP", "TSOP"},
        {"TST", "TSOT"},
        {"WFD", "WFED"},
        {"GP1", "GRP1"},
        {"MVI", "MVIN"},
        {"MVN", "MVNM"}};
    return map;
}

} // namespace

std::optional<TFrameID> TID3v2Frames::Convertv2Tov3(QByteArrayView id)
{
    const auto& map = Version2Map();
    const auto found = map.find(std::string_view(id.data(), static_cast<size_t>(id.size())));
    return found == map.end() ? std::nullopt : std::optional(found->second);
}

QByteArray TID3v2Frames::Convertv2PICtoAPIC(QByteArrayView content)
{
    if (content.size() < 5)
        return {};
    const QByteArray format = content.sliced(1, 3).toByteArray().toUpper();
    QByteArray mime = format == "-->" ? format : "image/" + format.toLower();
    if (format == "JPG")
        mime = "image/jpeg";
    return content.first(1).toByteArray() + mime + '\0' + content.sliced(4).toByteArray();
}

void TID3v2Frames::Clear() { *this = {}; }

void TID3v2Frames::AddFault(TFrameID id, TID3v2FrameError error)
{
    FFaults.push_back({id, error});
    if (DebugLogActive())
        DebugLog(u"[ID3v2] frame %1 skipped, fault %2"_s.arg(QString::fromLatin1(id.Bytes.data(), 4).toHtmlEscaped(),
                                                             QString::number(static_cast<int>(error))));
}

void TID3v2Frames::Load(QByteArray body, int majorVersion, bool tagUnsynchronised)
{
    Clear();
    FBody = std::move(body);
    FMajorVersion = majorVersion;
    FTagUnsynchronised = tagUnsynchronised;
    FItems.reserve(24);
    TByteReader reader(FBody);
    while (FItems.size() + FFaults.size() < MostFields && LoadFrame(reader)) {
    }
    FPaddingSize = reader.Left();
}

// The size of a version 4 frame is syncsafe, but known writers store a plain number. Both readings agree below 128;
// above, the one counts after which a frame, padding or the end follows.
qint64 TID3v2Frames::FrameSize4(QByteArrayView header, const TByteReader& reader) const
{
    const QByteArrayView bytes = header.sliced(4, 4);
    const quint32 plain = TByteReader(bytes).U32BE();
    const quint32 safe = SyncSafe(bytes);
    if (plain == safe)
        return safe;
    const auto fits = [&](qint64 size) {
        if (size > reader.Left())
            return false;
        const QByteArrayView next = QByteArrayView(FBody).sliced(reader.Position() + size);
        return next.size() < 10 || next[0] == 0 || IsFrameID(next.first(4));
    };
    const bool isSafe = std::ranges::none_of(bytes, [](char byte) { return static_cast<quint8>(byte) >= 0x80; });
    if (isSafe && fits(safe))
        return safe;
    return fits(plain) || !isSafe ? plain : safe;
}

// Reads one frame; false at the padding, the end, or where the rest cannot be frames.
bool TID3v2Frames::LoadFrame(TByteReader& reader)
{
    const int headerSize = FMajorVersion == 2 ? 6 : 10;
    if (reader.Left() < headerSize)
        return false;
    const qint64 start = reader.Position();
    const QByteArrayView header = reader.Bytes(headerSize);
    if (header[0] == 0) {
        reader.Seek(start);
        return false;
    }
    TID3v2Frame frame;
    qint64 size = 0;
    bool known = true;
    if (FMajorVersion == 2) {
        size = TByteReader(header.sliced(3)).U24BE();
        known = IsFrameID(header.first(3));
        const auto id = Convertv2Tov3(header.first(3));
        frame.ID = id.value_or(TFrameID(header.first(3)));
    } else {
        size = FMajorVersion == 4 ? FrameSize4(header, reader) : TByteReader(header.sliced(4)).U32BE();
        frame.ID = TFrameID(header.first(4));
        frame.Flags = TByteReader(header.sliced(8)).U16BE();
        known = IsFrameID(header.first(4));
        // Writers that lift a tag to a later version sometimes leave the identifiers of three letters.
        if (!known && (header[3] == 0 || header[3] == ' ')) {
            const auto id = Convertv2Tov3(header.first(3));
            known = id.has_value();
            frame.ID = id.value_or(frame.ID);
        }
    }
    if (size > reader.Left()) {
        AddFault(frame.ID, known ? id3v2feSizeSpecifiedToLarge : id3v2feInvalidFrameID);
        return false;
    }
    const QByteArrayView content = reader.Bytes(size);
    frame.Size = static_cast<quint32>(size);
    if (!known)
        AddFault(frame.ID, id3v2feInvalidFrameID);
    else if (size == 0)
        AddFault(frame.ID, id3v2feNoContent);
    else if (FMajorVersion == 2 && frame.ID == TFrameID("APIC") && header[0] == 'P') {
        frame.SetOwned(Convertv2PICtoAPIC(content));
        LoadFrameData(frame, frame.Stream());
    } else
        LoadFrameData(frame, content);
    return true;
}

// Takes the bytes off that the flags announce before the content.
bool TID3v2Frames::TakeFlagData(TID3v2Frame& frame, QByteArrayView& content)
{
    const TFrameFlags flags = FrameFlags(frame.Flags, FMajorVersion);
    frame.TagAlterPreservation = flags.TagAlter;
    frame.FileAlterPreservation = flags.FileAlter;
    frame.ReadOnly = flags.ReadOnly;
    frame.Compressed = flags.Compressed;
    frame.Encrypted = flags.Encrypted;
    frame.Grouped = flags.Grouped;
    frame.Unsynchronised = FMajorVersion == 4 && (flags.Unsynchronised || FTagUnsynchronised);
    TByteReader reader(content);
    if (FMajorVersion == 3) {
        reader.Skip(flags.HasLength ? 4 : 0);
        reader.Skip(flags.Encrypted ? 1 : 0);
        frame.GroupIdentifier = flags.Grouped ? reader.U8() : quint8(0);
    } else {
        frame.GroupIdentifier = flags.Grouped ? reader.U8() : quint8(0);
        reader.Skip(flags.Encrypted ? 1 : 0);
        // Compression demands the length; where its flag is missing, the zlib header tells whether it is there.
        const bool hiddenLength =
            flags.Compressed && !flags.HasLength && reader.Left() > 4 && content[reader.Position()] != 0x78;
        reader.Skip(flags.HasLength || hiddenLength ? 4 : 0);
    }
    content = reader.Rest();
    return !reader.Failed();
}

void TID3v2Frames::LoadFrameData(TID3v2Frame& frame, QByteArrayView content)
{
    if (FMajorVersion > 2 && frame.Flags != 0 && !TakeFlagData(frame, content))
        return AddFault(frame.ID, id3v2feInvalidFlags);
    if (FMajorVersion == 4 && FTagUnsynchronised)
        frame.Unsynchronised = true;
    if (frame.Encrypted)
        return AddFault(frame.ID, id3v2feInvalidFlags);
    if (content.isEmpty())
        return AddFault(frame.ID, id3v2feNoContent);
    if (!frame.Compressed && HasEncoding(frame.ID) && static_cast<quint8>(content[0]) > 3)
        return AddFault(frame.ID, id3v2feInvalidTextEncoding);
    frame.SetView(content);
    FItems.push_back(std::move(frame));
}

int TID3v2Frames::FrameExists(TFrameID id) const
{
    const auto found = std::ranges::find(FItems, id, &TID3v2Frame::ID);
    return found == FItems.end() ? -1 : static_cast<int>(found - FItems.begin());
}

int TID3v2Frames::FrameTypeCount(TFrameID id) const
{
    return static_cast<int>(std::ranges::count(FItems, id, &TID3v2Frame::ID));
}

bool TID3v2Frames::DeleteFrame(int index)
{
    if (index < 0 || index >= static_cast<int>(FItems.size()))
        return false;
    FItems.erase(FItems.begin() + index);
    return true;
}

void TID3v2Frames::DeleteAllFrames(TFrameID id)
{
    std::erase_if(FItems, [id](const TID3v2Frame& frame) { return frame.ID == id; });
}

bool TID3v2Frames::RemoveUnsynchronisationOnAllFrames()
{
    bool changed = false;
    for (TID3v2Frame& frame : FItems)
        changed = frame.RemoveUnsynchronisation() || changed;
    return changed;
}

bool TID3v2Frames::DeCompressAllFrames()
{
    qint64 budget = InflateBudget;
    bool good = true;
    std::erase_if(FItems, [&](TID3v2Frame& frame) {
        if (!frame.Compressed || frame.DeCompress(budget))
            return false;
        AddFault(frame.ID, id3v2feContentToLarge);
        good = false;
        return true;
    });
    return good;
}

} // namespace Kestrune
