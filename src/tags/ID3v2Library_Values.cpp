// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v2Library.h"
#include "ID3v2Library_p.h"
#include "uTagText.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>

namespace Kestrune {

namespace {

// zlib stream of unknown length, at most `limit` bytes out. The output grows with the data, not with what they claim.
std::optional<QByteArray> Inflate(QByteArrayView bytes, qint64 limit)
{
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK)
        return std::nullopt;
    QByteArray in = bytes.toByteArray();
    QByteArray out;
    stream.next_in = reinterpret_cast<Bytef*>(in.data());
    stream.avail_in = static_cast<uInt>(std::min<qint64>(in.size(), 0x7FFFFFFF));
    int result = Z_OK;
    while (result == Z_OK) {
        const qsizetype room = std::min<qint64>(std::max<qsizetype>(4096, out.size()), limit - out.size());
        const qsizetype done = out.size();
        if (room <= 0)
            break;
        out.resize(done + room);
        stream.next_out = reinterpret_cast<Bytef*>(out.data() + done);
        stream.avail_out = static_cast<uInt>(room);
        result = inflate(&stream, Z_NO_FLUSH);
        out.resize(out.size() - static_cast<qsizetype>(stream.avail_out));
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END ? std::optional(out) : std::nullopt;
}

// Splits the encoding off a frame's content.
std::optional<TTextEncoding> TakeEncoding(QByteArrayView& content)
{
    if (content.isEmpty())
        return std::nullopt;
    const auto encoding = TextEncodingFromByte(static_cast<quint8>(content[0]));
    content = content.sliced(1);
    return encoding;
}

quint64 BigEndianCounter(QByteArrayView bytes)
{
    quint64 value = 0;
    for (const char byte : bytes) {
        if (value >> 56 != 0)
            return std::numeric_limits<quint64>::max();
        value = value << 8 | static_cast<quint8>(byte);
    }
    return value;
}

} // namespace

QByteArray UndoUnsynchronisation(QByteArrayView bytes)
{
    QByteArray out(bytes.size(), Qt::Uninitialized);
    char* to = out.data();
    qsizetype from = 0;
    while (from < bytes.size()) {
        const qsizetype found = bytes.indexOf('\xFF', from);
        const qsizetype end = found < 0 ? bytes.size() : found + 1;
        std::memcpy(to, bytes.data() + from, static_cast<size_t>(end - from));
        to += end - from;
        from = end;
        if (found >= 0 && from < bytes.size() && bytes[from] == 0)
            ++from;
    }
    out.truncate(to - out.constData());
    return out;
}

bool LooksUnsynchronised(QByteArrayView bytes)
{
    for (qsizetype i = bytes.indexOf('\xFF'); i >= 0 && i + 1 < bytes.size(); i = bytes.indexOf('\xFF', i + 1))
        if (static_cast<quint8>(bytes[i + 1]) >= 0xE0)
            return false;
    return true;
}

bool TID3v2Frame::RemoveUnsynchronisation()
{
    if (!Unsynchronised)
        return false;
    Unsynchronised = false;
    const QByteArrayView content = Stream();
    if (content.indexOf('\xFF') < 0 || !LooksUnsynchronised(content))
        return false;
    SetOwned(UndoUnsynchronisation(content));
    return true;
}

bool TID3v2Frame::DeCompress(qint64& budget)
{
    const std::optional<QByteArray> plain = Inflate(Stream(), budget);
    if (!plain || plain->isEmpty())
        return false;
    budget -= plain->size();
    SetOwned(*plain);
    Compressed = false;
    return true;
}

QString TID3v2Frame::GetUnicodeText() const { return GetUnicodeTextMultiple().value(0); }

QStringList TID3v2Frame::GetUnicodeTextMultiple() const
{
    QByteArrayView content = Stream();
    const auto encoding = TakeEncoding(content);
    return encoding ? DecodeTextList(content, *encoding) : QStringList();
}

TID3v2Content TID3v2Frame::GetUnicodeContent() const
{
    TID3v2Content result;
    QByteArrayView content = Stream();
    const auto encoding = TakeEncoding(content);
    if (!encoding || content.size() < 3)
        return result;
    result.Language = DecodeFixedText(content.first(3));
    content = content.sliced(3);
    // Without the NUL behind the description all of it is taken for the text.
    if (const auto description = TakeTerminated(content, *encoding))
        result.Description = DecodeText(*description, *encoding);
    result.Text = DecodeText(content, *encoding);
    return result;
}

TID3v2UserDefined TID3v2Frame::GetUnicodeUserDefinedTextInformationMultiple() const
{
    TID3v2UserDefined result;
    QByteArrayView content = Stream();
    const auto encoding = TakeEncoding(content);
    if (!encoding)
        return result;
    if (const auto description = TakeTerminated(content, *encoding)) {
        result.Description = DecodeText(*description, *encoding);
        result.Values = DecodeTextList(content, *encoding);
    }
    return result;
}

TID3v2UserDefined TID3v2Frame::GetUnicodeUserDefinedURLLink() const
{
    TID3v2UserDefined result;
    QByteArrayView content = Stream();
    const auto encoding = TakeEncoding(content);
    if (!encoding)
        return result;
    if (const auto description = TakeTerminated(content, *encoding))
        result.Description = DecodeText(*description, *encoding);
    const QString url = DecodeText(content, teLatin1);
    if (!url.isEmpty())
        result.Values.append(url);
    return result;
}

QString TID3v2Frame::GetURL() const { return DecodeText(Stream(), teLatin1); }

quint64 TID3v2Frame::GetPlayCount() const { return BigEndianCounter(Stream()); }

std::optional<TID3v2Popularimeter> TID3v2Frame::GetPopularimeter() const
{
    QByteArrayView content = Stream();
    const auto email = TakeTerminated(content, teLatin1);
    if (!email || content.isEmpty())
        return std::nullopt;
    TID3v2Popularimeter result;
    result.Email = DecodeLatin1(*email);
    result.Rating = static_cast<quint8>(content[0]);
    result.Counter = BigEndianCounter(content.sliced(1));
    return result;
}

std::optional<TTagPicture> TID3v2Frame::GetUnicodeCoverPictureStream() const
{
    QByteArrayView content = Stream();
    const auto encoding = TakeEncoding(content);
    const auto mime = encoding ? TakeTerminated(content, teLatin1) : std::nullopt;
    if (!mime || content.isEmpty())
        return std::nullopt;
    TTagPicture picture;
    picture.MIMEType = DecodeLatin1(*mime);
    picture.CoverType = static_cast<quint8>(content[0]);
    content = content.sliced(1);
    const auto description = TakeTerminated(content, *encoding);
    if (!description || content.isEmpty())
        return std::nullopt;
    picture.Description = DecodeText(*description, *encoding);
    picture.Data = content.toByteArray();
    if (picture.MIMEType.isEmpty())
        picture.MIMEType = PictureMIMEType(PictureStreamType(picture.Data));
    return picture;
}

TID3v2Pairs TID3v2Frame::GetUnicodeListFrame() const
{
    TID3v2Pairs pairs;
    QByteArrayView content = Stream();
    const auto encoding = TakeEncoding(content);
    const QStringList texts = encoding ? DecodeTextList(content, *encoding, true) : QStringList();
    for (qsizetype i = 0; i < texts.size(); i += 2)
        pairs.emplace_back(texts[i], texts.value(i + 1));
    return pairs;
}

QString TID3v2Frame::GetUnicodeListFrameText() const
{
    QStringList lines;
    for (const auto& [role, person] : GetUnicodeListFrame())
        lines.append(role + u'=' + person);
    return lines.join(u'\n');
}

} // namespace Kestrune
