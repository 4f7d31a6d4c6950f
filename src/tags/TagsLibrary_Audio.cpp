// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v2Library.h"
#include "TagsLibrary.h"
#include "uFlacTag.h"
#include "uMP4Tag.h"
#include "uMPEGplus.h"
#include "uMonkey.h"
#include "uOggTag.h"
#include "uWAVPackfile.h"
#include "uWAVTag.h"
#include "uWMATag.h"

#include <cmath>

namespace Kestrune {

namespace {

TAudioAttributes AttributesOf(const TTags& tags, TTagType type)
{
    switch (type) {
    case ttFlac: return tags.FlacTag().Audio;
    case ttID3v2: return tags.ID3v2Tag().AudioAttributes();
    case ttOpusVorbis: return tags.OggVorbisAndOpusTag().Audio;
    case ttWAV: return tags.WAVTag().Info.Audio;
    case ttMP4: return tags.MP4Tag().Audio;
    case ttWMA: return tags.WMATag().Audio;
    default: return {};
    }
}

} // namespace

TSourceAudioAttributes::TSourceAudioAttributes(const TTags& parent) : FParent(parent) {}

TSourceAudioAttributes::~TSourceAudioAttributes() = default;

const TAudioAttributes* TSourceAudioAttributes::Special() const
{
    if (WAVPackAttributes)
        return &WAVPackAttributes->Audio;
    if (MusePackAttributes)
        return &MusePackAttributes->Audio;
    return MonkeyAttributes ? &MonkeyAttributes->Audio : nullptr;
}

template <typename T>
T TSourceAudioAttributes::ByPriority(T TAudioAttributes::*field) const
{
    if (const TAudioAttributes* special = Special())
        return special->*field;
    for (const TTagType type : FParent.TagLoadPriority) {
        const T value = AttributesOf(FParent, type).*field;
        // A Vorbis stream answers alone, also when it does not know.
        if (value != 0 || (type == ttOpusVorbis && FParent.OggVorbisAndOpusTag().Format == ofVorbis))
            return value;
    }
    return 0;
}

int TSourceAudioAttributes::Channels() const { return ByPriority(&TAudioAttributes::Channels); }
int TSourceAudioAttributes::SamplesPerSec() const { return ByPriority(&TAudioAttributes::SamplesPerSec); }
int TSourceAudioAttributes::BitsPerSample() const { return ByPriority(&TAudioAttributes::BitsPerSample); }
qint64 TSourceAudioAttributes::SampleCount() const { return ByPriority(&TAudioAttributes::SampleCount); }
qint64 TSourceAudioAttributes::BitRate() const { return ByPriority(&TAudioAttributes::BitRate); }

// Not by priority: a fixed order of the readers, MPEG before Windows Media before the containers.
double TSourceAudioAttributes::PlayTime() const
{
    if (const TAudioAttributes* special = Special())
        return special->PlayTime;
    for (const TTagType type : {ttFlac, ttOpusVorbis, ttWAV, ttMP4})
        if (const double time = AttributesOf(FParent, type).PlayTime; time != 0)
            return time;
    const TSourceFileType type = FParent.ID3v2Tag().SourceFileType();
    const double time = FParent.ID3v2Tag().AudioAttributes().PlayTime;
    if (type != sftMPEG || time == 0)
        if (const double media = FParent.WMATag().Audio.PlayTime; media != 0)
            return media;
    return type == sftAIFF ? std::nearbyint(time) : time; // whole seconds, a half to the even one
}

} // namespace Kestrune
