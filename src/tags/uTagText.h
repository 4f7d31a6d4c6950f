// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <optional>

namespace Kestrune {

/// Text encodings of ID3v2 (ID3v2.4.0 structure, section 4), in the order of their numbers.
enum class TTextEncoding : quint8 { teLatin1, teUTF16, teUTF16BE, teUTF8 };
using enum TTextEncoding;

/// The encoding that a frame's first byte names; nothing for a byte that names none.
std::optional<TTextEncoding> TextEncodingFromByte(quint8 byte);

// The decoders never fail: what is no text in the encoding becomes U+FFFD, one for each faulty unit. They take all
// the bytes, NULs included.

/// ISO-8859-1, all 256 values.
QString DecodeLatin1(QByteArrayView bytes);
/// UTF-8 (RFC 3629); a byte order mark at the start is dropped.
QString DecodeUTF8(QByteArrayView bytes);
bool IsValidUTF8(QByteArrayView bytes);
/// Windows-1252; its five unused bytes become U+FFFD.
QString DecodeWindows1252(QByteArrayView bytes);
/// UTF-16 of known order; a lone byte at the end is dropped.
QString DecodeUTF16(QByteArrayView bytes, bool bigEndian);
/// RIFF text: UTF-8 where it is valid, else Windows-1252. Ends at the first NUL, blanks at the end are dropped.
QString DecodeRiffText(QByteArrayView bytes);
/// ISO-8859-1 or ASCII in a field of fixed length: ends at the first NUL, blanks at the end are dropped.
QString DecodeFixedText(QByteArrayView bytes);

/// A GUID in the order of its bytes in files, as "{01234567-...}"; empty when there are not 16 bytes.
QString GuidText(QByteArrayView bytes);

/// Decodes a text up to its end or first NUL. UTF-16 takes the order from its byte order mark; without one
/// `teUTF16BE` is big-endian and `teUTF16` is guessed from where the zero bytes stand.
QString DecodeText(QByteArrayView bytes, TTextEncoding encoding);

/// The texts of a list separated by NUL, the first MostFields of them, empty ones left out unless told. A byte order
/// mark holds for the texts after it.
QStringList DecodeTextList(QByteArrayView bytes, TTextEncoding encoding, bool keepEmpty = false);

/// Cuts one text off the front of `bytes`, with its NUL. Gives nothing, and leaves `bytes` alone, without a NUL.
std::optional<QByteArrayView> TakeTerminated(QByteArrayView& bytes, TTextEncoding encoding);

} // namespace Kestrune
