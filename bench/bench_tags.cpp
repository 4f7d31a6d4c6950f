// SPDX-License-Identifier: GPL-3.0-or-later
// Reads all tags, attributes and pictures of a folder tree, side by side with a plain loop over TagLib:
//     bench_tags FOLDER [ROUNDS]
// Prints the best and the median time of each, and the peak memory after our rounds, before the other library runs.
#include "TagsLibrary.h"
#include "uFilePath.h"

#include <fileref.h>
#include <sys/resource.h>
#include <tpropertymap.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace {

using TFiles = std::vector<std::filesystem::path>;

struct TSum {
    qint64 Read = 0; ///< files with a tag or with a length
    qint64 Fields = 0;
    qint64 PictureBytes = 0; ///< ours only; the other library parses its own on opening
    double Seconds = 0;
};

TFiles AudioFiles(const char* folder)
{
    TFiles files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

// The files that the other library opens: both loops run over the same ones.
TFiles OpenedByTagLib(const TFiles& files)
{
    TFiles opened;
    for (const auto& path : files)
        if (!TagLib::FileRef(path.c_str()).isNull())
            opened.push_back(path);
    return opened;
}

TSum ReadOurs(const TFiles& files)
{
    TSum sum;
    for (const auto& path : files) {
        Kestrune::TTags tags;
        tags.ParseWavPackAudioAttributes = true;
        tags.ParseMusePackAudioAttributes = true;
        tags.ParseMonkeyAudioAttributes = true;
        if (tags.LoadFromFile(Kestrune::PathToText(path)) != 0)
            continue;
        const Kestrune::TSourceAudioAttributes& audio = tags.SourceAudioAttributes();
        const double seconds = audio.PlayTime();
        sum.Seconds += seconds + static_cast<double>(audio.BitRate() + audio.Channels()) * 0;
        sum.Read += tags.Loaded() || seconds > 0;
        sum.Fields += tags.Count();
        for (const auto& art : tags.CoverArts())
            sum.PictureBytes += art->Stream.size();
    }
    return sum;
}

TSum ReadTagLib(const TFiles& files)
{
    TSum sum;
    for (const auto& path : files) {
        const TagLib::FileRef file(path.c_str(), true, TagLib::AudioProperties::Average);
        if (file.isNull())
            continue;
        ++sum.Read;
        for (const auto& [name, values] : file.file()->properties())
            sum.Fields += values.size();
        if (const auto* audio = file.audioProperties())
            sum.Seconds += audio->lengthInMilliseconds() / 1000.0 + (audio->bitrate() + audio->channels()) * 0;
    }
    return sum;
}

template <typename F>
double Milliseconds(F&& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void Report(const char* name, std::vector<double> times, const TSum& sum)
{
    std::ranges::sort(times);
    std::printf("%-8s best %7.1f ms  median %7.1f ms  read %lld  fields %lld  pictures %lld bytes  length %.1f s\n",
                name, times.front(), times[times.size() / 2], static_cast<long long>(sum.Read),
                static_cast<long long>(sum.Fields), static_cast<long long>(sum.PictureBytes), sum.Seconds);
}

long PeakKiB()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fputs("usage: bench_tags FOLDER [ROUNDS]\n", stderr);
        return 2;
    }
    const int rounds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 10;
    const TFiles all = AudioFiles(argv[1]);
    ReadOurs(all); // warms the cache
    const long peak = PeakKiB();
    const TFiles files = OpenedByTagLib(all);
    std::printf("%zu files, %zu of them opened by TagLib; our peak memory %ld KiB\n", all.size(), files.size(), peak);
    std::vector<double> ours;
    std::vector<double> theirs;
    TSum ourSum;
    TSum theirSum;
    for (int i = 0; i < rounds; ++i) { // turn by turn, so that other work on the machine meets both
        ours.push_back(Milliseconds([&] { ourSum = ReadOurs(files); }));
        theirs.push_back(Milliseconds([&] { theirSum = ReadTagLib(files); }));
    }
    Report("ours", ours, ourSum);
    Report("TagLib", theirs, theirSum);
    return 0;
}
