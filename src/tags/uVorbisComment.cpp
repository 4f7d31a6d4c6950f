// SPDX-License-Identifier: GPL-3.0-or-later
#include "uVorbisComment.h"

#include "uByteReader.h"
#include "uTagText.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr quint8 NoBase64 = 0xFF;

constexpr std::array<quint8, 256> Base64Values()
{
    std::array<quint8, 256> values = {};
    values.fill(NoBase64);
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (size_t i = 0; i < digits.size(); ++i)
        values[static_cast<quint8>(digits[i])] = static_cast<quint8>(i);
    return values;
}

// Four digits at a time: pictures make up most of the bytes of a comment header, and Qt's decoder goes bit by bit. What
// is no digit, line breaks and padding among it, is passed over.
QByteArray FromBase64(QByteArrayView text)
{
    static constexpr std::array<quint8, 256> values = Base64Values();
    const auto value = [&](qsizetype at) { return quint32(values[static_cast<quint8>(text[at])]); };
    QByteArray bytes(text.size() / 4 * 3 + 3, Qt::Uninitialized);
    char* to = bytes.data();
    quint32 group = 0;
    int count = 0;
    for (qsizetype i = 0; i < text.size();) {
        if (count == 0 && i + 4 <= text.size()) {
            const quint32 a = value(i), b = value(i + 1), c = value(i + 2), d = value(i + 3);
            if ((a | b | c | d) < 64) {
                *to++ = static_cast<char>(a << 2 | b >> 4);
                *to++ = static_cast<char>(b << 4 | c >> 2);
                *to++ = static_cast<char>(c << 6 | d);
                i += 4;
                continue;
            }
        }
        const quint32 digit = value(i++);
        if (digit >= 64)
            continue;
        group = group << 6 | digit;
        if (++count == 4) {
            *to++ = static_cast<char>(group >> 16);
            *to++ = static_cast<char>(group >> 8);
            *to++ = static_cast<char>(group);
            count = 0;
        }
    }
    if (count == 3)
        *to++ = static_cast<char>(group >> 10);
    if (count >= 2)
        *to++ = static_cast<char>(count == 3 ? group >> 2 : group >> 4);
    bytes.truncate(to - bytes.constData());
    return bytes;
}

// COVERART holds the bare picture in Base64, METADATA_BLOCK_PICTURE a whole FLAC picture block.
std::optional<TTagPicture> PictureOfComment(const QString& name, QByteArrayView value)
{
    const QByteArray bytes = FromBase64(value);
    if (bytes.isEmpty())
        return std::nullopt;
    std::optional<TTagPicture> picture;
    if (name == u"COVERART"_s) {
        picture.emplace();
        picture->Data = bytes;
        picture->CoverType = 3;
    } else {
        picture = ParseFlacPicture(bytes);
    }
    if (picture)
        picture->Name = name;
    return picture;
}

} // namespace

bool TVorbisComments::Parse(QByteArrayView bytes, bool parseCoverArts)
{
    FEarlier.Begin(Fields, [](const TTagField& field) { return field.Name; });
    FTakePictures = parseCoverArts && (!FSecondBlock || Pictures.empty());
    FSecondBlock = true;
    TByteReader reader(bytes);
    Vendor = DecodeUTF8(reader.Bytes(reader.U32LE()));
    const quint32 count = reader.U32LE();
    // Each comment takes four bytes at least, whatever their number claims to be.
    Fields.reserve(
        std::min(Fields.size() + static_cast<size_t>(std::min<qint64>(count, reader.Left() / 4)), MostFields));
    for (quint32 i = 0; i < count && !reader.Failed() && Fields.size() < MostFields; ++i) {
        const quint32 length = reader.U32LE();
        const QByteArrayView comment = reader.Bytes(length);
        if (!reader.Failed())
            AddComment(comment);
    }
    return !reader.Failed();
}

void TVorbisComments::AddComment(QByteArrayView comment)
{
    const qsizetype equals = comment.indexOf('=');
    if (equals <= 0)
        return;
    const QString name = DecodeUTF8(comment.first(equals));
    const QByteArrayView value = comment.sliced(equals + 1);
    const bool isPicture = EqualsNoCase(name, u"METADATA_BLOCK_PICTURE") || EqualsNoCase(name, u"COVERART");
    if (!isPicture && !FEarlier.Has(name))
        Fields.push_back({name, DecodeUTF8(value)});
    else if (isPicture && FTakePictures && Pictures.size() < MostPictures)
        AddPicture(name.toUpper(), value);
}

void TVorbisComments::AddPicture(const QString& name, QByteArrayView value)
{
    if (auto picture = PictureOfComment(name, value))
        Pictures.push_back(std::move(*picture));
}

std::optional<TTagPicture> ParseFlacPicture(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    TTagPicture picture;
    picture.CoverType = CheckedInt(reader.U32BE());
    picture.MIMEType = DecodeLatin1(reader.Bytes(reader.U32BE()));
    picture.Description = DecodeUTF8(reader.Bytes(reader.U32BE()));
    picture.Width = CheckedInt(reader.U32BE());
    picture.Height = CheckedInt(reader.U32BE());
    picture.ColorDepth = CheckedInt(reader.U32BE());
    picture.NoOfColors = CheckedInt(reader.U32BE());
    const quint32 length = reader.U32BE();
    if (reader.Failed())
        return std::nullopt;
    picture.Data = reader.Bytes(std::min<qint64>(length, reader.Left())).toByteArray();
    if (picture.Data.isEmpty())
        return std::nullopt;
    return picture;
}

} // namespace Kestrune
