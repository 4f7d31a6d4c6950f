// SPDX-License-Identifier: GPL-3.0-or-later
#include "uVorbisComment.h"

#include "uByteReader.h"
#include "uTagText.h"

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// COVERART holds the bare picture in Base64, METADATA_BLOCK_PICTURE a whole FLAC picture block.
std::optional<TTagPicture> PictureOfComment(const QString& name, QByteArrayView value)
{
    const QByteArray encoded = QByteArray::fromRawData(value.data(), value.size());
    const QByteArray bytes = QByteArray::fromBase64(encoded, QByteArray::IgnoreBase64DecodingErrors);
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
    TByteReader reader(bytes);
    Vendor = DecodeUTF8(reader.Bytes(reader.U32LE()));
    const quint32 count = reader.U32LE();
    // Each comment takes four bytes at least, whatever their number claims to be.
    Fields.reserve(Fields.size() + static_cast<size_t>(std::min<qint64>(count, reader.Left() / 4)));
    for (quint32 i = 0; i < count && !reader.Failed(); ++i) {
        const quint32 length = reader.U32LE();
        const QByteArrayView comment = reader.Bytes(length);
        if (!reader.Failed())
            AddComment(comment, parseCoverArts);
    }
    return !reader.Failed();
}

void TVorbisComments::AddComment(QByteArrayView comment, bool parseCoverArts)
{
    const qsizetype equals = comment.indexOf('=');
    if (equals <= 0)
        return;
    const QString name = DecodeUTF8(comment.first(equals));
    const QByteArrayView value = comment.sliced(equals + 1);
    const QString upper = name.toUpper();
    if (upper != u"METADATA_BLOCK_PICTURE"_s && upper != u"COVERART"_s) {
        Fields.push_back({name, DecodeUTF8(value)});
        return;
    }
    if (!parseCoverArts)
        return;
    if (auto picture = PictureOfComment(upper, value))
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
