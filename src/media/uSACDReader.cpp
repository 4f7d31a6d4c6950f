// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSACDReader.h"

#include "uDebugLog.h"
#include "uFields.h"
#include "uFilePath.h"
#include "uISOReader.h"

#include <QStringDecoder>

#include <algorithm>
#include <exception>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 MasterTOCSector = 510;
constexpr qint64 MasterTOCSectors = 10;
constexpr qint64 SmallestSACD = 0xFF800;
constexpr int MostItems = 16;

void LogSACD(const QString& text) { DebugLog(u"[SACD] "_s + text); }

int InRange(int value, int least, int most, int otherwise) { return value < least || value > most ? otherwise : value; }

const char* CodePageOf(int charset)
{
    switch (charset) {
    case 3: return "windows-31j"; // code page 932
    case 4: return "windows-949";
    case 5: return "windows-936";
    case 6: return "windows-950";
    default: return "windows-1252";
    }
}

int Flag(bool value) { return value ? 1 : 0; }

} // namespace

bool TSACDReader::IsSACDImage(const QString& path)
{
    const auto image = TFileSource::Open(TextToPath(path));
    return image && IsSACDImage(*image);
}

bool TSACDReader::IsSACDImage(TByteSource& image)
{
    return image.Size() >= SmallestSACD && image.Read(MasterTOCSector * DiscSectorSize, 8) == "SACDMTOC";
}

bool TSACDReader::Open(const QString& isoPath) { return Open(TFileSource::Open(TextToPath(isoPath))); }

bool TSACDReader::Open(std::shared_ptr<TByteSource> image)
{
    Close();
    if (!image || image->Size() < SmallestSACD)
        return false;
    FStream = std::move(image);
    try {
        if (ReadMasterTOC() && FArea1LSN != 0 && FArea1Size != 0 && FArea1LSN * DiscSectorSize < FStream->Size()) {
            FArea1Buf = FStream->Read(FArea1LSN * DiscSectorSize, FArea1Size * DiscSectorSize);
            if (ReadAreaTOC())
                WalkArea();
        }
    } catch (const std::exception& failure) {
        LogSACD(u"Open error: "_s + QString::fromUtf8(failure.what()));
        FTracks.clear();
    }
    FValid = !FTracks.empty();
    if (!FValid)
        Close();
    return FValid;
}

void TSACDReader::Close() { *this = TSACDReader(); }

bool TSACDReader::ReadMasterTOC()
{
    const QByteArray toc = FStream->Read(MasterTOCSector * DiscSectorSize, MasterTOCSectors * DiscSectorSize);
    if (toc.size() < MasterTOCSectors * DiscSectorSize) {
        LogSACD(u"Open error: the master table of contents is cut off"_s);
        return false;
    }
    if (!toc.startsWith("SACDMTOC")) {
        LogSACD(u"Master TOC signature mismatch"_s);
        return false;
    }
    FAlbum.DiscCount = InRange(TFields(toc).U16BE(16), 1, 99, 1);
    FAlbum.DiscNo = InRange(TFields(toc).U16BE(18), 1, 99, 1);
    FAlbum.CatalogNumber = QString::fromLatin1(toc.mid(24, 16)).remove(QChar(u'\0')).trimmed();
    FArea1LSN = TFields(toc).U32BE(64);
    FArea2LSN = TFields(toc).U32BE(72);
    FAlbum.IsHybrid = (TFields(toc).U8(80) & 1) != 0;
    FArea1Size = TFields(toc).U16BE(84);
    FArea2Size = TFields(toc).U16BE(86);
    FAlbum.Year = InRange(TFields(toc).U16BE(120), 1900, 2100, 0);
    FAlbum.Month = InRange(TFields(toc).U8(122), 1, 12, 0);
    FAlbum.Day = InRange(TFields(toc).U8(123), 1, 31, 0);
    FCharset = TFields(toc).U8(138) & 7;
    if (const QByteArray second = toc.mid(DiscSectorSize, DiscSectorSize); second.startsWith("SACDText"))
        ReadMasterText(second);
    LogSACD(u"MasterTOC: catalog=\"%1\" disc=%2/%3 hybrid=%4 area1=LSN%5+%6 area2=LSN%7+%8 date=%9-"_s
                .arg(FAlbum.CatalogNumber)
                .arg(FAlbum.DiscNo)
                .arg(FAlbum.DiscCount)
                .arg(Flag(FAlbum.IsHybrid))
                .arg(FArea1LSN)
                .arg(FArea1Size)
                .arg(FArea2LSN)
                .arg(FArea2Size)
                .arg(FAlbum.Year) +
            u"%1-%2"_s.arg(FAlbum.Month).arg(FAlbum.Day));
    return true;
}

void TSACDReader::ReadMasterText(const QByteArray& sector)
{
    const std::pair<int, QString*> fields[] = {{16, &FAlbum.Title},     {18, &FAlbum.Artist},
                                               {20, &FAlbum.Publisher}, {22, &FAlbum.Copyright},
                                               {32, &FAlbum.DiscTitle}, {34, &FAlbum.DiscArtist}};
    for (const auto& [at, field] : fields)
        if (const quint16 offset = TFields(sector).U16BE(at); offset != 0)
            *field = DecodeText(sector.mid(offset));
    if (FAlbum.Title.isEmpty())
        FAlbum.Title = FAlbum.DiscTitle;
    if (FAlbum.Artist.isEmpty())
        FAlbum.Artist = FAlbum.DiscArtist;
    LogSACD(u"MasterText: title=\"%1\" artist=\"%2\" publisher=\"%3\""_s.arg(FAlbum.Title, FAlbum.Artist,
                                                                             FAlbum.Publisher));
}

