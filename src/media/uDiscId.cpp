// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDiscId.h"

#include <QCryptographicHash>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// From the end of the first session of a multi-session disc to the first track of the next: 150 seconds.
constexpr int SessionGap = 11250;
constexpr int DataTrackBit = 4;
// Far above the last frame of any disc, also of a DVD or Blu-ray disc, and far below what could overflow in a sum.
constexpr int FarthestAddress = 1 << 30;

bool IsAudio(const TRawTOCEntry& entry) { return (entry.Control & DataTrackBit) == 0; }

bool IsSane(const TRawTOCEntry& entry) { return entry.Address >= -FarthestAddress && entry.Address <= FarthestAddress; }

QByteArray UpperHex(int number, int width)
{
    return QByteArray::number(static_cast<uint>(number), 16).toUpper().rightJustified(width, '0');
}

QString UnreadableText() { return u"Error while reading the CD TOC"_s; }
QString NoAudioText() { return u"No actual audio tracks on disc: CDROM or DVD?"_s; }

} // namespace

bool ReadRawTOC(TCDDrive& drive, TRawTOC& toc)
{
    toc = {};
    if (!drive.ReadHeader(toc.First, toc.Last))
        return false;
    // A broken drive may name any track; the table has room for these only.
    for (int track = std::max(toc.First, 1); track <= std::min(toc.Last, DiscMaxTracks); ++track) {
        if (!drive.ReadEntry(track, toc.Entries[static_cast<size_t>(track)]))
            return false;
    }
    return drive.ReadEntry(TCDDrive::LeadOutTrack, toc.Entries[0]);
}

bool TDiscId::Fail(const QString& text)
{
    *this = {};
    FErrorMsg = text;
    return false;
}

bool TDiscId::Read(const QString& device, const TOpenCDDrive& open)
{
    const std::unique_ptr<TCDDrive> drive = open(device);
    if (!drive)
        return Fail(u"Cannot open the CD audio device '%1'"_s.arg(device));
    // The first read only wakes the drive up: what it brings may be of the disc before.
    TRawTOC toc;
    if (!ReadRawTOC(*drive, toc) || !ReadRawTOC(*drive, toc))
        return Fail(UnreadableText());
    return ReadRaw(toc);
}

bool TDiscId::ReadRaw(const TRawTOC& toc)
{
    *this = {};
    if (toc.First < 1)
        return Fail(u"Invalid CD TOC - first track number must be 1 or higher"_s);
    if (toc.Last < 1 || toc.Last > DiscMaxTracks)
        return Fail(u"Invalid CD TOC - last track number must be 99 or lower"_s);
    FFirstTrackNum = toc.First;
    FLastTrackNum = toc.Last;
    while (FLastTrackNum >= FFirstTrackNum && !IsAudio(toc.Entries[static_cast<size_t>(FLastTrackNum)]))
        --FLastTrackNum;
    if (FLastTrackNum < FFirstTrackNum)
        return Fail(NoAudioText());
    if (!std::all_of(toc.Entries.begin() + FFirstTrackNum, toc.Entries.begin() + toc.Last + 1, IsSane) ||
        !IsSane(toc.Entries[0]))
        return Fail(UnreadableText());
    for (auto track = static_cast<size_t>(FFirstTrackNum); track <= static_cast<size_t>(FLastTrackNum); ++track)
        FTrackOffsets[track] = std::max(toc.Entries[track].Address, 0) + DiscLeadIn;
    if (!TakeLeadOut(toc))
        return Fail(NoAudioText());
    FSuccess = true;
    return true;
}

bool TDiscId::TakeLeadOut(const TRawTOC& toc)
{
    int& leadOut = FTrackOffsets[0];
    leadOut = FLastTrackNum == toc.Last ? toc.Entries[0].Address + DiscLeadIn
                                        : toc.Entries[static_cast<size_t>(FLastTrackNum) + 1].Address - SessionGap;
    // Audio behind that end belongs to a later session.
    while (leadOut < FTrackOffsets[static_cast<size_t>(FLastTrackNum)]) {
        const auto dropped = static_cast<size_t>(FLastTrackNum);
        if (--FLastTrackNum < FFirstTrackNum)
            return false;
        FTrackOffsets[dropped] = 0;
        leadOut = toc.Entries[dropped].Address - SessionGap;
    }
    return true;
}

QByteArray TDiscId::GetId()
{
    if (!FSuccess || !FId.isEmpty())
        return FId;
    QCryptographicHash sha1(QCryptographicHash::Sha1);
    sha1.addData(UpperHex(FFirstTrackNum, 2));
    sha1.addData(UpperHex(FLastTrackNum, 2));
    for (const int offset : FTrackOffsets)
        sha1.addData(UpperHex(offset, 8));
    // Base64 (RFC 4648) with characters that need no escape in an address.
    FId = sha1.result().toBase64().replace('+', '.').replace('/', '_').replace('=', '-');
    return FId;
}

int TDiscId::GetTrackOffset(int trackNum) const
{
    if (!FSuccess || trackNum < FFirstTrackNum || trackNum > FLastTrackNum)
        return -1;
    return FTrackOffsets[static_cast<size_t>(trackNum)];
}

int TDiscId::GetTrackLength(int trackNum) const
{
    const int offset = GetTrackOffset(trackNum);
    if (offset < 0)
        return -1;
    return FTrackOffsets[trackNum == FLastTrackNum ? 0 : static_cast<size_t>(trackNum) + 1] - offset;
}

} // namespace Kestrune
