// SPDX-License-Identifier: GPL-3.0-or-later
// Search result documents: the releases that are loaded of them, and again over themselves, as full records are.
#include "uObjs.h"
#include "uReleaseFetch.h"
#include "uXml.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Kestrune;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto document = TXmlDocument::Parse(bytes);
    std::vector<TXmlElement> nodes;
    if (!document || !FindReleases(*document, nodes))
        return 0;
    for (const TXmlElement& node : nodes) {
        TAlbumRelease release;
        LoadAlbumReleaseFromNode(release, node);
        const size_t tracks = release.Tracks.size(), credits = release.Credits.size();
        const qsizetype genres = release.Genres.size();
        LoadAlbumReleaseFromNode(release, node);
        if (release.Tracks.size() != tracks || release.Credits.size() != credits || release.Genres.size() != genres)
            std::abort();
    }
    return 0;
}
