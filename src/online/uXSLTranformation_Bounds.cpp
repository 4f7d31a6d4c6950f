// SPDX-License-Identifier: GPL-3.0-or-later
#include "uXSLTranformation_p.h"

#include <libxml/globals.h>
#include <libxml/xmlerror.h>
#include <malloc.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace Kestrune {

namespace {

// Bounds of one transformation or compilation. A record of 2,400 tracks whose credits all say the same takes half of
// them and more; what runs into them is not meant to end (see the time of each in bench/RESULTS.md).
constexpr size_t MostMemory = 64UL * 1024 * 1024;      // held at a time
constexpr size_t MostAllocated = 1024UL * 1024 * 1024; // all in all
constexpr size_t RefusedMemory = 192UL * 1024 * 1024;  // no single step of the library gets beyond it
constexpr size_t MostEvents = 3'000'000;               // a stylesheet of 600 lines has 10,000
#ifdef __SANITIZE_ADDRESS__
constexpr double MostSeconds = 15.0; // instrumented code takes as much longer
#else
constexpr double MostSeconds = 1.0; // of the thread's own time
#endif

// The library's messages of the work on this thread.
thread_local QString* CollectedError = nullptr;
thread_local TTaken* Taken = nullptr;

double Seconds(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// A transformation looks at these two between its steps. A compilation looks at nothing, and not every place in it
// survives an allocation that fails: it is left at once. Nothing with a destructor lies in between.
[[gnu::cold]] void StopWork(TTaken& taken)
{
    taken.Stopped = true;
    if (taken.Exit)
        std::longjmp(*taken.Exit, 1);
    taken.Context->state = XSLT_STATE_STOPPED;
    taken.Context->xpathCtxt->opCount = taken.Context->xpathCtxt->opLimit;
}

// The time of this thread costs more to ask for than that of the world, which runs ahead of it.
bool IsLate(TTaken& taken)
{
    if (Seconds(CLOCK_MONOTONIC_COARSE) < taken.NextLook)
        return false;
    taken.NextLook += MostSeconds / 8;
    return Seconds(CLOCK_THREAD_CPUTIME_ID) > taken.Until;
}

void Charge(TTaken& taken, size_t size)
{
    taken.Held += size;
    taken.Allocated += size;
    if (taken.Held > MostMemory || taken.Allocated > MostAllocated || IsLate(taken))
        StopWork(taken);
}

void Note(TTaken& taken, quintptr memory, bool isFreed)
{
    if (memory != 0)
        taken.Events.push_back(memory | quintptr(isFreed));
    // Not before a block is freed: it would be lost.
    if (!isFreed && taken.Events.size() > MostEvents)
        StopWork(taken);
}

quintptr AddressOf(const void* memory) { return reinterpret_cast<quintptr>(memory); }

void Discharge(TTaken& taken, size_t size)
{
    taken.Held -= std::min(taken.Held, size); // some was there before
}

} // namespace

// Plain functions with C varargs, as the libraries call them.
extern "C" {
void CollectXSLMessage(void*, const char* format, ...)
{
    if (!CollectedError || CollectedError->size() > 2000)
        return;
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    *CollectedError += QString::fromUtf8(text);
}
static void DropMessage(void*, const char*, ...) {}

// The memory of the library, counted while a stylesheet runs.
static void* CountedRealloc(void* memory, size_t size)
{
    TTaken* const taken = Taken; // asked for once: it is a call
    if (!taken)
        return std::realloc(memory, size);
    const size_t before = memory ? malloc_usable_size(memory) : 0;
    if (taken->Held + size > RefusedMemory + before) {
        if (taken->Exit)
            StopWork(*taken);
        return nullptr;
    }
    if (taken->Exit)
        Note(*taken, AddressOf(memory), true);
    void* given = std::realloc(memory, size);
    if (given) {
        if (taken->Exit)
            Note(*taken, AddressOf(given), false);
        Discharge(*taken, before);
        Charge(*taken, malloc_usable_size(given));
    }
    return given;
}
static void* CountedAlloc(size_t size) { return CountedRealloc(nullptr, size); }
static void CountedFree(void* memory)
{
    if (TTaken* const taken = Taken; taken && memory) {
        Discharge(*taken, malloc_usable_size(memory));
        if (taken->Exit)
            Note(*taken, AddressOf(memory), true);
    }
    std::free(memory);
}
static char* CountedCopy(const char* text)
{
    const size_t size = std::strlen(text) + 1;
    void* copy = CountedAlloc(size);
    return copy ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}
}

TTaken::TTaken()
    : Until(Seconds(CLOCK_THREAD_CPUTIME_ID) + MostSeconds), NextLook(Seconds(CLOCK_MONOTONIC_COARSE) + MostSeconds / 8)
{}

TCountingScope::TCountingScope(TTaken& taken) { Taken = &taken; }
TCountingScope::~TCountingScope() { Taken = nullptr; }

TErrorScope::TErrorScope(QString& text)
{
    CollectedError = &text;
    xmlSetGenericErrorFunc(nullptr, DropMessage); // per thread
}
TErrorScope::~TErrorScope() { CollectedError = nullptr; }

void CountXSLMemory() { xmlMemSetup(CountedFree, CountedAlloc, CountedRealloc, CountedCopy); }

} // namespace Kestrune
