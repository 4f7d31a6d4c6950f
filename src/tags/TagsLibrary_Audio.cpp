// SPDX-License-Identifier: GPL-3.0-or-later
#include "ID3v2Library.h"
#include "TagsLibrary.h"
#include "uFlacTag.h"

#include <cmath>

namespace Kestrune {

namespace {

TAudioAttributes AttributesOf(const TTags& tags, TTagType type)
{
    switch (type) {
    case ttFlac: return tags.FlacTag().Audio;
    case ttID3v2: return tags.ID3v2Tag().AudioAttributes();
    default: return {};
    }
}

} // namespace

template <typename T>
T TSourceAudioAttributes::ByPriority(T TAudioAttributes::*field) const
{
    for (const TTagType type : FParent.TagLoadPriority)
        if (const T value = AttributesOf(FParent, type).*field; value != 0)
            return value;
    return 0;
}

int TSourceAudioAttributes::Channels() const { return ByPriority(&TAudioAttributes::Channels); }
int TSourceAudioAttributes::SamplesPerSec() const { return ByPriority(&TAudioAttributes::SamplesPerSec); }
int TSourceAudioAttributes::BitsPerSample() const { return ByPriority(&TAudioAttributes::BitsPerSample); }
qint64 TSourceAudioAttributes::SampleCount() const { return ByPriority(&TAudioAttributes::SampleCount); }
qint64 TSourceAudioAttributes::BitRate() const { return ByPriority(&TAudioAttributes::BitRate); }

// Not by priority: a fixed order of the readers.
double TSourceAudioAttributes::PlayTime() const
{
    if (const double time = FParent.FlacTag().Audio.PlayTime; time != 0)
        return time;
    const TID3v2Tag& id3v2 = FParent.ID3v2Tag();
    const double time = id3v2.AudioAttributes().PlayTime;
    return id3v2.SourceFileType() == sftAIFF ? std::round(time) : time;
}

} // namespace Kestrune
