// SPDX-License-Identifier: GPL-3.0-or-later
#include "uPathCheck.h"

#include "uFilePath.h"
#include "uThreads.h"

#include <chrono>
#include <future>
#include <thread>

namespace Kestrune {

namespace {

constexpr std::chrono::milliseconds PatienceWithDisks{25};

std::filesystem::file_type KindOfPath(const std::filesystem::path& path)
{
    std::error_code failure;
    return std::filesystem::status(path, failure).type();
}

} // namespace

struct TPathCheck::TState {
    std::filesystem::file_type Kind = std::filesystem::file_type::none;
    bool Wanted = true; // false once another path is asked about
};

TPathCheck::TPathCheck(std::function<void()> changed) : FState(std::make_shared<TState>()), FChanged(std::move(changed))
{}

TPathCheck::~TPathCheck() { FState->Wanted = false; }

void TPathCheck::Look(const QString& path)
{
    FState->Wanted = false;
    FState = std::make_shared<TState>();
    if (path.isEmpty())
        return;
    std::promise<std::filesystem::file_type> promise;
    std::future<std::filesystem::file_type> answer = promise.get_future();
    // Detached, since a mount that is gone may hold a look at it for ever.
    std::thread([state = FState, changed = FChanged, file = TextToPath(path), promise = std::move(promise)]() mutable {
        const std::filesystem::file_type kind = KindOfPath(file);
        promise.set_value(kind);
        PostToMainThread([state, changed, kind] {
            if (!state->Wanted || state->Kind == kind)
                return;
            state->Kind = kind;
            changed();
        });
    }).detach();
    if (answer.wait_for(PatienceWithDisks) == std::future_status::ready)
        FState->Kind = answer.get();
}

bool TPathCheck::IsFile() const { return FState->Kind == std::filesystem::file_type::regular; }

bool TPathCheck::IsFolder() const { return FState->Kind == std::filesystem::file_type::directory; }

} // namespace Kestrune
