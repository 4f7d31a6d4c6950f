// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>

namespace Kestrune {

using TDebugLogSink = std::function<void(const QString& line)>;

/// Sends one line "[time] message" to the sink. Does nothing when debug mode is off. Safe from any thread:
/// lines from other threads reach the sink on the thread that calls, so a sink that shows a window must post.
void DebugLog(const QString& message);

/// True while a sink is set: spares the building of costly messages.
bool DebugLogActive();

/// Installs the receiver of the lines; an empty function switches debug mode off. Call on the main thread.
void SetDebugLogSink(TDebugLogSink sink);

} // namespace Kestrune
