// SPDX-License-Identifier: GPL-3.0-or-later
// Definitions of services: reading them, and making requests of what they say.
#include "uDefaults.h"
#include "uHostLimiter.h"
#include "uInfoGrabber.h"
#include "uKRNParams.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Kestrune;
using namespace Qt::StringLiterals;

namespace {

// A file in memory, whose path is opened like any other.
class TMemoryFile {
public:
    TMemoryFile() : FFile(memfd_create("definitions", MFD_CLOEXEC)) {}
    ~TMemoryFile() { close(FFile); }

    QString Write(const uint8_t* data, size_t size) const
    {
        if (ftruncate(FFile, 0) != 0 || pwrite(FFile, data, size, 0) != static_cast<ssize_t>(size))
            std::abort();
        return u"/proc/self/fd/%1"_s.arg(FFile);
    }

private:
    int FFile;
};

void Ask(const TInfoGrabber& grabber, const TInfoGrabberServiceAction& action, TDefaults& presets, TKRNParams params)
{
    for (const int mediaType : {0, 1, 5}) {
        presets.DiscogsMediaType = presets.MusicBrainzMediaType = mediaType;
        (void)action.URL(presets);
    }
    (void)action.MissingKeys();
    action.AddSignature(params);
    (void)params.ReplaceWithParams(action.URL(presets));
    try {
        (void)ReadStylesheet(grabber.Folder(), action.Tranform());
    } catch (const EInfoGrabberError&) {
        return;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TMemoryFile file;
    static TDefaults presets = [] {
        TDefaults made;
        made.DiscogsCountry = made.MusicBrainzCountry = u"DE"_s;
        return made;
    }();
    static const TKRNParams params = [] {
        TKRNParams made;
        made.AddPrivateKeysToParams();
        made.Add(u"ARTIST"_s, u"%ARTIST% \"a\" \u00FC"_s);
        made.Add(u"BARCODE"_s, u"4001234567890"_s);
        made.AddQueryTwins();
        return made;
    }();
    HostLimiter().Clear();
    TInfoGrabber grabber;
    try {
        grabber.Parse(file.Write(data, size));
    } catch (const EInfoGrabberError&) {
        if (grabber.Count() > 0 || grabber.InfoGrabberServices().Count() > 0)
            std::abort();
        return 0;
    }
    for (int i = 0; i < grabber.InfoGrabberServices().Count(); ++i) {
        const TInfoGrabberService& service = grabber.InfoGrabberServices().GetItem(i);
        if (service.WaitBetweenRequests() < 0)
            std::abort();
        for (const auto& action : service.Items())
            Ask(grabber, *action, presets, params);
    }
    for (int i = 0; i < grabber.Count(); ++i) {
        const TInfoGrabberSearch& search = grabber.GetItem(i);
        for (int k = 0; k < search.Count(); ++k)
            Ask(grabber, search.GetItem(k), presets, params);
    }
    return 0;
}
