// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uChunks.h"
#include "uContainerInfo.h"
#include "uMPEGAudio.h"
#include "uTagTypes.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <utility>
#include <vector>

namespace Kestrune {

using TFrameID = TFourCC;

/// Why a frame was skipped.
enum class TID3v2FrameError : quint8 {
    id3v2feInvalidFrameID,
    id3v2feInvalidTextEncoding,
    id3v2feInvalidFlags,
    id3v2feNoContent,
    id3v2feContentToLarge,
    id3v2feSizeSpecifiedToLarge
};
using enum TID3v2FrameError;

/// Value of a COMM or USLT frame.
struct TID3v2Content {
    QString Language; ///< three letters as stored
    QString Description;
    QString Text;
};

/// Values of a TXXX frame, or the address of a WXXX frame.
struct TID3v2UserDefined {
    QString Description;
    QStringList Values;
};

/// Value of a POPM frame.
struct TID3v2Popularimeter {
    QString Email;
    quint8 Rating = 0;
    quint64 Counter = 0;
};

using TID3v2Pairs = std::vector<std::pair<QString, QString>>;

/// One frame. The value readers take the plain content, after unsynchronisation and compression were undone; what they
/// cannot read is empty.
class TID3v2Frame {
public:
    TFrameID ID;
    quint32 Size = 0; ///< of the content as stored in the tag
    quint16 Flags = 0;
    bool TagAlterPreservation = false;
    bool FileAlterPreservation = false;
    bool ReadOnly = false;
    bool Compressed = false;
    bool Encrypted = false;
    bool Grouped = false;
    bool Unsynchronised = false;
    quint8 GroupIdentifier = 0;

    /// The content; lives as long as the tag that owns the frame.
    QByteArrayView Stream() const { return FOwned.isNull() ? FView : QByteArrayView(FOwned); }
    void SetView(QByteArrayView view) { FView = view; }
    void SetOwned(QByteArray bytes) { FOwned = std::move(bytes); }

    bool RemoveUnsynchronisation();
    /// Inflates the content; at most `budget` bytes, which are taken off it. False when it is faulty or too large.
    bool DeCompress(qint64& budget);

    /// The first value of a text frame.
    QString GetUnicodeText() const;
    /// All values of a text frame that are not empty.
    QStringList GetUnicodeTextMultiple() const;
    TID3v2Content GetUnicodeContent() const;
    TID3v2UserDefined GetUnicodeUserDefinedTextInformationMultiple() const;
    TID3v2UserDefined GetUnicodeUserDefinedURLLink() const;
    QString GetURL() const;
    /// A PCNT counter of any length; one beyond 64 bits saturates.
    quint64 GetPlayCount() const;
    /// A POPM frame; nothing when it holds no rating.
    std::optional<TID3v2Popularimeter> GetPopularimeter() const;
    /// An APIC frame. Nothing when its fields are cut off or no bytes of the picture are there.
    std::optional<TTagPicture> GetUnicodeCoverPictureStream() const;
    /// Pairs of role and person of a TIPL or TMCL frame.
    TID3v2Pairs GetUnicodeListFrame() const;
    /// The same as one text: a line "role=person" for each pair.
    QString GetUnicodeListFrameText() const;

private:
    QByteArrayView FView;
    QByteArray FOwned;
};

struct TID3v2FrameFault {
    TFrameID ID;
    TID3v2FrameError Error;
};

/// The frames of a tag in their order.
class TID3v2Frames {
public:
    void Clear();
    /// Reads the frames of a tag body, which it keeps. Version 2 identifiers become those of version 3.
    void Load(QByteArray body, int majorVersion, bool tagUnsynchronised);

    const std::vector<TID3v2Frame>& Items() const { return FItems; }
    std::vector<TID3v2Frame>& Items() { return FItems; }
    /// Frames that were skipped, and why.
    const std::vector<TID3v2FrameFault>& Faults() const { return FFaults; }
    qint64 PaddingSize() const { return FPaddingSize; }

