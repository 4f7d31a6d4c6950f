// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFaultyEngine.h"

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace Kestrune::Kit {

namespace {

sqlite3_vfs* Real = nullptr;
sqlite3_vfs Faulty;
const sqlite3_io_methods* RealMethods = nullptr;
sqlite3_io_methods FaultyMethods;
TFaultyEngine::TFault Fault;
int Count = 0;

int Ask() { return Fault ? Fault(++Count) : 0; }

int Write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset)
{
    const int code = Ask();
    return code != 0 ? code : RealMethods->xWrite(file, bytes, size, offset);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size)
{
    const int code = Ask();
    return code != 0 ? code : RealMethods->xTruncate(file, size);
}

int Sync(sqlite3_file* file, int flags)
{
    const int code = Ask();
    return code != 0 ? code : RealMethods->xSync(file, flags);
}

int Delete(sqlite3_vfs*, const char* name, int sync)
{
    const int code = Ask();
    return code != 0 ? code : Real->xDelete(Real, name, sync);
}

// The file object stays the engine's own; only the table of its functions is another one.
int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    const int code = Real->xOpen(Real, name, file, flags, outFlags);
    if (code != SQLITE_OK || !file->pMethods)
        return code;
    if (!RealMethods) {
        RealMethods = file->pMethods;
        FaultyMethods = *RealMethods;
        FaultyMethods.xWrite = Write;
        FaultyMethods.xTruncate = Truncate;
        FaultyMethods.xSync = Sync;
    }
    if (file->pMethods == RealMethods)
        file->pMethods = &FaultyMethods;
    return code;
}

int RunInChild(const std::function<void()>& work)
{
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child < 0)
        throw std::runtime_error("no further process");
    if (child == 0) {
        try {
            work();
            std::_Exit(0);
        } catch (...) {
            std::_Exit(1);
        }
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

} // namespace

TFaultyEngine::TFaultyEngine(TFault fault)
{
    Real = sqlite3_vfs_find(nullptr);
    Faulty = *Real;
    Faulty.zName = "faulty";
    Faulty.pNext = nullptr;
    Faulty.xOpen = Open;
    Faulty.xDelete = Delete;
    Fault = std::move(fault);
    Count = 0;
    sqlite3_vfs_register(&Faulty, 1);
}

TFaultyEngine::~TFaultyEngine()
{
    sqlite3_vfs_unregister(&Faulty);
    sqlite3_vfs_register(Real, 1);
    Fault = nullptr;
}

int TFaultyEngine::Steps() { return Count; }

bool KilledAtStep(int step, const std::function<void()>& work)
{
    const int status = RunInChild([&] {
        const TFaultyEngine faulty([step](int now) {
            if (now == step)
                ::raise(SIGKILL);
            return 0;
        });
        work();
    });
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

int StepsOf(const std::function<void()>& work)
{
    int ends[2];
    if (::pipe(ends) != 0)
        throw std::runtime_error("no pipe");
    RunInChild([&] {
        const TFaultyEngine faulty([](int) { return 0; });
        work();
        const int steps = TFaultyEngine::Steps();
        if (::write(ends[1], &steps, sizeof steps) != sizeof steps)
            std::_Exit(1);
    });
    ::close(ends[1]);
    int steps = 0;
    const bool told = ::read(ends[0], &steps, sizeof steps) == sizeof steps;
    ::close(ends[0]);
    if (!told)
        throw std::runtime_error("the work failed");
    return steps;
}

} // namespace Kestrune::Kit
