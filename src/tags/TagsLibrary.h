// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uTagTypes.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <memory>
#include <vector>

namespace Kestrune {

class TAPEv2Tag;
class TByteSource;
class TFlacTag;
class TID3v1Tag;
class TID3v2Tag;
class TMonkey;
class TMP4Tag;
class TMPEGplus;
class TOpusTag;
class TTags;
class TWAVPackfile;
class TWAVTag;
class TWMATag;
struct TTagBatch;

enum class TTagType : quint8 {
    ttNone,
    ttAutomatic,
    ttAPEv2,
    ttFlac,
    ttID3v1,
    ttID3v2,
    ttMP4,
    ttOpusVorbis,
    ttWAV,
    ttWMA,
    ttMP4Xtra,
    ttLyrics2
};
using enum TTagType;

/// User-defined frames of ID3v2.
enum class TExtTagType : quint8 { ettUnknown, ettTXXX, ettWXXX };
using enum TExtTagType;

using TTagLoadPriority = std::array<TTagType, 9>;

/// Which tag wins where several are present, the strongest first. Every `TTags` starts with a copy.
inline constexpr TTagLoadPriority DefaultTagLoadPriority = {ttFlac,  ttOpusVorbis, ttMP4, ttWAV, ttID3v2,
                                                            ttAPEv2, ttID3v1,      ttWMA, ttNone};

/// One name and value of the unified list, owned by its `TTags`.
struct TTag {
    QString Name; ///< upper case for mapped names; a user-defined name keeps its own case
    QString Value;
    QString Language;    ///< three letters, of COMM and USLT frames
    QString Description; ///< of COMM, USLT, TXXX and WXXX frames
    TExtTagType ExtTagType = ettUnknown;
    TTags* Parent = nullptr; ///< not owned
    bool AlreadyParsed = false;

    /// Removes this tag from its owner and destroys it.
    bool Remove();
    int GetIndex() const;
};

/// One picture, owned by its `TTags`.
struct TCoverArt {
    QString Name;
    QByteArray Stream; ///< the encoded picture, as stored in the file
    QString Description;
    int CoverType = 0; ///< picture type of ID3v2, see CoverTypeText
    QString MIMEType;
    TTagPictureFormat PictureFormat = tpfUnknown; ///< by the picture's first bytes
    int Width = 0; ///< as stored by FLAC picture blocks, like the next three; otherwise 0
    int Height = 0;
    int ColorDepth = 0;
    int NoOfColors = 0;
    TTags* Parent = nullptr; ///< not owned
    bool AlreadyParsed = false;

    int GetIndex() const;
};

/// English text of an ID3v2 picture type, as "Cover (front)" for 3; empty outside 0 to 20.
QString CoverTypeText(int coverType);

/// Facts about the audio stream, from the reader that knows the file best. Computed on request.
class TSourceAudioAttributes {
public:
    explicit TSourceAudioAttributes(const TTags& parent);
    ~TSourceAudioAttributes();

    int Channels() const;
    int SamplesPerSec() const;
    int BitsPerSample() const;
    double PlayTime() const;    ///< seconds
    qint64 SampleCount() const; ///< per channel
    qint64 BitRate() const;     ///< bits per second

    /// Present for a ".wv", ".mpc" or ".ape" file that was read with the option of that kind; the one that is there
    /// answers alone.
    std::unique_ptr<TWAVPackfile> WAVPackAttributes;
    std::unique_ptr<TMPEGplus> MusePackAttributes;
    std::unique_ptr<TMonkey> MonkeyAttributes;

    const TTags& Parent() const { return FParent; }

private:
    const TAudioAttributes* Special() const;
    template <typename T>
    T ByPriority(T TAudioAttributes::*field) const;

    const TTags& FParent;
};

/// The one front through which audio files are read: asks every format reader, merges what they found into one list
/// of names and values and one of pictures, and tells about the audio stream. Used by one thread at a time. Never
/// throws; a reader that fails has found nothing.
class TTags {
public:
    TTags();
    ~TTags();
    TTags(const TTags&) = delete;
    TTags& operator=(const TTags&) = delete;

