// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"
#include "uChunks.h"
#include "uTagNames.h"
#include "uTagTypes.h"

#include <QStringList>

#include <optional>

namespace Kestrune {

/// One value of an atom in the item list.
struct TMP4Data {
    quint32 Type = 0; ///< well-known type: 1 UTF-8, 2 UTF-16, 21 signed number, 0 by the atom's name
    QByteArray Bytes;
};

/// One atom of the item list ("ilst").
struct TMP4Atom {
    TFourCC Name;
    QString Mean;      ///< of "----" atoms
    QString InnerName; ///< likewise
    std::vector<TMP4Data> Data;

    /// The values as texts; numbers in decimal. Pictures and other binary values give none.
    QStringList GetAsTexts() const;
    QString GetAsText() const { return GetAsTexts().value(0); }
    /// All values, one on a line.
    QString GetAsList() const { return GetAsTexts().join(u'\n'); }
    /// The first value as a number of 1 to 8 bytes, big-endian; 0 for anything else.
    quint64 GetAsInteger() const;
};

/// One value of the Xtra atom.
struct TMP4Xtra {
    QString Name;
    QString Value; ///< texts as they are, numbers in decimal, identifiers as GUID texts
};

/// What the fragments of a movie refer to (ISO/IEC 14496-12, section 8.8).
struct TMP4Fragments {
    quint32 TrackID = 0;
    quint32 TimeScale = 0;       ///< units per second
    quint32 DefaultDuration = 0; ///< of a sample, in units, as "trex" states it
};

/// Item list, Xtra atom and sound attributes of MP4 files (ISO/IEC 14496-12 and -14, QuickTime File Format).
class TMP4Tag {
public:
    bool ParseAudioAttributes = true; ///< set before loading, like the next
    bool ParseCoverArts = true;

    bool Loaded = false; ///< an item list or an Xtra atom with a value was found
    std::vector<TMP4Atom> Atoms;
    std::vector<TMP4Xtra> Xtra;
    TAudioAttributes Audio; ///< of the first sound track

    void Clear();
    /// A result of uTagTypes.h; 0 when a tag was read.
    int LoadFromFile(const QString& fileName);
    int Load(TByteSource& source);

    const TMP4Atom* FindAtom(TFourCC name) const;
    /// Text of the genre atom, or the name of the number in "gnre".
    QString GetGenre() const;
    /// English name of the kind in "stik", empty without one.
    QString GetMediaType() const;
    int GetTrack() const { return Pair("trkn", 0); }
    int GetTotalTracks() const { return Pair("trkn", 1); }
    int GetDisc() const { return Pair("disk", 0); }
    int GetTotalDiscs() const { return Pair("disk", 1); }
    /// English name of the shop's country in "sfID"; empty for an unknown one.
    QString GetPurchaseCountry() const;

private:
    struct TTrack;
    void ReadMovie(TByteSource& source, qint64 start, qint64 end);
    void ReadUserData(TByteSource& source, qint64 start, qint64 end);
    void ReadMeta(TByteSource& source, qint64 start, qint64 end);
    void ReadItems(TByteSource& source, qint64 start, qint64 end);
    void ReadItem(TFourCC name, QByteArrayView content);
    void ReadXtra(QByteArrayView content);
    void DeriveTimes(TByteSource& source);
    int Pair(TFourCC name, int index) const;

    TEarlierNames FEarlierItems; // of a second list only new names count
    TEarlierNames FEarlierXtra;
    double FMovieTime = 0;
    TMP4Fragments FFragments;
    qint64 FSoundSize = 0; // of all media data
    bool FHasTrack = false;
    int FItemLists = 0;
};

} // namespace Kestrune
