// SPDX-License-Identifier: GPL-3.0-or-later
#include "uXSLTranformation.h"

#include "uDebugLog.h"

#include <libexslt/exslt.h>
#include <libxml/globals.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <libxslt/extensions.h>
#include <libxslt/extra.h>
#include <libxslt/functions.h>
#include <libxslt/security.h>
#include <libxslt/transform.h>
#include <libxslt/xslt.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>
#include <malloc.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <list>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Bounds of one transformation. A record of 2,400 tracks whose credits all say the same takes half of them and more;
// what runs into them is not meant to end (see the time of each in bench/RESULTS.md).
constexpr unsigned long MostXPathOperations = 16'000'000;
constexpr unsigned long MostInstructions = 500'000;
constexpr int DeepestTemplates = 1000;
constexpr int MostVariables = 10'000;
constexpr size_t MostMemory = 64UL * 1024 * 1024;      // held at a time
constexpr size_t MostAllocated = 1024UL * 1024 * 1024; // all in all
constexpr size_t RefusedMemory = 192UL * 1024 * 1024;  // no single step of the library gets beyond it
#ifdef __SANITIZE_ADDRESS__
constexpr double MostSeconds = 15.0; // instrumented code takes as much longer
#else
constexpr double MostSeconds = 1.0; // of the thread's own time
#endif
constexpr qsizetype LargestInput = 128 * 1024 * 1024;
constexpr size_t CompiledKept = 16;
// What a new name costs the reader grows with the names that it knows; 20,000 of them take some hundredths of a second.
constexpr size_t MostNames = 30'000;

using TDoc = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;
using TStylesheet = std::shared_ptr<xsltStylesheet>;

// The library's messages of the transformation on this thread.
thread_local QString* CollectedError = nullptr;

// What the transformation on this thread has taken. The work that an operation makes is not bounded by itself: one may
// double a text or look at all nodes for each.
struct TTaken {
    xsltTransformContext* Context = nullptr;
    size_t Held = 0;
    size_t Allocated = 0;
    double Until = 0.0;    // seconds of this thread
    double NextLook = 0.0; // seconds of the world
    bool Stopped = false;
};
thread_local TTaken* Taken = nullptr;

double Seconds(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// The library looks at these two between its steps.
void StopTransformation(TTaken& taken)
{
    taken.Stopped = true;
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
        StopTransformation(taken);
}

void Discharge(TTaken& taken, size_t size)
{
    taken.Held -= std::min(taken.Held, size); // some was there before
}

} // namespace

// Plain functions with C varargs, as the libraries call them.
extern "C" {
__attribute__((format(printf, 2, 3))) static void CollectMessage(void*, const char* format, ...)
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
    if (!Taken)
        return std::realloc(memory, size);
    const size_t before = memory ? malloc_usable_size(memory) : 0;
    if (Taken->Held + size > RefusedMemory + before)
        return nullptr;
    void* given = std::realloc(memory, size);
    if (given) {
        Discharge(*Taken, before);
        Charge(*Taken, malloc_usable_size(given));
    }
    return given;
}
static void* CountedAlloc(size_t size) { return CountedRealloc(nullptr, size); }
static void CountedFree(void* memory)
{
    if (Taken && memory)
        Discharge(*Taken, malloc_usable_size(memory));
    std::free(memory);
}
static char* CountedCopy(const char* text)
{
    const size_t size = std::strlen(text) + 1;
    void* copy = CountedAlloc(size);
    return copy ? static_cast<char*>(std::memcpy(copy, text, size)) : nullptr;
}
}

