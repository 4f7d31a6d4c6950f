// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace Kestrune::Kit {

/// While it lives, every step by which the database engine changes files on disk (writing, cutting, syncing and
/// removing) is counted and asks `fault` first: it gives 0, or the engine's code of the failure that the step shall
/// meet.
class TFaultyEngine {
public:
    using TFault = std::function<int(int step)>;
    explicit TFaultyEngine(TFault fault);
    ~TFaultyEngine();
    TFaultyEngine(const TFaultyEngine&) = delete;
    TFaultyEngine& operator=(const TFaultyEngine&) = delete;

    /// Steps so far.
    static int Steps();
};

/// Runs `work` in a process of its own that is killed (SIGKILL) at a step; true when it was, false when it ended
/// before.
bool KilledAtStep(int step, const std::function<void()>& work);

/// The number of steps that `work` takes, found out in a process of its own.
int StepsOf(const std::function<void()>& work);

} // namespace Kestrune::Kit
