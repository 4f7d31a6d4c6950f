// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTagText.h"

#include "uByteReader.h"
#include "uTagTypes.h"

#include <QStringDecoder>
#include <QUuid>

#include <algorithm>

namespace Kestrune {

namespace {

char16_t Utf16Unit(QByteArrayView bytes, qsizetype at, bool bigEndian)
{
    const auto first = static_cast<quint8>(bytes[at]);
    const auto second = static_cast<quint8>(bytes[at + 1]);
    return static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
}

// Most text of a file is Latin: the high half of its units is zero, and its place tells the order.
bool LooksBigEndian(QByteArrayView bytes)
{
    int zeros[2] = {0, 0};
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
        if (bytes[i] == 0 && bytes[i + 1] == 0)
            continue;
        zeros[0] += bytes[i] == 0;
        zeros[1] += bytes[i + 1] == 0;
    }
    return zeros[0] > zeros[1];
}

// Takes a byte order mark off and sets the order accordingly.
void TakeByteOrderMark(QByteArrayView& bytes, bool& bigEndian)
{
    if (bytes.startsWith(QByteArrayView("\xFE\xFF", 2)))
        bigEndian = true;
    else if (bytes.startsWith(QByteArrayView("\xFF\xFE", 2)))
        bigEndian = false;
    else
        return;
    bytes = bytes.sliced(2);
}

bool StartOrder(QByteArrayView bytes, TTextEncoding encoding)
{
    return encoding == teUTF16BE || (encoding == teUTF16 && LooksBigEndian(bytes));
}

bool IsWide(TTextEncoding encoding) { return encoding == teUTF16 || encoding == teUTF16BE; }

qsizetype FindTerminator(QByteArrayView bytes, TTextEncoding encoding)
{
    if (!IsWide(encoding))
        return bytes.indexOf('\0');
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
        if (bytes[i] == 0 && bytes[i + 1] == 0)
            return i;
    return -1;
}

QString DecodeOne(QByteArrayView bytes, TTextEncoding encoding, bool& bigEndian)
{
    switch (encoding) {
    case teLatin1: return DecodeLatin1(bytes);
    case teUTF8: return DecodeUTF8(bytes);
    case teUTF16:
    case teUTF16BE: break;
    }
    TakeByteOrderMark(bytes, bigEndian);
    return DecodeUTF16(bytes, bigEndian);
}

} // namespace

std::optional<TTextEncoding> TextEncodingFromByte(quint8 byte)
{
    switch (byte) {
    case 0: return teLatin1;
    case 1: return teUTF16;
    case 2: return teUTF16BE;
    case 3: return teUTF8;
    default: return std::nullopt;
    }
}

QString DecodeLatin1(QByteArrayView bytes) { return QString::fromLatin1(bytes.data(), bytes.size()); }

QString DecodeUTF8(QByteArrayView bytes) { return QString::fromUtf8(bytes.data(), bytes.size()); }

bool IsValidUTF8(QByteArrayView bytes) { return bytes.isValidUtf8(); }

QString DecodeWindows1252(QByteArrayView bytes)
{
    static constexpr char16_t high[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                          0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                          0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                          0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};
    QString text = DecodeLatin1(bytes);
    for (QChar& c : text)
        if (c.unicode() >= 0x80 && c.unicode() < 0xA0)
            c = QChar(high[c.unicode() - 0x80]);
    return text;
}

QString DecodeUTF16(QByteArrayView bytes, bool bigEndian)
{
    const qsizetype count = bytes.size() / 2;
    QString text(count, Qt::Uninitialized);
    for (qsizetype i = 0; i < count; ++i)
        text[i] = QChar(Utf16Unit(bytes, 2 * i, bigEndian));
    // A surrogate without its partner is no character and would make an invalid string of the whole.
    for (qsizetype i = 0; i < count; ++i) {
        if (!text[i].isSurrogate())
            continue;
        if (text[i].isHighSurrogate() && i + 1 < count && text[i + 1].isLowSurrogate())
            ++i;
        else
            text[i] = QChar(QChar::ReplacementCharacter);
    }
    return text;
}

QString DecodeRiffText(QByteArrayView bytes)
{
    if (const qsizetype end = bytes.indexOf('\0'); end >= 0)
        bytes = bytes.first(end);
    while (bytes.endsWith(' '))
        bytes.chop(1);
    return IsValidUTF8(bytes) ? DecodeUTF8(bytes) : DecodeWindows1252(bytes);
}

QString DecodeFixedText(QByteArrayView bytes)
{
    if (const qsizetype end = bytes.indexOf('\0'); end >= 0)
        bytes = bytes.first(end);
    while (bytes.endsWith(' '))
        bytes.chop(1);
    return DecodeLatin1(bytes);
}

QString GuidText(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    const quint32 first = reader.U32LE();
    const quint16 second = reader.U16LE();
    const quint16 third = reader.U16LE();
    const QByteArrayView rest = reader.Bytes(8);
    if (reader.Failed())
        return {};
    const auto at = [&](int i) { return static_cast<uchar>(rest[i]); };
    return QUuid(first, second, third, at(0), at(1), at(2), at(3), at(4), at(5), at(6), at(7)).toString();
}

QString DecodeText(QByteArrayView bytes, TTextEncoding encoding)
{
    bool bigEndian = StartOrder(bytes, encoding);
    if (const qsizetype end = FindTerminator(bytes, encoding); end >= 0)
        bytes = bytes.first(end);
    return DecodeOne(bytes, encoding, bigEndian);
}

QStringList DecodeTextList(QByteArrayView bytes, TTextEncoding encoding, bool keepEmpty)
{
    QStringList texts;
    bool bigEndian = StartOrder(bytes, encoding);
    while (!bytes.isEmpty() && static_cast<size_t>(texts.size()) < MostFields) {
        const std::optional<QByteArrayView> piece = TakeTerminated(bytes, encoding);
        QString text = DecodeOne(piece.value_or(bytes), encoding, bigEndian);
        if (keepEmpty || !text.isEmpty())
            texts.append(std::move(text));
        if (!piece)
            break;
    }
    return texts;
}

std::optional<QByteArrayView> TakeTerminated(QByteArrayView& bytes, TTextEncoding encoding)
{
    const qsizetype end = FindTerminator(bytes, encoding);
    if (end < 0)
        return std::nullopt;
    const QByteArrayView piece = bytes.first(end);
    bytes = bytes.sliced(end + (IsWide(encoding) ? 2 : 1));
    return piece;
}

} // namespace Kestrune