QString TSACDReader::DecodeText(QByteArray bytes) const
{
    if (const qsizetype end = bytes.indexOf('\0'); end >= 0)
        bytes.truncate(end);
    for (char& byte : bytes)
        if (static_cast<quint8>(byte) < 0x20)
            byte = ' ';
    const QString text =
        bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString(QStringDecoder(CodePageOf(FCharset)).decode(bytes));
    return text.trimmed();
}

bool TSACDReader::ReadAreaTOC()
{
    const QByteArray& toc = FArea1Buf;
    if (toc.size() < 160 || (!toc.startsWith("TWOCHTOC") && !toc.startsWith("MULCHTOC"))) {
        LogSACD(u"Area TOC signature mismatch"_s);
        return false;
    }
    FDSDRate = TFields(toc).U8(20) == 8 ? 5644800 : 2822400;
    FDSTEncoded = (TFields(toc).U8(21) & 15) == 0;
    FChannels = TFields(toc).U8(32);
    if (FChannels == 0 || FChannels >= 7)
        FChannels = 2;
    FLoudspeakerConfig = TFields(toc).U8(33) >> 3;
    FTrackOffset = TFields(toc).U8(68);
    FTrackCount = TFields(toc).U8(69);
    if (FTrackCount > 99)
        FTrackCount = 0;
    LogSACD(u"AreaTOC: rate=%1 channels=%2 dst=%3 tracks=%4 area_size=%5"_s.arg(FDSDRate)
                .arg(FChannels)
                .arg(Flag(FDSTEncoded))
                .arg(FTrackCount)
                .arg(TFields(toc).U16BE(10)));
    return true;
}

void TSACDReader::WalkArea()
{
    if (FArea1Buf.size() <= DiscSectorSize)
        return;
    FTracks.clear();
    for (int i = 1; i <= FTrackCount; ++i) {
        TSACDTrackInfo& track = FTracks.emplace_back();
        track.TrackNo = i;
        track.Channels = FChannels;
        track.DSDRate = FDSDRate;
        track.DSTEncoded = FDSTEncoded;
    }
    bool textRead = false;
    for (qsizetype at = DiscSectorSize; at + 8 <= FArea1Buf.size();) {
        const QByteArray name = FArea1Buf.mid(at, 8);
        LogSACD(u"Sub-sector at +%1: \"%2\""_s.arg(at / DiscSectorSize).arg(QString::fromLatin1(name)));
        qint64 advance = DiscSectorSize;
        if (name == "SACDTTxt") {
            if (!textRead)
                ReadTrackText(at);
            textRead = true;
        } else if (name == "SACD_IGL") {
            advance = 4096;
        } else if (name == "SACD_ACC") {
            advance = 65536;
        } else if (name == "SACDTRL1") {
            ReadPositions(at);
        } else if (name == "SACDTRL2") {
            ReadTimes(at);
        } else {
            LogSACD(u"Unknown sub-sector magic, stopping walker"_s);
            break;
        }
        at += advance;
    }
}

void TSACDReader::ReadPositions(qsizetype at)
{
    for (qsizetype i = 0; i < static_cast<qsizetype>(FTracks.size()); ++i) {
        FTracks[static_cast<size_t>(i)].StartLSN = TFields(FArea1Buf).U32BE(at + 8 + 4 * i);
        FTracks[static_cast<size_t>(i)].LengthLSN = TFields(FArea1Buf).U32BE(at + 1028 + 4 * i);
    }
}

void TSACDReader::ReadTimes(qsizetype at)
{
    for (qsizetype i = 0; i < static_cast<qsizetype>(FTracks.size()); ++i) {
        const qint64 time = at + 1028 + 4 * i;
        FTracks[static_cast<size_t>(i)].DurationSec =
            TFields(FArea1Buf).U8(time) * 60 + TFields(FArea1Buf).U8(time + 1) + TFields(FArea1Buf).U8(time + 2) / 75.0;
    }
}

// The offsets and texts of a track text sector may reach into the sectors behind it.
void TSACDReader::ReadTrackText(qsizetype start)
{
    for (qsizetype i = 0; i < static_cast<qsizetype>(FTracks.size()); ++i) {
        const quint16 offset = TFields(FArea1Buf).U16BE(start + 8 + 2 * i);
        qsizetype at = start + offset;
        if (offset == 0 || at + 4 > FArea1Buf.size())
            continue;
        TSACDTrackInfo& track = FTracks[static_cast<size_t>(i)];
        const int items = std::min<int>(TFields(FArea1Buf).U8(at), MostItems);
        at += 4;
        for (int item = 0; item < items && at + 2 < FArea1Buf.size(); ++item) {
            const quint8 type = TFields(FArea1Buf).U8(at);
            at += 2;
            const qsizetype end = FArea1Buf.indexOf('\0', at);
            const QString text = DecodeText(FArea1Buf.mid(at, end < 0 ? -1 : end - at));
            QString* target = type == 1                ? &track.Title
                              : type == 2 || type == 5 ? &track.Performer
                              : type == 3 || type == 4 ? &track.Composer
                                                       : nullptr;
            if (target && target->isEmpty())
                *target = text;
            if (end < 0)
                break;
            at = end + 1;
            while (item < items - 1 && at < FArea1Buf.size() && FArea1Buf[at] == 0)
                ++at;
        }
        if (track.Artist.isEmpty())
            track.Artist = track.Performer;
    }
}

} // namespace Kestrune
