// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFilePath.h"

#include <QStringDecoder>

#include <string>

namespace Kestrune {

namespace {

constexpr char16_t EscapeBase = 0xEF00;

bool IsEscape(QChar c) { return c.unicode() >= EscapeBase + 0x80 && c.unicode() <= EscapeBase + 0xFF; }

// Length of the well-formed UTF-8 sequence at `at` (RFC 3629), or 0.
size_t SequenceLength(const std::string& bytes, size_t at)
{
    const auto byte = [&](size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u; };
    const auto follows = [&](size_t i) { return (byte(i) & 0xC0u) == 0x80u; };
    const unsigned first = byte(at);
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return follows(at + 1) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        const unsigned second = byte(at + 1);
        const bool overlong = first == 0xE0 && second < 0xA0;
        const bool surrogate = first == 0xED && second > 0x9F;
        return follows(at + 1) && follows(at + 2) && !overlong && !surrogate ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const unsigned second = byte(at + 1);
        const bool outside = (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
        return follows(at + 1) && follows(at + 2) && follows(at + 3) && !outside ? 4 : 0;
    }
    return 0;
}

} // namespace

QString PathToText(const std::filesystem::path& path)
{
    const std::string& bytes = path.native();
    QString text;
    text.reserve(static_cast<qsizetype>(bytes.size()));
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = SequenceLength(bytes, at);
        const QString piece =
            length > 0 ? QString::fromUtf8(bytes.data() + at, static_cast<qsizetype>(length)) : QString();
        if (length > 0 && !(piece.size() == 1 && IsEscape(piece[0]))) {
            text += piece;
            at += length;
            continue;
        }
        for (const size_t end = at + std::max<size_t>(length, 1); at < end; ++at)
            text += QChar(static_cast<char16_t>(EscapeBase + static_cast<unsigned char>(bytes[at])));
    }
    return text;
}

std::filesystem::path TextToPath(const QString& text)
{
    std::string bytes;
    bytes.reserve(static_cast<size_t>(text.size()));
    qsizetype start = 0;
    const auto flush = [&](qsizetype end) {
        bytes += QStringView(text).sliced(start, end - start).toUtf8().toStdString();
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!IsEscape(text[i]))
            continue;
        flush(i);
        bytes += static_cast<char>(text[i].unicode() & 0xFF);
        start = i + 1;
    }
    flush(text.size());
    return bytes;
}

} // namespace Kestrune
