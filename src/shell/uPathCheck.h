// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace Kestrune {

/// Looks whether a file or folder is there. A disk that answers at once is waited for; a slow one (a network mount
/// that sleeps or is gone) never holds the main thread. Main thread.
class TPathCheck {
public:
    /// `changed` runs on the main thread when an answer came late.
    explicit TPathCheck(std::function<void()> changed);
    ~TPathCheck();

    /// Asks about this path from now on; an empty one is never there.
    void Look(const QString& path);
    bool IsFile() const;
    bool IsFolder() const;

private:
    struct TState;
    std::shared_ptr<TState> FState;
    std::function<void()> FChanged;
};

} // namespace Kestrune
