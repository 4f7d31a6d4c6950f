// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <initializer_list>
#include <utility>

/// Tags and small audio files, built byte by byte.
namespace Kestrune::Kit {

QByteArray BE16(quint32 value);
QByteArray BE24(quint32 value);
QByteArray BE32(quint32 value);
QByteArray BE64(quint64 value);
QByteArray LE16(quint32 value);
QByteArray LE32(quint32 value);
QByteArray LE64(quint64 value);
QByteArray SyncSafe32(quint32 value);
/// UTF-16 code units in the given order, without a byte order mark.
QByteArray Utf16(const QString& text, bool bigEndian);

// ID3

struct TId3v1Fields {
    QByteArray Title = {}, Artist = {}, Album = {}, Year = {}, Comment = {};
    int Track = 0;
    int Genre = 255;
};
QByteArray Id3v1(const TId3v1Fields& fields);
QByteArray Lyrics3v1(const QByteArray& text);
QByteArray Lyrics3v2(std::initializer_list<std::pair<const char*, QByteArray>> fields);

/// A whole tag. Version 4 gets syncsafe frame sizes from Id3Frame. `sizeDelta` falsifies the stated size.
QByteArray Id3v2(int major, const QByteArray& frames, quint8 flags = 0, int padding = 0, int sizeDelta = 0);
/// One frame; version 2 takes three letters.
QByteArray Id3Frame(int major, const QByteArray& id, const QByteArray& content, quint16 flags = 0);
/// Content of a text frame in encoding 0 or 3, ready in bytes.
QByteArray Id3Text(quint8 encoding, const QByteArray& text);
/// Content of an APIC frame.
QByteArray Id3Picture(const QByteArray& mime, int type, const QByteArray& description, const QByteArray& picture);
/// Writes 0xFF 0x00 where the bytes ask for it.
QByteArray Unsynchronise(const QByteArray& bytes);

/// MPEG 1 layer 3 frames, 128 kbit/s, 44,100 Hz, silent: 417 or 418 bytes and 1,152 samples each.
QByteArray MpegFrames(int count);
/// The same with a Xing header of that magic as a further first frame.
QByteArray XingFrames(const QByteArray& magic, int count, quint32 statedFrames, quint32 statedBytes);
QByteArray VbriFrames(int count, quint32 statedFrames, quint32 statedBytes);

// FLAC and Vorbis comments

QByteArray VorbisComments(const QList<QByteArray>& comments, const QByteArray& vendor = "builder");
QByteArray FlacBlock(int type, const QByteArray& content, bool last = false);
QByteArray FlacStreamInfo(int rate, int channels, int bits, quint64 samples);
QByteArray FlacPicture(int type, const QByteArray& mime, const QByteArray& description, const QByteArray& picture,
                       int width = 0, int height = 0, int depth = 0, int colors = 0);

// Containers of chunks

QByteArray Riff(const QByteArray& form, const QByteArray& chunks, const QByteArray& id = "RIFF");
QByteArray RiffChunk(const QByteArray& id, const QByteArray& content);
QByteArray WavFmt(int format, int channels, int rate, int bits);
QByteArray Aiff(const QByteArray& form, const QByteArray& chunks);
QByteArray AiffChunk(const QByteArray& id, const QByteArray& content);
QByteArray AiffComm(int channels, quint32 frames, int bits, int rate, const QByteArray& compression = {});
QByteArray Dsf(int channels, int rate, quint64 samples, const QByteArray& sound, const QByteArray& id3 = {});
QByteArray DffChunk(const QByteArray& id, const QByteArray& content);
QByteArray Dff(int channels, int rate, const QByteArray& sound, const QByteArray& id3 = {});

} // namespace Kestrune::Kit
