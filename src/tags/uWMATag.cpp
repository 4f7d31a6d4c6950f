// SPDX-License-Identifier: GPL-3.0-or-later
#include "uWMATag.h"

#include "uFilePath.h"
#include "uTagText.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Object identifiers in the order of their bytes.
constexpr QByteArrayView AsfHeaderObject("\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C", 16);
constexpr QByteArrayView FilePropertiesObject("\xA1\xDC\xAB\x8C\x47\xA9\xCF\x11\x8E\xE4\x00\xC0\x0C\x20\x53\x65", 16);
constexpr QByteArrayView StreamPropertiesObject("\x91\x07\xDC\xB7\xB7\xA9\xCF\x11\x8E\xE6\x00\xC0\x0C\x20\x53\x65", 16);
constexpr QByteArrayView AudioMedia("\x40\x9E\x69\xF8\x4D\x5B\xCF\x11\xA8\xFD\x00\x80\x5F\x5C\x44\x2B", 16);
constexpr QByteArrayView HeaderExtensionObject("\xB5\x03\xBF\x5F\x2E\xA9\xCF\x11\x8E\xE3\x00\xC0\x0C\x20\x53\x65", 16);
constexpr QByteArrayView ContentDescriptionObject("\x33\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C",
                                                  16);
constexpr QByteArrayView ExtendedContentObject("\x40\xA4\xD0\xD2\x07\xE3\xD2\x11\x97\xF0\x00\xA0\xC9\x5E\xA8\x50", 16);
constexpr QByteArrayView MetadataObject("\xEA\xCB\xF8\xC5\xAF\x5B\x77\x48\x84\x67\xAA\x8C\x44\xFA\x4C\xCA", 16);
constexpr QByteArrayView MetadataLibraryObject("\x94\x1C\x23\x44\x98\x94\xD1\x49\xA1\x41\x1D\x13\x4E\x45\x70\x54", 16);

constexpr qint64 AsfHeaderSize = 30;    // of the header object, before its objects
constexpr qint64 ObjectHeaderSize = 24; // identifier and size

constexpr quint16 AsfTypeText = 0;
constexpr quint16 AsfTypeBytes = 1;
constexpr quint16 AsfTypeGuid = 6;

QString TextOfBytes(QByteArrayView bytes)
{
    const QString text = DecodeUTF16(bytes, false);
    const qsizetype end = text.indexOf(QChar(u'\0'));
    return end < 0 ? text : text.first(end);
}

// BOOL, DWORD, QWORD and WORD values, little-endian; their length tells.
QString NumberOfBytes(QByteArrayView bytes)
{
    if (bytes.isEmpty() || bytes.size() > 8)
        return {};
    quint64 value = 0;
    for (qsizetype i = bytes.size() - 1; i >= 0; --i)
        value = value << 8 | static_cast<quint8>(bytes[i]);
    return QString::number(value);
}

} // namespace

bool IsASF(TByteSource& source) { return source.Read(0, 16) == AsfHeaderObject; }

void TWMATag::Clear()
{
    const bool parse = ParseCoverArts;
    *this = {};
    ParseCoverArts = parse;
}

int TWMATag::LoadFromFile(const QString& fileName)
{
    Clear();
    const auto source = TFileSource::Open(TextToPath(fileName));
    return source ? Load(*source) : TagResultNoFile;
}

int TWMATag::Load(TByteSource& source)
{
    Clear();
    if (!IsASF(source))
        return TagResultNoTag;
    const QByteArray head = source.Read(16, 8);
    const quint64 stated = TByteReader(head).U64LE();
    const auto size = static_cast<qint64>(std::min<quint64>(stated, static_cast<quint64>(source.Size())));
    const QByteArray body = source.Read(AsfHeaderSize, size - AsfHeaderSize);
    ReadObjects(body, 0);
    Audio.PlayTime = static_cast<double>(Duration) / 1000;
    Audio.SampleCount = SampleCountOf(Audio.PlayTime, Audio.SamplesPerSec);
    Loaded = !Attributes.empty() || !Pictures.empty();
    return Loaded ? TagResultOk : TagResultNoTag;
}

