// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"

#include <QTime>

#include <atomic>
#include <mutex>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TLogState {
    std::mutex Lock;
    TDebugLogSink Sink;
    std::atomic<bool> Active{false};
};

TLogState& LogState()
{
    static TLogState state;
    return state;
}

} // namespace

void DebugLog(const QString& message)
{
    TLogState& state = LogState();
    if (!state.Active)
        return;
    const std::scoped_lock guard(state.Lock);
    if (state.Sink)
        state.Sink(u"[%1] %2"_s.arg(QTime::currentTime().toString(u"hh:mm:ss"_s), message));
}

bool DebugLogActive() { return LogState().Active; }

void SetDebugLogSink(TDebugLogSink sink)
{
    TLogState& state = LogState();
    const std::scoped_lock guard(state.Lock);
    state.Active = static_cast<bool>(sink);
    state.Sink = std::move(sink);
}

} // namespace Kestrune
