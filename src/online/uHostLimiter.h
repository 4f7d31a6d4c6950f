// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>

namespace Kestrune {

/// Spaces the requests of the whole process: one request at a time to a host that has a pace, and the next one only
/// when that pace has passed since the answer. An answer that does not come to its end holds the others up for a few
/// seconds only. A host without a pace is held back only where it asked for it. Any thread.
class THostLimiter {
public:
    using TClock = std::chrono::steady_clock;

    /// At least this many milliseconds between two requests to a host; of several values the largest holds.
    void SetPace(const QString& host, int milliseconds);
    /// 0 for a host without a pace.
    int Pace(const QString& host) const;
    /// No request to the host before this time has passed, as a busy server asks. At most an hour is taken.
    void Delay(const QString& host, std::chrono::seconds time);
    /// Forgets all hosts.
    void Clear();
    /// How long a running request holds its host.
    void SetPatience(std::chrono::milliseconds time);
    static constexpr std::chrono::milliseconds DefaultPatience{5000};

    /// Waits for the host's turn, at the pace of the host or of `pace` where that is larger. `waiting` is told the
    /// milliseconds each time that it has to wait. 0 when `aborted` was set meanwhile (call Wake then); otherwise the
    /// number with which Leave must follow the request.
    quint64 Enter(const QString& host, int pace, const std::atomic<bool>& aborted,
                  const std::function<void(int milliseconds)>& waiting);
    void Leave(const QString& host, quint64 request);
    /// Makes waiting threads look at their abort flags.
    void Wake();

private:
    struct THost {
        int Pace = 0;
        std::map<quint64, TClock::time_point> Running; // with their starts
        TClock::time_point Earliest{};
    };
    TClock::time_point HeldUntil(const THost& host) const;

    mutable std::mutex FLock;
    std::condition_variable FChanged;
    std::map<QString, THost> FHosts;
    quint64 FLastRequest = 0;
    std::chrono::milliseconds FPatience = DefaultPatience;
};

/// The one of the process.
THostLimiter& HostLimiter();

} // namespace Kestrune
