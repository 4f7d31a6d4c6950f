// SPDX-License-Identifier: GPL-3.0-or-later
#include "uHostLimiter.h"

#include <algorithm>

namespace Kestrune {

void THostLimiter::SetPace(const QString& host, int pace)
{
    const std::scoped_lock lock(FLock);
    THost& entry = FHosts[host];
    entry.Pace = std::max(entry.Pace, pace);
}

int THostLimiter::Pace(const QString& host) const
{
    const std::scoped_lock lock(FLock);
    const auto found = FHosts.find(host);
    return found == FHosts.end() ? 0 : found->second.Pace;
}

void THostLimiter::Delay(const QString& host, std::chrono::seconds time)
{
    constexpr std::chrono::seconds longest{3600};
    const std::scoped_lock lock(FLock);
    THost& entry = FHosts[host];
    entry.Earliest = std::max(entry.Earliest, TClock::now() + std::clamp(time, std::chrono::seconds{0}, longest));
    FChanged.notify_all();
}

void THostLimiter::Clear()
{
    const std::scoped_lock lock(FLock);
    FHosts.clear();
    FChanged.notify_all();
}

void THostLimiter::SetPatience(std::chrono::milliseconds time)
{
    const std::scoped_lock lock(FLock);
    FPatience = time;
}

// The requests of a map are in the order of their starts: the last one holds longest.
THostLimiter::TClock::time_point THostLimiter::HeldUntil(const THost& host) const
{
    const bool isHeld = host.Pace > 0 && !host.Running.empty();
    return isHeld ? host.Running.rbegin()->second + FPatience : TClock::time_point{};
}

quint64 THostLimiter::Enter(const QString& host, int pace, const std::atomic<bool>& aborted,
                            const std::function<void(int)>& waiting)
{
    std::unique_lock lock(FLock);
    FHosts[host].Pace = std::max(FHosts[host].Pace, pace);
    TClock::time_point told{};
    while (!aborted) {
        THost& entry = FHosts[host];
        const auto now = TClock::now();
        const bool busy = now < HeldUntil(entry);
        if (!busy && now >= entry.Earliest) {
            entry.Running.emplace(++FLastRequest, now);
            entry.Earliest = std::max(entry.Earliest, now + std::chrono::milliseconds(entry.Pace));
            return FLastRequest;
        }
        const auto until = busy ? HeldUntil(entry) : entry.Earliest;
        // Only a time that is known is told; who waits for a running request learns it when that is over.
        if (!busy && until != told && waiting) {
            told = until;
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - now).count();
            lock.unlock();
            waiting(static_cast<int>(left));
            lock.lock();
            continue;
        }
        FChanged.wait_until(lock, until);
    }
    return 0;
}

void THostLimiter::Leave(const QString& host, quint64 request)
{
    const std::scoped_lock lock(FLock);
    THost& entry = FHosts[host];
    entry.Running.erase(request);
    if (entry.Pace > 0)
        entry.Earliest = std::max(entry.Earliest, TClock::now() + std::chrono::milliseconds(entry.Pace));
    FChanged.notify_all();
}

void THostLimiter::Wake()
{
    const std::scoped_lock lock(FLock);
    FChanged.notify_all();
}

THostLimiter& HostLimiter()
{
    static THostLimiter limiter;
    return limiter;
}

} // namespace Kestrune
