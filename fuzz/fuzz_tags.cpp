// SPDX-License-Identifier: GPL-3.0-or-later
// One fuzz target per reader of audio files: FUZZ_READER names the function below that a target calls.
#include "ID3v1Library.h"
#include "ID3v2Library.h"
#include "TagsLibrary_p.h"
#include "uAPEv2Tag.h"
#include "uFlacTag.h"
#include "uMP4Tag.h"
#include "uMPEGplus.h"
#include "uMonkey.h"
#include "uOggTag.h"
#include "uStreamSniffer.h"
#include "uWAVPackfile.h"
#include "uWAVTag.h"
#include "uWMATag.h"

namespace Kestrune {

namespace {

// Reads and maps, so that the value readers run as well.
template <typename T>
[[maybe_unused]] void ReadAndMap(TByteSource& source)
{
    T tag;
    tag.Load(source);
    BatchOf(tag);
}

[[maybe_unused]] void FuzzID3v2(TByteSource& source)
{
    TID3v2Tag tag;
    tag.Load(source);
    tag.RemoveUnsynchronisationOnAllFrames();
    tag.DeCompressAllFrames();
    BatchOf(tag);
    tag.AudioAttributes();
}

[[maybe_unused]] void FuzzAPE(TByteSource& source) { ReadAndMap<TAPEv2Tag>(source); }
[[maybe_unused]] void FuzzFlac(TByteSource& source) { ReadAndMap<TFlacTag>(source); }
[[maybe_unused]] void FuzzID3v1(TByteSource& source) { ReadAndMap<TID3v1Tag>(source); }
[[maybe_unused]] void FuzzMP4(TByteSource& source) { ReadAndMap<TMP4Tag>(source); }
[[maybe_unused]] void FuzzOgg(TByteSource& source) { ReadAndMap<TOpusTag>(source); }
[[maybe_unused]] void FuzzWAV(TByteSource& source) { ReadAndMap<TWAVTag>(source); }
[[maybe_unused]] void FuzzWMA(TByteSource& source) { ReadAndMap<TWMATag>(source); }
[[maybe_unused]] void FuzzWavPack(TByteSource& source) { TWAVPackfile().Load(source, 0); }
[[maybe_unused]] void FuzzMusepack(TByteSource& source) { TMPEGplus().Load(source, ID3v2TagSize(source, 0), 0); }
[[maybe_unused]] void FuzzMonkey(TByteSource& source) { TMonkey().Load(source, ID3v2TagSize(source, 0), 0); }
[[maybe_unused]] void FuzzSniffer(TByteSource& source) { SniffStream(source); }

} // namespace

} // namespace Kestrune

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size);

extern "C" int LLVMFuzzerTestOneInput(const char* data, size_t size)
{
    Kestrune::TMemorySource source(QByteArray(data, static_cast<qsizetype>(size)));
    Kestrune::FUZZ_READER(source);
    return 0;
}
