// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v1Library.h"

#include "uFilePath.h"
#include "uID3Genres.h"
#include "uTagText.h"
#include "uTagTypes.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 ID3v1Size = 128;
constexpr qint64 LyricsMarkSize = 9;   // "LYRICSEND", "LYRICS200"
constexpr qint64 LyricsBeginSize = 11; // "LYRICSBEGIN"
constexpr qint64 Lyrics1Limit = 5100;  // the most text that a Lyrics3 version 1 tag may hold

// A number in decimal digits; -1 for anything else.
qint64 Digits(QByteArrayView bytes)
{
    qint64 value = bytes.isEmpty() ? -1 : 0;
    for (const char c : bytes) {
        if (c < '0' || c > '9')
            return -1;
        value = value * 10 + (c - '0');
    }
    return value;
}

} // namespace

qint64 ID3v1TagSize(TByteSource& source)
{
    char magic[3];
    const qint64 start = source.Size() - ID3v1Size;
    if (start < 0 || source.ReadAt(start, magic, 3) != 3 || QByteArrayView(magic, 3) != "TAG")
        return 0;
    // The mark of an APEv2 tag holds these letters, too: its header may stand just here.
    return source.Read(start - 3, 8) == "APETAGEX" ? 0 : ID3v1Size;
}

void TID3v1Tag::Clear()
{
    TID3v1Tag empty;
    empty.TrimText = TrimText;
    empty.TreatUnknownGenresAsOther = TreatUnknownGenresAsOther;
    *this = std::move(empty);
}

int TID3v1Tag::LoadFromFile(const QString& fileName)
{
    Clear();
    const auto source = TFileSource::Open(TextToPath(fileName));
    if (!source)
        return TagResultNoFile;
    SourceFileName = fileName;
    return Load(*source);
}

QString TID3v1Tag::FieldText(QByteArrayView field) const
{
    if (const qsizetype end = field.indexOf('\0'); end >= 0)
        field = field.first(end);
    const QString text = DecodeLatin1(field);
    return TrimText ? text.trimmed() : text;
}

int TID3v1Tag::Load(TByteSource& source)
{
    Clear();
    FFileSize = source.Size();
    if (ID3v1TagSize(source) == 0)
        return TagResultNoTag;
    const QByteArray tag = source.Read(FFileSize - ID3v1Size, ID3v1Size);
    if (tag.size() != ID3v1Size)
        return TagResultNoTag;
    const QByteArrayView view(tag);
    Title = FieldText(view.sliced(3, 30));
    Artist = FieldText(view.sliced(33, 30));
    Album = FieldText(view.sliced(63, 30));
    Year = FieldText(view.sliced(93, 4));
    Revision1 = view[125] == 0 && view[126] != 0;
    Comment = FieldText(view.sliced(97, Revision1 ? 28 : 30));
    if (Revision1) {
        Track = static_cast<quint8>(view[126]);
        TrackString = QString::number(Track);
    }
    Genre = ID3GenreName(static_cast<quint8>(view[127]));
    if (Genre.isEmpty() && TreatUnknownGenresAsOther)
        Genre = u"Other"_s;
    Loaded = true;
    LoadLyricsTag(source);
    return TagResultOk;
}

int TID3v1Tag::LoadLyricsTag(TByteSource& source)
{
    LyricsFrames.clear();
    FLyricsTagSize = 0;
    const qint64 end = source.Size() - ID3v1Size;
    const QByteArray mark = source.Read(end - LyricsMarkSize, LyricsMarkSize);
    if (mark == "LYRICSEND")
        return LoadLyrics1(source, end);
    if (mark == "LYRICS200")
        return LoadLyrics2(source, end);
    return TagResultNoTag;
}

int TID3v1Tag::LoadLyrics1(TByteSource& source, qint64 end)
{
    const qint64 start = std::max<qint64>(0, end - LyricsMarkSize - Lyrics1Limit - LyricsBeginSize);
    const QByteArray bytes = source.Read(start, end - LyricsMarkSize - start);
    const qsizetype begin = bytes.lastIndexOf("LYRICSBEGIN");
    if (begin < 0)
        return TagResultCorrupt;
    AddLyricsField("LYR", QByteArrayView(bytes).sliced(begin + LyricsBeginSize));
    FLyricsTagSize = bytes.size() - begin + LyricsMarkSize;
    return TagResultOk;
}

int TID3v1Tag::LoadLyrics2(TByteSource& source, qint64 end)
{
    const qint64 sizeEnd = end - LyricsMarkSize;
    const qint64 size = Digits(source.Read(sizeEnd - 6, 6));
    const qint64 start = sizeEnd - 6 - size;
    if (size < LyricsBeginSize || start < 0 || source.Read(start, LyricsBeginSize) != "LYRICSBEGIN")
        return TagResultCorrupt;
    const QByteArray bytes = source.Read(start + LyricsBeginSize, size - LyricsBeginSize);
    TByteReader reader(bytes);
    while (reader.Left() >= 8) {
        const QByteArrayView id = reader.Bytes(3);
        const qint64 length = Digits(reader.Bytes(5));
        if (length < 0)
            break;
        AddLyricsField(id, reader.Bytes(std::min(length, reader.Left())));
    }
    FLyricsTagSize = size + 6 + LyricsMarkSize;
    return TagResultOk;
}

void TID3v1Tag::AddLyricsField(QByteArrayView id, QByteArrayView content)
{
    if (id == "IND") {
        LyricsHasTimeStamp = content.size() > 1 && content[1] == '1';
        InhibitTracksForRandomSelection = content.size() > 2 && content[2] == '1';
    }
    LyricsFrames.push_back({DecodeLatin1(id), DecodeLatin1(content)});
}

QString TID3v1Tag::GetLyrics() const
{
    const auto found = std::ranges::find(LyricsFrames, u"LYR"_s, &TID3LyricsFrame::ID);
    return found == LyricsFrames.end() ? QString() : found->Text;
}

} // namespace Kestrune
