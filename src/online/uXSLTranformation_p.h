// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <libxml/tree.h>
#include <libxslt/security.h>
#include <libxslt/xsltInternals.h>

#include <csetjmp>
#include <memory>
#include <vector>

namespace Kestrune {

using TDoc = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;
using TStylesheet = std::shared_ptr<xsltStylesheet>;

/// What the work on this thread has taken, by the memory that the libraries ask for. The work of one operation is not
/// bounded by itself: one may double a text or look at all nodes for each.
struct TTaken {
    TTaken();
    xsltTransformContext* Context = nullptr; ///< what is told to stop
    /// Without a context there is nobody to tell: the way out of the libraries, from within their allocation.
    std::jmp_buf* Exit = nullptr;
    /// With Exit: what was allocated and freed, in order; frees have the lowest bit set.
    std::vector<quintptr> Events;
    size_t Held = 0;
    size_t Allocated = 0;
    double Until = 0.0;    ///< seconds of this thread
    double NextLook = 0.0; ///< seconds of the world
    bool Stopped = false;
};

/// The memory of this thread is counted for as long as it lives.
class TCountingScope {
public:
    explicit TCountingScope(TTaken& taken);
    ~TCountingScope();
    TCountingScope(const TCountingScope&) = delete;
    TCountingScope& operator=(const TCountingScope&) = delete;
};

/// Collects the libraries' messages of this thread for as long as it lives.
class TErrorScope {
public:
    explicit TErrorScope(QString& text);
    ~TErrorScope();
    TErrorScope(const TErrorScope&) = delete;
    TErrorScope& operator=(const TErrorScope&) = delete;
};

/// Makes the libraries ask for memory here; before any other use.
void CountXSLMemory();
/// Before all else; any thread.
void InitXSLLibraries();
/// No file, no network.
xsltSecurityPrefsPtr XSLSecurity();
/// For messages of the libraries, which go to the error scope of the thread.
extern "C" void CollectXSLMessage(void* context, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Why bytes are not even parsed; empty when they are.
QString ReasonNotToParse(const QByteArray& bytes);
/// How both kinds of documents are parsed.
extern const int XSLParseOptions;

/// The stylesheet of these bytes, compiled now or before. Null with the reason in `error`.
TStylesheet CompiledSheet(const QByteArray& bytes, QString& error);

} // namespace Kestrune
