// SPDX-License-Identifier: GPL-3.0-or-later
#include "uSessionEnd.h"

#include "uDebugLog.h"

#include <QApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace Kestrune {

namespace {

constexpr std::array EndSignals = {SIGTERM, SIGHUP, SIGINT};
constexpr int TryAgainAfter = 100; // milliseconds

// A signal handler may do nothing but write: what it writes wakes the event loop.
std::array<int, 2> Sockets = {-1, -1};

void WakeUp(int)
{
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(Sockets[0], &byte, 1);
}

} // namespace

TSessionEnd::TSessionEnd() : FNotifier(nullptr)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, Sockets.data()) != 0)
        return;
    FNotifier = new QSocketNotifier(Sockets[1], QSocketNotifier::Read, this);
    connect(FNotifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(Sockets[1], &byte, 1) > 0) {
        }
        DebugLog(QStringLiteral("[Session] asked to end"));
        Close();
    });
    struct sigaction action = {};
    action.sa_handler = WakeUp;
    action.sa_flags = SA_RESTART;
    for (const int signal : EndSignals)
        ::sigaction(signal, &action, nullptr);
}

TSessionEnd::~TSessionEnd()
{
    for (const int signal : EndSignals)
        std::signal(signal, SIG_DFL);
    for (int& socket : Sockets) {
        if (socket >= 0)
            ::close(socket);
        socket = -1;
    }
}

void TSessionEnd::Close()
{
    FEnding = true;
    // Again until the event loop has ended with the last window: a job is stopped by the first try and ends a little
    // later, and during the start there is no window yet.
    QApplication::closeAllWindows();
    QTimer::singleShot(TryAgainAfter, this, &TSessionEnd::Close);
}

} // namespace Kestrune
