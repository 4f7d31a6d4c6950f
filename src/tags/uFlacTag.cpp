// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFlacTag.h"

#include "ID3v2Library.h"
#include "uFilePath.h"

#include <algorithm>

namespace Kestrune {

namespace {

constexpr int BlockStreamInfo = 0;
constexpr int BlockVorbisComment = 4;
constexpr int BlockPicture = 6;
constexpr int BlockInvalid = 127;
constexpr int MostBlocks = 1024; // no honest file has more; a file of empty blocks must not keep us busy

} // namespace

bool TFlacStreamInfo::Parse(QByteArrayView bytes)
{
    TByteReader reader(bytes);
    MinimumBlockSize = reader.U16BE();
    MaximumBlockSize = reader.U16BE();
    reader.Skip(6);
    // 20 bits of rate, 3 of channels - 1, 5 of bits - 1, 36 of samples
    const quint64 packed = reader.U64BE();
    if (reader.Failed())
        return false;
    Audio.SamplesPerSec = static_cast<int>(packed >> 44);
    Audio.Channels = static_cast<int>(packed >> 41 & 7) + 1;
    Audio.BitsPerSample = static_cast<int>(packed >> 36 & 31) + 1;
    Audio.SampleCount = static_cast<qint64>(packed & 0xFFFFFFFFF);
    if (Audio.SamplesPerSec > 0)
        Audio.PlayTime = static_cast<double>(Audio.SampleCount) / Audio.SamplesPerSec;
    return true;
}

void TFlacTag::Clear()
{
    const bool parse = ParseCoverArts;
    *this = {};
    ParseCoverArts = parse;
}

int TFlacTag::LoadFromFile(const QString& fileName)
{
    Clear();
    const auto source = TFileSource::Open(TextToPath(fileName));
    return source ? Load(*source) : TagResultNoFile;
}

int TFlacTag::Load(TByteSource& source)
{
    Clear();
    qint64 position = ID3v2TagSize(source, 0);
    char header[4];
    if (source.ReadAt(position, header, 4) != 4 || QByteArrayView(header, 4) != "fLaC")
        return TagResultNoTag;
    position += 4;
    for (int i = 0; i < MostBlocks && source.ReadAt(position, header, 4) == 4; ++i) {
        TByteReader reader(QByteArrayView(header, 4));
        const quint8 head = reader.U8();
        const qint64 size = reader.U24BE();
        const int type = head & 0x7F;
        if (type == BlockInvalid)
            break;
        position += 4;
        LoadBlock(type, source, position, size);
        position += size;
        if ((head & 0x80) != 0)
            break;
    }
    Audio.BitRate = BitRateOf(source.Size() - position, Audio.PlayTime);
    return Loaded ? TagResultOk : TagResultNoTag;
}

void TFlacTag::LoadBlock(int type, TByteSource& source, qint64 offset, qint64 size)
{
    if (type == BlockStreamInfo) {
        // The first one counts: behind a block of a wrong size, a picture's bytes look like another.
        TFlacStreamInfo info;
        if (Audio.SamplesPerSec == 0 && info.Parse(source.Read(offset, std::min<qint64>(size, 34))))
            Audio = info.Audio;
    } else if (type == BlockVorbisComment) {
        Comments.Parse(source.Read(offset, size), ParseCoverArts);
        Loaded = true;
    } else if (type == BlockPicture && ParseCoverArts) {
        if (auto picture = ParseFlacPicture(source.Read(offset, size))) {
            Pictures.push_back(std::move(*picture));
            Loaded = true;
        }
    }
}

} // namespace Kestrune
