// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

#include <QString>

#include <vector>

namespace Kestrune {

/// One field of a Lyrics3 tag: three letters ("LYR", "INF", "AUT", ...) and its text.
struct TID3LyricsFrame {
    QString ID;
    QString Text;
};

/// ID3v1 and ID3v1.1 tags, and the Lyrics3 tag (versions 1 and 2) that may stand before them.
class TID3v1Tag {
public:
    // Set before loading.
    bool TrimText = true;
    bool TreatUnknownGenresAsOther = false; ///< a number outside the table reads "Other", not empty

    // Results.
    bool Loaded = false;
    bool Revision1 = false; ///< a track byte is present
    QString Title;
    QString Artist;
    QString Album;
    QString Year;
    QString Comment;
    quint8 Track = 0;
    QString TrackString; ///< the track number in decimal, empty for none
    QString Genre;
    QString SourceFileName;
    std::vector<TID3LyricsFrame> LyricsFrames;
    bool LyricsHasTimeStamp = false;
    bool InhibitTracksForRandomSelection = false;

    void Clear();
    /// A result of uTagTypes.h; 0 when a tag was read.
    int LoadFromFile(const QString& fileName);
    int Load(TByteSource& source);
    /// Reads the Lyrics3 tag that ends where the ID3v1 tag begins.
    int LoadLyricsTag(TByteSource& source);
    /// The text of the lyrics field, empty without one.
    QString GetLyrics() const;
    /// Size of the Lyrics3 tag with its marks, 0 without one.
    qint64 LyricsTagSize() const { return FLyricsTagSize; }

private:
    int LoadLyrics1(TByteSource& source, qint64 end);
    int LoadLyrics2(TByteSource& source, qint64 end);
    void AddLyricsField(QByteArrayView id, QByteArrayView content);
    QString FieldText(QByteArrayView field) const;

    qint64 FLyricsTagSize = 0;
    qint64 FFileSize = 0;
};

/// Size of the ID3v1 tag at the end of a file: 128 or 0.
qint64 ID3v1TagSize(TByteSource& source);

} // namespace Kestrune
