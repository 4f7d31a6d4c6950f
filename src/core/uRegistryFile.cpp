// SPDX-License-Identifier: GPL-3.0-or-later
#include "uRegistryFile.h"

#include <QStringDecoder>
#include <QStringEncoder>
#include <QStringList>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QLatin1StringView FirstLine("Windows Registry Editor Version 5.00");
constexpr qsizetype LargestFile = 16 * 1024 * 1024;
constexpr qsizetype HexPerLine = 24;

QString Quoted(QString text)
{
    text.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
    return u'"' + text + u'"';
}

// The bytes of a zero-terminated UTF-16 text, in lines that end with a backslash.
QString HexText(const QString& text)
{
    QString hex = u"hex(1):"_s;
    qsizetype inLine = 0;
    const QString ended = text + QChar(u'\0');
    for (qsizetype i = 0; i < ended.size(); ++i) {
        const char16_t unit = ended[i].unicode();
        hex += u"%1,%2"_s.arg(unit & 0xFF, 2, 16, QChar(u'0')).arg(unit >> 8, 2, 16, QChar(u'0'));
        if (i + 1 == ended.size())
            break;
        hex += u',';
        if ((inLine += 2) >= HexPerLine) {
            hex += u"\\\r\n  "_s;
            inLine = 0;
        }
    }
    return hex;
}

QString ValueText(const QString& value)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    if (ok && QString::number(number) == value)
        return u"dword:%1"_s.arg(static_cast<quint32>(number), 8, 16, QChar(u'0'));
    for (const QChar c : value)
        if (c.unicode() < 0x20)
            return HexText(value);
    return Quoted(value);
}

// A quoted text at the start of a line; the rest of the line follows it.
std::optional<QString> TakeQuoted(QStringView& line)
{
    if (!line.startsWith(u'"'))
        return {};
    QString text;
    for (qsizetype i = 1; i < line.size(); ++i) {
        if (line[i] == u'"') {
            line = line.sliced(i + 1);
            return text;
        }
        if (line[i] == u'\\' && i + 1 < line.size())
            ++i;
        text += line[i];
    }
    return {};
}

std::optional<QString> HexToText(QStringView hex)
{
    QByteArray bytes;
    for (const QStringView part : hex.split(u',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const uint byte = part.trimmed().toUInt(&ok, 16);
        if (!ok || byte > 0xFF)
            return {};
        bytes += static_cast<char>(byte);
    }
    QString text = QStringDecoder(QStringDecoder::Utf16LE, QStringDecoder::Flag::Stateless)(bytes);
    while (text.endsWith(QChar(u'\0')))
        text.chop(1);
    return text;
}

std::optional<QString> ReadValue(QStringView text)
{
    if (text.startsWith(u'"'))
        return TakeQuoted(text);
    if (text.startsWith("dword:"_L1, Qt::CaseInsensitive)) {
        bool ok = false;
        const quint32 number = text.sliced(6).trimmed().toUInt(&ok, 16);
        return ok ? std::optional(QString::number(static_cast<qint32>(number))) : std::nullopt;
    }
    for (const auto kind : {"hex(1):"_L1, "hex(2):"_L1})
        if (text.startsWith(kind, Qt::CaseInsensitive))
            return HexToText(text.sliced(kind.size()));
    return {};
}

QString Decoded(const QByteArray& bytes)
{
    const bool utf16 = bytes.startsWith("\xFF\xFE");
    QStringDecoder decoder(utf16 ? QStringDecoder::Utf16LE : QStringDecoder::Utf8);
    return decoder(bytes);
}

// Lines without their ends; one that ends with a backslash goes on in the next.
QStringList LogicalLines(QString text)
{
    text.replace(u"\r\n"_s, u"\n"_s);
    text.remove(QChar(0xFEFF));
    QStringList lines;
    bool goesOn = false;
    for (const QString& line : text.split(u'\n')) {
        const bool continues = line.endsWith(u'\\') && (goesOn || line.contains("=hex"_L1));
        const QString piece = continues ? line.chopped(1) : line;
        if (goesOn)
            lines.last() += piece.trimmed();
        else
            lines << piece;
        goesOn = continues;
    }
    return lines;
}

} // namespace

QByteArray WriteRegistryFile(const QString& rootKey, const TSettingValues& values)
{
    QString text = FirstLine + u"\r\n"_s;
    QString section;
    std::map<QString, TSettingValues> sections;
    for (const auto& [name, value] : values) {
        const qsizetype slash = name.lastIndexOf(u'/');
        sections[slash < 0 ? QString() : QString(name.left(slash)).replace(u'/', u'\\')][name.mid(slash + 1)] = value;
    }
    sections[QString()]; // the key itself is there, also without values of its own
    for (const auto& [key, entries] : sections) {
        text += u"\r\n["_s + rootKey + (key.isEmpty() ? QString() : u'\\' + key) + u"]\r\n"_s;
        for (const auto& [name, value] : entries)
            text += Quoted(name) + u'=' + ValueText(value) + u"\r\n"_s;
    }
    QStringEncoder encoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
    return encoder(text);
}

std::optional<TSettingValues> ReadRegistryFile(const QByteArray& bytes, const QString& rootKey)
{
    if (bytes.size() > LargestFile)
        return {};
    const QStringList lines = LogicalLines(Decoded(bytes));
    if (lines.isEmpty() || lines.front().trimmed() != FirstLine)
        return {};
    const QString last = u'\\' + rootKey.mid(rootKey.lastIndexOf(u'\\') + 1);
    TSettingValues values;
    std::optional<QString> prefix; // of the names in the present key; none outside ours
    for (const QString& line : lines) {
        QStringView rest = QStringView(line).trimmed();
        if (rest.startsWith(u'[')) {
            const QString key = rest.sliced(1).chopped(rest.endsWith(u']') ? 1 : 0).toString();
            const qsizetype at = (key + u'\\').indexOf(last + u'\\', 0, Qt::CaseInsensitive);
            prefix.reset();
            if (at >= 0 && !key.startsWith(u'-')) {
                const QString below = key.mid(at + last.size() + 1);
                prefix = below.isEmpty() ? QString() : QString(below).replace(u'\\', u'/') + u'/';
            }
            continue;
        }
        const std::optional<QString> name = prefix ? TakeQuoted(rest) : std::nullopt;
        if (!name || name->isEmpty() || !rest.trimmed().startsWith(u'='))
            continue;
        if (const std::optional<QString> value = ReadValue(rest.trimmed().sliced(1).trimmed()))
            values[*prefix + *name] = *value;
    }
    return values;
}

} // namespace Kestrune
