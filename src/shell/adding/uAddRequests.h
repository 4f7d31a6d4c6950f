// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDownloadQueue.h"
#include "uHitTabs.h"
#include "uKRNParams.h"

#include <map>
#include <memory>
#include <utility>

namespace Kestrune {

inline constexpr int WM_USER_METADATA_TEXT_SEARCH = WM_USER + 3;
inline constexpr int WM_USER_METADATA_TEXT_EXTRA_INFO = WM_USER + 4;
inline constexpr int WM_USER_METADATA_THUMB_PICTURE = WM_USER + 5;
inline constexpr int WM_USER_METADATA_LARGE_PICTURE = WM_USER + 6;

/// What the search window asks the services for, and its queue of downloads. The answers go to the receiver, with the
/// message objects of `uAddMessages.h`. Adding a request does not start it: the queue is run by the owner.
class TAddRequests {
public:
    /// The definitions outlive it.
    TAddRequests(const TInfoGrabber& grabber, THandle receiver);

    TDownloadQueue& Queue() { return FQueue; }
    const TDownloadQueue& Queue() const { return FQueue; }
    /// What gives the full record of a service's hit, or null.
    const TInfoGrabberServiceAction* RecordAction(const QString& service) const;

    /// One service of the search of a tab; the address that is asked.
    QString AskService(const TSearchTab& tab, size_t service);
    /// The pictures of a hit, small ones for its card.
    void AskForPictures(const TInfoGrabberServiceAction& action, const TSearchTab& tab, const TSearchHit& hit);
    /// The full record of a hit where there is one and it was not asked for.
    void AskForRecord(const TSearchTab& tab, TSearchHit& hit);
    /// The front cover where it is not there; `action` gave its address, null for that of the hit itself.
    void AskForLargeCover(qint64 tab, const TSearchHit& hit, const TInfoGrabberServiceAction* action);
    /// A job failed: a record that it was about can be asked for again.
    void Failed(const QString& url, THitTabs& tabs) const;
    /// No job is left.
    void Ended() { FRecordJobs.clear(); }

private:
    void AddText(const TInfoGrabberServiceAction& action, const QString& url, int message,
                 std::unique_ptr<TMessageObject> with);

    const TInfoGrabber& FGrabber;
    TKRNParams FParams;
    std::multimap<QString, std::pair<qint64, qint64>> FRecordJobs; // tab and record of a full record that was asked for
    TDownloadQueue FQueue;
};

} // namespace Kestrune
