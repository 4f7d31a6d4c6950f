// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <memory>

namespace Kestrune {

/// Numbers of the messages to a window begin here.
inline constexpr int WM_USER = 0x400;

/// Names a receiver of messages for as long as it lives; never used twice. 0 names none.
using THandle = quint64;

/// What a message carries. The receiver owns it; a message that finds nobody frees it.
class TMessageObject {
public:
    TMessageObject() = default;
    virtual ~TMessageObject() = default;
    TMessageObject(const TMessageObject&) = delete;
    TMessageObject& operator=(const TMessageObject&) = delete;
};

/// One posted message.
struct TUserMessage {
    int Number = 0;
    std::unique_ptr<TMessageObject> WParam;
    std::unique_ptr<TMessageObject> LParam;
};

/// Base of what takes messages. Made, called and destroyed on the main thread.
class TMessageReceiver {
public:
    TMessageReceiver();
    virtual ~TMessageReceiver();
    TMessageReceiver(const TMessageReceiver&) = delete;
    TMessageReceiver& operator=(const TMessageReceiver&) = delete;

    THandle Handle() const { return FHandle; }
    virtual void HandleMessage(TUserMessage& message) = 0;

private:
    THandle FHandle;
};

/// Hands a message to the receiver of the handle, later, on the main thread and in the order of the calls. From any
/// thread. Nobody there when it arrives: it is dropped with what it carries.
void PostUserMessage(THandle handle, TUserMessage message);

} // namespace Kestrune
