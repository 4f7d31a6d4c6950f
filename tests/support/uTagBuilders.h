// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

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

// APEv2

/// One item; flags 0 is text, 2 binary, 4 an address.
QByteArray ApeItem(const QByteArray& key, const QByteArray& value, quint32 flags = 0);
/// A tag with header and footer. `sizeDelta` falsifies the stated size.
QByteArray ApeTag(const QList<QByteArray>& items, int sizeDelta = 0);

// Ogg

constexpr quint8 OggContinued = 1, OggFirst = 2, OggLast = 4;
/// One page that holds the bytes as one packet (`complete`) or as the piece of one.
QByteArray OggPage(quint8 flags, quint64 granule, quint32 serial, const QByteArray& packet, bool complete = true);
/// A stream of identification, comments (over as many pages as they need) and a last page with a granule position.
QByteArray OggStream(const QByteArray& identification, const QByteArray& comments, quint64 granule, quint32 serial = 7);
QByteArray VorbisIdentification(int channels, int rate, int nominal);
QByteArray OpusIdentification(int channels, int preSkip);
QByteArray OggVorbis(const QList<QByteArray>& comments);
QByteArray OggOpus(const QList<QByteArray>& comments);

// MP4

QByteArray Mp4Atom(const QByteArray& name, const QByteArray& content);
QByteArray Mp4Data(quint32 type, const QByteArray& value);
/// A "----" atom with one text.
QByteArray Mp4FreeForm(const QByteArray& name, const QByteArray& text);
/// The description of an AAC stream of 64,000 bits a second with this configuration.
QByteArray Mp4Esds(const QByteArray& config);
/// A sample description of 16 bits with the description of its codec.
QByteArray Mp4SampleEntry(const QByteArray& name, int channels, int rate, const QByteArray& codec);
/// A file of one second by its headers, with this item list and further user data; of AAC unless told.
QByteArray Mp4File(const QByteArray& items, const QByteArray& userData = {}, bool movieLast = false,
                   const QByteArray& sampleEntry = {});
QByteArray Mp4Xtra(const QByteArray& name, quint16 type, const QByteArray& value);

// ASF

QByteArray AsfObject(const char* id, const QByteArray& content);
/// Objects by the first bytes of their identifiers, as in the file.
QByteArray AsfContent(const QStringList& titleAuthorCopyrightDescriptionRating);
QByteArray AsfExtended(const QList<QByteArray>& attributes, quint16 count);
QByteArray AsfAttribute(const QString& name, quint16 type, const QByteArray& value);
QByteArray AsfMetadata(const QString& name, quint16 type, const QByteArray& value);
QByteArray AsfPicture(int type, const QString& mime, const QString& description, const QByteArray& picture);
/// A file of 2.5 s, stereo, 44,100 Hz, 64,000 bits a second by its headers.
QByteArray AsfFile(const QByteArray& objects);

// WavPack, Musepack, Monkey's Audio

QByteArray WavPackBlock(quint32 total, quint32 index, quint32 samples, quint32 flags, const QByteArray& body);
QByteArray Musepack8(quint32 samples, quint32 silence, const QByteArray& sound);
QByteArray Musepack7(quint32 frames, int rateIndex, int lastFrame, const QByteArray& sound);
QByteArray Musepack6(int version, quint32 frames, int kilobits, const QByteArray& sound);
QByteArray MonkeyNew(quint32 frames, quint32 blocks, quint32 finalBlocks, int bits, int channels, int rate);
QByteArray MonkeyOld(int version, int level, int channels, int rate, quint32 frames, quint32 finalBlocks);

/// A small file for one reader, with as many of the format's features as fit.
struct TTagSeed {
    const char* Reader; ///< as in the name of its fuzz target: "ape", "flac", "id3v1", "id3v2", "mp4", ...
    const char* FileName;
    QByteArray Bytes;
};
QList<TTagSeed> TagSeeds();

} // namespace Kestrune::Kit
