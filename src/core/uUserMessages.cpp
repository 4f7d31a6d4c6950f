// SPDX-License-Identifier: GPL-3.0-or-later
#include "uUserMessages.h"

#include "uThreads.h"

#include <map>
#include <utility>

namespace Kestrune {

namespace {

// Main thread only.
std::map<THandle, TMessageReceiver*>& Receivers()
{
    static std::map<THandle, TMessageReceiver*> receivers;
    return receivers;
}

THandle NextHandle()
{
    static THandle last = 0;
    return ++last;
}

} // namespace

TMessageReceiver::TMessageReceiver() : FHandle(NextHandle()) { Receivers().emplace(FHandle, this); }

TMessageReceiver::~TMessageReceiver() { Receivers().erase(FHandle); }

void PostUserMessage(THandle handle, TUserMessage message)
{
    // std::function wants to copy; the message itself is moved only.
    PostToMainThread([handle, shared = std::make_shared<TUserMessage>(std::move(message))] {
        const auto found = Receivers().find(handle);
        if (found != Receivers().end())
            found->second->HandleMessage(*shared);
    });
}

} // namespace Kestrune
