// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uAnswerReader.h"
#include "uDownloader.h"
#include "uObjs.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

namespace Kestrune {

class TKRNParams;

/// Fetches from a service on the thread that calls; one object for one logical client, whose requests share cookies.
class TReleaseFetch {
public:
    /// Requests and pauses end at once when `stop` is asked for.
    explicit TReleaseFetch(const TInfoGrabber& grabber, std::stop_token stop = {});
    ~TReleaseFetch();

    /// The first release of the answer, with its pictures; where the action gives summaries only, the full record that
    /// its service's `getrelease` action gives. False when the answer does not come or is not understood; true with a
    /// null release when it holds none.
    bool FetchRelease(const TInfoGrabberServiceAction& action, const TKRNParams& params,
                      std::unique_ptr<TAlbumRelease>& release);
    /// All releases of the answer as they are, without pictures.
    bool FetchHits(const TInfoGrabberServiceAction& action, const TKRNParams& params, TAlbumReleases& releases);
    /// The full record of a hit, with its pictures: the action is that of the search which gave it.
    bool FetchDetails(const TInfoGrabberServiceAction& action, std::unique_ptr<TAlbumRelease>& release);

    /// Of the last request that failed.
    const QString& Error() const { return FError; }
    /// True when the last request was a search that was answered with 404, as some services say that they know nothing.
    /// One that says so in the answer itself is no failure.
    bool NotFound() const { return FNotFound; }

    /// Between a search and its detail request, in milliseconds.
    static constexpr int DetailPause = 1000;

private:
    bool FetchDocument(const TInfoGrabberServiceAction& action, const TKRNParams& params, TAlbumReleases& releases,
                       bool firstOnly);

    const TInfoGrabber& FGrabber;
    std::stop_token FStop;
    std::unique_ptr<TCookieManagerComponent> FCookies;
    std::unique_ptr<TDownloader> FTransport;
    QString FError;
    bool FNotFound = false;
};

/// Lets pictures of releases be fetched through this layer. Once at start.
void InstallPictureFetcher();

} // namespace Kestrune
