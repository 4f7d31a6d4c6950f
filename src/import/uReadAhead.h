// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <exception>
#include <functional>
#include <future>
#include <optional>
#include <semaphore>
#include <utility>

namespace Kestrune {

/// Reads the items of a source in their order on a thread of its own: the next one while the one that was taken last is
/// in use. TItem need only be movable.
template <typename TItem>
class TReadAhead {
public:
    /// `next` runs on the reading thread alone; it gives the items and then nothing. What it refers to outlives the
    /// object.
    explicit TReadAhead(std::function<std::optional<TItem>()> next)
        : FNext(std::move(next)), FReader(std::async(std::launch::async, [this] { Read(); }))
    {}
    /// Waits for the item in work.
    ~TReadAhead()
    {
        FStopped = true;
        FRoom.release();
    }
    TReadAhead(const TReadAhead&) = delete;
    TReadAhead& operator=(const TReadAhead&) = delete;

    /// The next item, or nothing at the end. What `next` threw is thrown here, behind the items that came before; it
    /// ends the reading.
    std::optional<TItem> Take()
    {
        if (FEnded)
            return std::nullopt;
        FRead.acquire();
        std::optional<TItem> item = std::exchange(FItem, std::nullopt);
        FEnded = !item;
        if (FFailure)
            std::rethrow_exception(std::exchange(FFailure, nullptr));
        FRoom.release();
        return item;
    }

private:
    void Read()
    {
        bool more = true;
        while (more) {
            FRoom.acquire();
            if (FStopped)
                return;
            try {
                FItem = FNext();
            } catch (...) {
                FFailure = std::current_exception();
            }
            more = FItem.has_value();
            FRead.release();
        }
    }

    std::function<std::optional<TItem>()> FNext;
    // The item passes from thread to thread with the semaphores: room for the next, and the next is there.
    std::optional<TItem> FItem;
    std::exception_ptr FFailure;
    std::counting_semaphore<> FRoom{1};
    std::counting_semaphore<> FRead{0};
    std::atomic<bool> FStopped{false};
    bool FEnded = false;       // of the thread that takes
    std::future<void> FReader; // last: its end is waited for while the rest still lives
};

} // namespace Kestrune