    // Options, set before loading.
    TTagLoadPriority TagLoadPriority = DefaultTagLoadPriority;
    bool ParseWavPackAudioAttributes = false;
    bool ParseMusePackAudioAttributes = false;
    bool ParseMonkeyAudioAttributes = false;
    bool ParseAudioAttributes = true;
    bool ParseCoverArts = true;      ///< false: no pictures are taken
    bool OnlyParseCoverArts = false; ///< true: LoadTags touches pictures only
    qint64 User1 = 0;                ///< for the caller
    qint64 User2 = 0;                ///< for the caller

    /// Reads a file; `fileName` is the text form of its path (uFilePath.h). 0, or 5 when the file does not exist; the
    /// object is then cleared. Says nothing about whether tags were found: see Loaded.
    int LoadFromFile(const QString& fileName);
    /// Merges from the format objects into the lists. Called by LoadFromFile; calling it again changes nothing.
    void LoadTags();

    const QString& FileName() const { return FFileName; }
    /// At least one reader has found a tag.
    bool Loaded() const { return FLoaded; }

    const std::vector<std::unique_ptr<TTag>>& Tags() const { return FTags; }
    const std::vector<std::unique_ptr<TCoverArt>>& CoverArts() const { return FCoverArts; }
    const TSourceAudioAttributes& SourceAudioAttributes() const { return FSourceAudioAttributes; }

    /// Value of the first tag of that name, without regard to case, or empty.
    QString GetTag(const QString& name) const;
    /// Index of that tag, or -1.
    int Exists(const QString& name) const;
    int Count() const { return static_cast<int>(FTags.size()); }
    /// Appends a tag, also when the name is there already.
    TTag* Add(const QString& name);
    bool Delete(int index);
    bool Remove(int index) { return Delete(index); }
    void DeleteAllTags();

    TCoverArt* AddCoverArt(const QString& name);
    int CoverArtCount() const { return static_cast<int>(FCoverArts.size()); }
    void DeleteAllCoverArts();

    /// Back to the state after construction; options stay.
    void Clear();
    void ReSetAlreadyParsedState();

    // The format objects, for what only they know.
    const TAPEv2Tag& APEv2Tag() const { return *FAPEv2Tag; }
    const TFlacTag& FlacTag() const { return *FFlacTag; }
    const TID3v1Tag& ID3v1Tag() const { return *FID3v1Tag; }
    const TID3v2Tag& ID3v2Tag() const { return *FID3v2Tag; }
    const TMP4Tag& MP4Tag() const { return *FMP4Tag; }
    const TOpusTag& OggVorbisAndOpusTag() const { return *FOggVorbisAndOpusTag; }
    const TWAVTag& WAVTag() const { return *FWAVTag; }
    const TWMATag& WMATag() const { return *FWMATag; }

private:
    void LoadFormats(TByteSource& source);
    void LoadSpecialAttributes(TByteSource& source, const QString& extension);
    TTagBatch BatchOfType(TTagType type) const;
    void LoadEntry(TTagType type);
    void Apply(TTagBatch& batch);
    void AddPicture(const TTagPicture& picture);
    void MakeWayFor(const TTagBatch& batch);
    void Append(TTagBatch& batch);

    std::unique_ptr<TAPEv2Tag> FAPEv2Tag;
    std::unique_ptr<TFlacTag> FFlacTag;
    std::unique_ptr<TID3v1Tag> FID3v1Tag;
    std::unique_ptr<TID3v2Tag> FID3v2Tag;
    std::unique_ptr<TMP4Tag> FMP4Tag;
    std::unique_ptr<TOpusTag> FOggVorbisAndOpusTag;
    std::unique_ptr<TWAVTag> FWAVTag;
    std::unique_ptr<TWMATag> FWMATag;
    std::vector<std::unique_ptr<TTag>> FTags;
    std::vector<std::unique_ptr<TCoverArt>> FCoverArts;
    TSourceAudioAttributes FSourceAudioAttributes;
    QString FFileName;
    bool FLoaded = false;
};

} // namespace Kestrune
