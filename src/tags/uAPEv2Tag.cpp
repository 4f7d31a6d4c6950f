// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAPEv2Tag.h"

#include "ID3v1Library.h"
#include "uFilePath.h"
#include "uTagText.h"

#include <algorithm>
#include <iterator>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 ApeFooterSize = 32; // of header and footer alike
constexpr QByteArrayView ApeMagic("APETAGEX", 8);
constexpr quint32 HasHeaderFlag = 0x80000000;
constexpr quint32 IsHeaderFlag = 0x20000000;

struct TAPEFooter {
    quint32 Version = 0;
    quint32 Size = 0; ///< items and footer
    quint32 Count = 0;
    quint32 Flags = 0;
};

bool ReadFooter(TByteSource& source, qint64 position, TAPEFooter& footer)
{
    char bytes[ApeFooterSize];
    if (position < 0 || source.ReadAt(position, bytes, ApeFooterSize) != ApeFooterSize)
        return false;
    TByteReader reader(QByteArrayView(bytes, ApeFooterSize));
    if (reader.Bytes(8) != ApeMagic)
        return false;
    footer = {reader.U32LE(), reader.U32LE(), reader.U32LE(), reader.U32LE()};
    return true;
}

// The kinds of cover items by the words in their brackets, at the numbers of the ID3v2 picture types.
int CoverTypeOfKey(QStringView key)
{
    static constexpr QStringView words[] = {
        u"Other",        u"Icon",        u"Other Icon",    u"Front",       u"Back",        u"Leaflet",
        u"Media",        u"Lead Artist", u"Artist",        u"Conductor",   u"Band",        u"Composer",
        u"Lyricist",     u"Studio",      u"Recording",     u"Performance", u"Movie Scene", u"Colored Fish",
        u"Illustration", u"Band Logo",   u"Publisher Logo"};
    const qsizetype open = key.indexOf(u'(');
    const QStringView word = open < 0 ? QStringView() : key.sliced(open + 1).chopped(key.endsWith(u')') ? 1 : 0);
    const auto found = std::ranges::find_if(
        words, [&](QStringView candidate) { return candidate.compare(word, Qt::CaseInsensitive) == 0; });
    return found == std::end(words) ? 0 : static_cast<int>(found - std::begin(words));
}

} // namespace

void TAPEv2Tag::Clear()
{
    const bool parse = ParseCoverArts;
    *this = {};
    ParseCoverArts = parse;
}

int TAPEv2Tag::LoadFromFile(const QString& fileName)
{
    Clear();
    const auto source = TFileSource::Open(TextToPath(fileName));
    return source ? Load(*source) : TagResultNoFile;
}

int TAPEv2Tag::Load(TByteSource& source)
{
    Clear();
    const qint64 end = source.Size();
    int result = LoadEndingAt(source, end);
    if (const qint64 id3v1 = ID3v1TagSize(source); result == TagResultNoTag && id3v1 > 0) {
        result = LoadEndingAt(source, end - id3v1);
        TID3v1Tag lyrics;
        if (result == TagResultNoTag && lyrics.LoadLyricsTag(source) == TagResultOk)
            result = LoadEndingAt(source, end - id3v1 - lyrics.LyricsTagSize());
    }
    TAPEFooter header;
    if (result != TagResultNoTag || !ReadFooter(source, 0, header) || (header.Flags & IsHeaderFlag) == 0)
        return result;
    Version = static_cast<int>(header.Version);
    ReadItems(source.Read(ApeFooterSize, header.Size), header.Count);
    Loaded = true;
    return TagResultOk;
}

int TAPEv2Tag::LoadEndingAt(TByteSource& source, qint64 end)
{
    TAPEFooter footer;
    if (!ReadFooter(source, end - ApeFooterSize, footer) || (footer.Flags & IsHeaderFlag) != 0)
        return TagResultNoTag;
    // Without its true size a tag's start is unknown, and the items cannot be told from the sound.
    if (footer.Size < ApeFooterSize || footer.Size > end)
        return TagResultCorrupt;
    Version = static_cast<int>(footer.Version);
    ReadItems(source.Read(end - footer.Size, footer.Size - ApeFooterSize), footer.Count);
    Size = footer.Size + ((footer.Flags & HasHeaderFlag) != 0 ? ApeFooterSize : 0);
    Size = std::min(Size, end);
    Loaded = true;
    return TagResultOk;
}

void TAPEv2Tag::ReadItems(QByteArrayView bytes, quint32 count)
{
    TByteReader reader(bytes);
    for (quint32 i = 0; i < count && reader.Left() > 8 && Fields.size() < MostFields; ++i) {
        const quint32 size = reader.U32LE();
        const quint32 flags = reader.U32LE();
        QByteArrayView rest = bytes.sliced(reader.Position());
        const auto key = TakeTerminated(rest, teLatin1);
        if (!key || key->isEmpty() || size > static_cast<quint64>(rest.size()))
            break;
        reader.Skip(key->size() + 1);
        AddItem(*key, reader.Bytes(size), flags);
    }
}

void TAPEv2Tag::AddItem(QByteArrayView key, QByteArrayView value, quint32 flags)
{
    const QString name = DecodeLatin1(key);
    const quint32 kind = flags >> 1 & 3; // 0 text, 1 binary, 2 address
    if (kind == 0 || kind == 2) {
        for (QString& text : DecodeTextList(value, teUTF8))
            Fields.push_back({name, std::move(text)});
        return;
    }
    if (kind != 1 || !ParseCoverArts || Pictures.size() >= MostPictures ||
        !name.startsWith(u"Cover Art ("_s, Qt::CaseInsensitive))
        return;
    TTagPicture picture;
    picture.Name = name;
    picture.CoverType = CoverTypeOfKey(name);
    // A file name stands before the picture. Some writers leave it out together with its NUL.
    if (PictureStreamType(value) == tpfUnknown) {
        if (const auto fileName = TakeTerminated(value, teUTF8))
            picture.Description = DecodeUTF8(*fileName);
    }
    picture.Data = value.toByteArray();
    if (!picture.Data.isEmpty())
        Pictures.push_back(std::move(picture));
}

} // namespace Kestrune