    /// Index of the first frame of that kind, or -1.
    int FrameExists(TFrameID id) const;
    int FrameTypeCount(TFrameID id) const;
    bool DeleteFrame(int index);
    void DeleteAllFrames(TFrameID id);
    bool RemoveUnsynchronisationOnAllFrames();
    bool DeCompressAllFrames();

    /// The version 3 identifier of a version 2 frame of three letters; nothing for an unknown one.
    static std::optional<TFrameID> Convertv2Tov3(QByteArrayView id);
    /// Rewrites the content of a version 2 PIC frame as that of an APIC frame; empty when it is cut off.
    static QByteArray Convertv2PICtoAPIC(QByteArrayView content);

private:
    bool LoadFrame(TByteReader& reader);
    void LoadFrameData(TID3v2Frame& frame, QByteArrayView content);
    bool TakeFlagData(TID3v2Frame& frame, QByteArrayView& content);
    qint64 FrameSize4(QByteArrayView header, const TByteReader& reader) const;
    void AddFault(TFrameID id, TID3v2FrameError error);

    QByteArray FBody;
    int FMajorVersion = 0;
    bool FTagUnsynchronised = false;
    qint64 FPaddingSize = 0;
    std::vector<TID3v2Frame> FItems;
    std::vector<TID3v2FrameFault> FFaults;
};

/// ID3v2.2 to ID3v2.4 tags (id3.org informal standards), at the start of a file or inside a WAVE, AIFF, DSF or DSDIFF
/// container, and the audio attributes of MPEG files and of these containers.
class TID3v2Tag {
public:
    // Set before loading.
    bool ParseAudioAttributes = true;
    bool ParseCoverArts = true; ///< false: frames with pictures are dropped
    bool UseTLENForPlaytime = false;
    qint64 APEv2TagSize = 0;              ///< at the file's end, not to be counted as sound
    qint64 LyricsTagSize = 0;             ///< likewise
    qint64 BeginningSearchLength = 1024;  ///< how far a tag is looked for when none stands at the start
    qint64 MPEGSearchLength = 256 * 1024; ///< how far the first MPEG frame is looked for

    // Results.
    bool Loaded = false;
    int MajorVersion = 0;
    int MinorVersion = 0;
    quint8 Flags = 0;
    bool Unsynchronised = false;
    bool Compressed = false;
    bool ExtendedHeader = false;
    bool Experimental = false;
    bool FooterPresent = false;
    qint64 Size = 0; ///< of the tag with header and footer, cut at the file's end
    qint64 PaddingSize = 0;
    QString SourceFileName;
    TID3v2Frames Frames;
    TMPEGInfo MPEGInfo;
    TWAVInfo WAVInfo;
    TAIFFInfo AIFFInfo;
    TDSFInfo DSFInfo;
    TDFFInfo DFFInfo;

    void Clear();
    /// A result of uTagTypes.h; 0 when a tag was read. The audio attributes are read in any case.
    int LoadFromFile(const QString& fileName);
    int Load(TByteSource& source);
    /// Reads the tag that begins at `position` and ends before `end`.
    int LoadTag(TByteSource& source, qint64 position, qint64 end);

    bool RemoveUnsynchronisationOnAllFrames() { return Frames.RemoveUnsynchronisationOnAllFrames(); }
    bool DeCompressAllFrames() { return Frames.DeCompressAllFrames(); }

    TSourceFileType SourceFileType() const { return FSourceFileType; }
    /// Attributes of the file by its kind; all 0 when it is none of the kinds read here.
    TAudioAttributes AudioAttributes() const;

private:
    int LoadTagAt(TByteSource& source);
    TTagPlace ReadContainer(TByteSource& source, qint64 position);
    void ReadMPEG(TByteSource& source, qint64 position);
    bool SkipExtendedHeader(QByteArrayView& body) const;

    TSourceFileType FSourceFileType = sftUnknown;
    qint64 FFileSize = 0;
    qint64 FAudioStart = 0;
};

/// Size of the ID3v2 tag that begins at `position`, with header and footer; 0 when there is none.
qint64 ID3v2TagSize(TByteSource& source, qint64 position);

} // namespace Kestrune