namespace {

void InitLibraries()
{
    static const bool once = [] {
        xmlMemSetup(CountedFree, CountedAlloc, CountedRealloc, CountedCopy);
        xmlInitParser();
        xsltInit();
        exsltRegisterAll();
        // Stylesheets written for another engine name this function by its namespace.
        xsltRegisterExtModuleFunction(reinterpret_cast<const xmlChar*>("node-set"),
                                      reinterpret_cast<const xmlChar*>("urn:schemas-microsoft-com:xslt"),
                                      xsltFunctionNodeSet);
        // Per process: messages of a stylesheet that is being compiled would go to standard error.
        xsltSetGenericErrorFunc(nullptr, CollectMessage);
        return true;
    }();
    (void)once;
}

xsltSecurityPrefsPtr Security()
{
    static const xsltSecurityPrefsPtr prefs = [] {
        const xsltSecurityPrefsPtr made = xsltNewSecurityPrefs();
        for (const xsltSecurityOption option :
             {XSLT_SECPREF_READ_FILE, XSLT_SECPREF_WRITE_FILE, XSLT_SECPREF_CREATE_DIRECTORY, XSLT_SECPREF_READ_NETWORK,
              XSLT_SECPREF_WRITE_NETWORK})
            xsltSetSecurityPrefs(made, option, xsltSecurityForbid);
        // Imports are read while compiling, where no context has preferences of its own.
        xsltSetDefaultSecurityPrefs(made);
        return made;
    }();
    return prefs;
}

// Collects the messages of this thread for as long as it lives.
class TErrorScope {
public:
    explicit TErrorScope(QString& text)
    {
        CollectedError = &text;
        xmlSetGenericErrorFunc(nullptr, DropMessage); // per thread
    }
    ~TErrorScope() { CollectedError = nullptr; }
};

// The memory of this thread is counted for as long as it lives.
class TCountingScope {
public:
    explicit TCountingScope(TTaken& taken) { Taken = &taken; }
    ~TCountingScope() { Taken = nullptr; }
};

// True when elements and attributes have more names than any answer has. A look at the bytes, before they are parsed.
bool HasTooManyNames(std::string_view text)
{
    constexpr std::string_view ends = " \t\r\n/>=<\"'";
    std::unordered_set<std::string_view> names;
    for (size_t at = text.find_first_of("<="); at != std::string_view::npos; at = text.find_first_of("<=", at + 1)) {
        size_t begin = at + 1, end = at;
        if (text[at] == '<') {
            end = std::min(text.find_first_of(ends, begin), text.size());
        } else { // the name before the sign
            begin = at == 0 ? 0 : text.find_last_of(ends, at - 1) + 1;
        }
        if (end > begin && end - begin < 1000)
            names.insert(text.substr(begin, end - begin));
        if (names.size() > MostNames)
            return true;
    }
    return false;
}

TDoc ParseDocument(const QByteArray& bytes, QString& error)
{
    TDoc document(nullptr, &xmlFreeDoc);
    if (HasTooManyNames({bytes.constData(), static_cast<size_t>(bytes.size())})) {
        error = u"the document has too many names"_s;
        return document;
    }
    if (bytes.size() > LargestInput) {
        error = u"the document is too large"_s;
        return document;
    }
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(xmlNewParserCtxt(), &xmlFreeParserCtxt);
    if (!context)
        return document;
    // No entity of another file is read, and the guards against bombs and depth stay on.
    document.reset(xmlCtxtReadMemory(context.get(), bytes.constData(), static_cast<int>(bytes.size()), nullptr, "UTF-8",
                                     XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOCDATA));
    if (!document)
        error = QString::fromUtf8(context->lastError.message).trimmed();
    return document;
}

TStylesheet Compile(const QByteArray& bytes, QString& error)
{
    TDoc document = ParseDocument(bytes, error);
    if (!document)
        return nullptr;
    xsltStylesheet* compiled = xsltParseStylesheetDoc(document.get());
    if (!compiled)
        return nullptr;
    (void)document.release(); // now owned by the stylesheet
    TStylesheet sheet(compiled, &xsltFreeStylesheet);
    if (sheet->errors > 0)
        return nullptr;
    return sheet;
}

// Compiled stylesheets by their bytes, the last used first.
class TCompiledSheets {
public:
    TStylesheet Get(const QByteArray& bytes, QString& error)
    {
        const std::scoped_lock lock(FLock);
        for (auto item = FItems.begin(); item != FItems.end(); ++item) {
            if (item->first != bytes)
                continue;
            FItems.splice(FItems.begin(), FItems, item);
            return item->second;
        }
        TStylesheet sheet = Compile(bytes, error);
        if (sheet) {
            FItems.emplace_front(bytes, sheet);
            if (FItems.size() > CompiledKept)
                FItems.pop_back();
        }
        return sheet;
    }

private:
    std::mutex FLock;
    std::list<std::pair<QByteArray, TStylesheet>> FItems;
};

TCompiledSheets& CompiledSheets()
{
    static TCompiledSheets sheets;
    return sheets;
}

QByteArray Serialise(xmlDoc& result, xsltStylesheet& sheet, bool asSerialised)
{
    xmlChar* text = nullptr;
    int size = 0;
    if (asSerialised)
        xsltSaveResultToString(&text, &size, &result, &sheet);
    else
        xmlDocDumpMemoryEnc(&result, &text, &size, "UTF-8");
    const QByteArray bytes(reinterpret_cast<const char*>(text), size);
    xmlFree(text);
    return bytes;
}

bool Transform(const QByteArray& xml, const QByteArray& stylesheet, QByteArray& output, bool asSerialised,
               QString& error)
{
    const TDoc source = ParseDocument(xml, error);
    if (!source)
        return false;
    const TStylesheet sheet = CompiledSheets().Get(stylesheet, error);
    if (!sheet)
        return false;
    const std::unique_ptr<xsltTransformContext, decltype(&xsltFreeTransformContext)> context(
        xsltNewTransformContext(sheet.get(), source.get()), &xsltFreeTransformContext);
    if (!context)
        return false;
    xsltSetTransformErrorFunc(context.get(), nullptr, CollectMessage);
    xsltSetCtxtSecurityPrefs(Security(), context.get());
    context->opLimit = MostInstructions;
    context->maxTemplateDepth = DeepestTemplates;
    context->maxTemplateVars = MostVariables;
    context->xpathCtxt->opLimit = MostXPathOperations;
    TTaken taken{.Context = context.get(),
                 .Until = Seconds(CLOCK_THREAD_CPUTIME_ID) + MostSeconds,
                 .NextLook = Seconds(CLOCK_MONOTONIC_COARSE) + MostSeconds / 8};
    TDoc result(nullptr, &xmlFreeDoc);
    {
        const TCountingScope counting(taken);
        result.reset(xsltApplyStylesheetUser(sheet.get(), source.get(), nullptr, nullptr, nullptr, context.get()));
    }
    if (taken.Stopped)
        error = u"the stylesheet takes too much time or memory"_s;
    if (!result || context->state != XSLT_STATE_OK)
        return false;
    output = Serialise(*result, *sheet, asSerialised);
    return true;
}

} // namespace

bool TransformXSL(const QByteArray& xml, const QByteArray& stylesheet, QByteArray& output, bool asSerialised,
                  QString* error)
{
    InitLibraries();
    (void)Security();
    QString reason;
    output.clear();
    bool done = false;
    {
        const TErrorScope scope(reason);
        done = Transform(xml, stylesheet, output, asSerialised, reason);
    }
    if (done)
        return true;
    reason = reason.simplified();
    if (reason.isEmpty())
        reason = u"the stylesheet failed"_s;
    DebugLog(u"[XSLT] "_s + reason);
    if (error)
        *error = reason;
    return false;
}

bool TransformXSL(const QString& xml, const QString& stylesheet, QString& output, bool asSerialised, QString* error)
{
    QByteArray bytes;
    const bool done = TransformXSL(xml.toUtf8(), stylesheet.toUtf8(), bytes, asSerialised, error);
    output = QString::fromUtf8(bytes);
    return done;
}

} // namespace Kestrune