void TWMATag::ReadObjects(QByteArrayView bytes, int depth)
{
    TByteReader reader(bytes);
    while (reader.Left() >= ObjectHeaderSize) {
        const QByteArrayView id = reader.Bytes(16);
        const quint64 size = reader.U64LE();
        if (size < static_cast<quint64>(ObjectHeaderSize))
            break;
        const quint64 stated = size - static_cast<quint64>(ObjectHeaderSize);
        const QByteArrayView content =
            reader.Bytes(static_cast<qint64>(std::min<quint64>(stated, static_cast<quint64>(reader.Left()))));
        if (id == FilePropertiesObject)
            ReadFileProperties(content);
        else if (id == StreamPropertiesObject)
            ReadStreamProperties(content);
        else if (id == ContentDescriptionObject)
            ReadContentDescription(content);
        else if (id == ExtendedContentObject)
            ReadExtendedContent(content);
        else if (id == MetadataObject || id == MetadataLibraryObject)
            ReadMetadata(content);
        else if (id == HeaderExtensionObject && depth == 0 && content.size() > 22)
            ReadObjects(content.sliced(22), depth + 1);
    }
}

void TWMATag::ReadFileProperties(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    reader.Skip(16 + 8 + 8 + 8);
    const quint64 duration = reader.U64LE(); // 100 nanoseconds, with the preroll
    reader.Skip(8);
    const quint64 preroll = reader.U64LE(); // milliseconds
    const quint64 milliseconds = duration / 10000;
    if (!reader.Failed() && milliseconds > preroll && milliseconds < quint64(1) << 40)
        Duration = static_cast<qint64>(milliseconds - preroll);
}

void TWMATag::ReadStreamProperties(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    if (reader.Bytes(16) != AudioMedia || Audio.SamplesPerSec != 0)
        return;
    reader.Skip(16 + 8 + 4 + 4 + 2 + 4);
    reader.Skip(2); // codec
    Audio.Channels = reader.U16LE();
    Audio.SamplesPerSec = CheckedInt(reader.U32LE());
    Audio.BitRate = static_cast<qint64>(reader.U32LE()) * 8;
    reader.Skip(2);
    Audio.BitsPerSample = reader.U16LE();
}

void TWMATag::ReadContentDescription(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    quint16 sizes[5];
    for (quint16& size : sizes)
        size = reader.U16LE();
    static constexpr QStringView names[] = {u"Title", u"Author", u"Copyright", u"Description", u"Rating"};
    for (int i = 0; i < 5; ++i)
        AddAttribute(names[i].toString(), AsfTypeText, reader.Bytes(std::min<qint64>(sizes[i], reader.Left())));
}

void TWMATag::ReadExtendedContent(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    const quint16 count = reader.U16LE();
    for (int i = 0; i < count && !reader.Failed(); ++i) {
        const QString name = TextOfBytes(reader.Bytes(reader.U16LE()));
        const quint16 type = reader.U16LE();
        const QByteArrayView value = reader.Bytes(reader.U16LE());
        if (!reader.Failed())
            AddAttribute(name, type, value);
    }
}

// Metadata and Metadata Library objects: values longer than 64 KiB, by language and stream.
void TWMATag::ReadMetadata(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    const quint16 count = reader.U16LE();
    for (int i = 0; i < count && !reader.Failed(); ++i) {
        reader.Skip(2 + 2); // language, stream
        const quint16 nameSize = reader.U16LE();
        const quint16 type = reader.U16LE();
        const quint32 valueSize = reader.U32LE();
        const QString name = TextOfBytes(reader.Bytes(nameSize));
        const QByteArrayView value = reader.Bytes(valueSize);
        if (!reader.Failed())
            AddAttribute(name, type, value);
    }
}

void TWMATag::AddAttribute(const QString& name, quint16 type, QByteArrayView value)
{
    if (type == AsfTypeBytes) {
        if (name == u"WM/Picture"_s && ParseCoverArts && Pictures.size() < MostPictures)
            AddPicture(value);
        return;
    }
    const QString text = type == AsfTypeText   ? TextOfBytes(value)
                         : type == AsfTypeGuid ? GuidText(value)
                                               : NumberOfBytes(value);
    if (!name.isEmpty() && !text.isEmpty() && Attributes.size() < MostFields)
        Attributes.push_back({name, text});
}

void TWMATag::AddPicture(QByteArrayView value)
{
    TByteReader reader(value);
    TTagPicture picture;
    picture.CoverType = reader.U8();
    const quint32 size = reader.U32LE();
    if (reader.Failed())
        return;
    QByteArrayView rest = reader.Rest();
    const auto mime = TakeTerminated(rest, teUTF16);
    const auto description = mime ? TakeTerminated(rest, teUTF16) : std::nullopt;
    if (!description)
        return;
    picture.MIMEType = DecodeUTF16(*mime, false);
    picture.Description = DecodeUTF16(*description, false);
    picture.Data = rest.first(std::min<qint64>(size, rest.size())).toByteArray();
    if (!picture.Data.isEmpty())
        Pictures.push_back(std::move(picture));
}

} // namespace Kestrune
