// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <functional>
#include <memory>

namespace Kestrune {

/// The two seconds before the first track, in frames of 1/75 s: addresses leave them out, offsets count them.
inline constexpr int DiscLeadIn = 150;
/// The most tracks an audio CD can have (IEC 60908).
inline constexpr int DiscMaxTracks = 99;

struct TRawTOCEntry {
    int Control = 0; ///< the nibble of the Q channel: bit 2 marks a data track
    int Address = 0; ///< where the track starts, in frames, without the lead-in
};

/// A table of contents as a drive tells it; nothing in it is checked.
struct TRawTOC {
    int First = 0;
    int Last = 0;
    std::array<TRawTOCEntry, DiscMaxTracks + 1> Entries{}; ///< by track number; 0 is the lead-out
};

/// A CD drive that is open; the destructor closes it.
class TCDDrive {
public:
    /// The number of the entry that ReadEntry has for the lead-out.
    static constexpr int LeadOutTrack = 0xAA;

    virtual ~TCDDrive() = default;
    /// Numbers of the first and the last track, as the drive has them. False without a disc.
    virtual bool ReadHeader(int& first, int& last) = 0;
    /// The entry of a track from 1 to 99, or of the lead-out.
    virtual bool ReadEntry(int track, TRawTOCEntry& entry) = 0;
    /// Unlocks the door and opens the tray.
    virtual bool Eject() = 0;
};

using TOpenCDDrive = std::function<std::unique_ptr<TCDDrive>(const QString& device)>;

/// Opens a drive by the path of its device, such as "/dev/sr0", also when it is empty. Null when it cannot be opened.
std::unique_ptr<TCDDrive> OpenCDDrive(const QString& device);

/// Reads the whole table; numbers of tracks that no disc can have are handed on, but not asked for.
bool ReadRawTOC(TCDDrive& drive, TRawTOC& toc);

/// The audio tracks of one disc and its identifier by the MusicBrainz disc ID rule. Offsets are frames of 1/75 s from
/// the start of the disc, with the lead-in.
class TDiscId {
public:
    /// Reads the disc in a drive. False, with a text in ErrorMsg, when there is none or it has no audio.
    bool Read(const QString& device, const TOpenCDDrive& open = OpenCDDrive);
    /// Takes the audio tracks of a table over: data tracks at the end, and what lies behind the end of the audio
    /// session, are left out. Any numbers may stand in the table.
    bool ReadRaw(const TRawTOC& toc);

    bool Success() const { return FSuccess; }
    /// Why the last Read or ReadRaw failed; empty if it did not.
    QString ErrorMsg() const { return FErrorMsg; }
    /// 28 characters, or empty without success.
    QByteArray GetId();
    int GetFirstTrackNum() const { return FFirstTrackNum; }
    int GetLastTrackNum() const { return FLastTrackNum; }
    /// -1 for a number out of the first to the last track, and without success.
    int GetTrackOffset(int trackNum) const;
    /// Frames up to the next track or the lead-out; -1 as for the offset.
    int GetTrackLength(int trackNum) const;

private:
    bool Fail(const QString& text);
    bool TakeLeadOut(const TRawTOC& toc);

    int FFirstTrackNum = 0;
    int FLastTrackNum = 0;
    std::array<int, DiscMaxTracks + 1> FTrackOffsets{}; // 0 is the lead-out
    QByteArray FId;
    QString FErrorMsg;
    bool FSuccess = false;
};

} // namespace Kestrune
