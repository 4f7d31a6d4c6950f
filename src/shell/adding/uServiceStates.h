// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uAnswerReader.h"
#include "uDownloadQueue.h"
#include "uInfoGrabber.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <vector>

namespace Kestrune {

/// What a service is at in a tab.
enum class TServiceState : quint8 { ssIdle, ssSearching, ssWaiting, ssFound, ssFailed, ssNeedsKey, ssStopped };
using enum TServiceState;

struct TServiceStatus {
    QString Name, DisplayName;
    TServiceState State = ssIdle;
    int Found = 0;
    QDateTime Until; ///< waiting: when the service may be asked
    QString Reason;  ///< failed: why
};

/// How each service fares in the searches of the tabs: told by what becomes of its job, and by its answer.
class TServiceStates {
public:
    /// A search begins in a tab, in place of the one before; no service is asked yet. The search outlives it.
    void Begin(qint64 tab, const TInfoGrabberSearch* search, const QStringList& displayNames);
    /// Those of a tab in the order of its search; none for an unknown tab.
    const std::vector<TServiceStatus>& Of(qint64 tab) const;
    /// Forgets all tabs but those that are named.
    void KeepOnly(const std::vector<qint64>& tabs);

    /// A service is asked at this address.
    void Asked(qint64 tab, size_t service, const QString& url);
    /// What a job is at; true when a state changed.
    bool JobEvent(const TJobReport& report);
    void Answered(qint64 tab, size_t service, const TAnswerDocument& answer);
    /// All jobs have ended: a service whose answer found nobody does not search any more.
    void EndAll();

private:
    struct TTabStates {
        const TInfoGrabberSearch* Search = nullptr;
        std::vector<TServiceStatus> Services;
    };
    struct TJobOwner {
        qint64 Tab;
        size_t Service;
    };
    TServiceStatus* Find(const TJobOwner& owner);
    const TInfoGrabberServiceAction& ActionOf(const TJobOwner& owner) const;
    void Failed(TServiceStatus& status, const TJobOwner& owner, const TJobReport& report) const;

    std::map<qint64, TTabStates> FTabs;
    std::multimap<QString, TJobOwner> FJobs; // by address: equal ones are one job
};

} // namespace Kestrune
