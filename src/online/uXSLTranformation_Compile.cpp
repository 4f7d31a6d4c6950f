// SPDX-License-Identifier: GPL-3.0-or-later
#include "uDebugLog.h"
#include "uXSLTranformation.h"
#include "uXSLTranformation_p.h"

#include <libxml/globals.h>
#include <libxml/parser.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <list>
#include <mutex>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace Kestrune {

using namespace Qt::StringLiterals;

const int XSLParseOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOCDATA;

namespace {

constexpr qsizetype LargestInput = 128 * 1024 * 1024;
constexpr size_t CompiledKept = 16;
constexpr size_t UsualEvents = 32'768;
// What a new name costs the reader grows with the names that it knows; 20,000 of them take some hundredths of a second.
constexpr size_t MostNames = 30'000;

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

// What the libraries had not freed when they were left.
void FreeWhatIsLeft(const TTaken& taken)
{
    std::unordered_set<quintptr> left;
    for (const quintptr event : taken.Events) {
        if ((event & 1) != 0)
            left.erase(event & ~quintptr(1));
        else
            left.insert(event);
    }
    for (const quintptr memory : left)
        std::free(reinterpret_cast<void*>(memory));
    // Its texts are among that.
    xmlLastError = {};
}

// Parses and compiles within bounds. The document is part of it, since it is changed and partly freed on the way: when
// the work is left in the middle, all of its memory goes.
xsltStylesheet* CompileBounded(const char* bytes, int size, TTaken& taken)
{
    std::jmp_buf exit;
    taken.Exit = &exit;
    if (setjmp(exit) != 0)
        return nullptr;
    xmlDoc* document = xmlReadMemory(bytes, size, nullptr, "UTF-8", XSLParseOptions);
    if (!document)
        return nullptr;
    xsltStylesheet* sheet = xsltParseStylesheetDoc(document); // owns the document from now on
    if (!sheet)
        xmlFreeDoc(document);
    return sheet;
}

TStylesheet Compile(const QByteArray& bytes, QString& error)
{
    error = ReasonNotToParse(bytes);
    if (!error.isEmpty())
        return nullptr;
    xmlResetLastError();
    TTaken taken;
    taken.Events.reserve(UsualEvents); // in a place of its own, and not between what is compiled
    xsltStylesheet* compiled = nullptr;
    {
        const TCountingScope counting(taken);
        compiled = CompileBounded(bytes.constData(), static_cast<int>(bytes.size()), taken);
    }
    if (taken.Stopped) {
        FreeWhatIsLeft(taken);
        error = u"the stylesheet takes too much time or memory"_s;
        return nullptr;
    }
    if (!compiled) {
        const xmlError* last = xmlGetLastError();
        if (error.isEmpty() && last && last->message)
            error = QString::fromUtf8(last->message).trimmed();
        return nullptr;
    }
    TStylesheet sheet(compiled, &xsltFreeStylesheet);
    return sheet->errors > 0 ? nullptr : sheet;
}

// Compiled stylesheets by their bytes, the last used first.
class TCompiledSheets {
public:
    TStylesheet Get(const QByteArray& bytes, QString& error)
    {
        if (TStylesheet kept = Kept(bytes))
            return kept;
        TStylesheet sheet = Compile(bytes, error); // without the lock: it may take its time
        if (sheet) {
            const std::scoped_lock lock(FLock);
            FItems.emplace_front(bytes, sheet);
            if (FItems.size() > CompiledKept)
                FItems.pop_back();
        }
        return sheet;
    }

private:
    TStylesheet Kept(const QByteArray& bytes)
    {
        const std::scoped_lock lock(FLock);
        for (auto item = FItems.begin(); item != FItems.end(); ++item) {
            if (item->first != bytes)
                continue;
            FItems.splice(FItems.begin(), FItems, item);
            return item->second;
        }
        return nullptr;
    }

    std::mutex FLock;
    std::list<std::pair<QByteArray, TStylesheet>> FItems;
};

} // namespace

QString ReasonNotToParse(const QByteArray& bytes)
{
    if (HasTooManyNames({bytes.constData(), static_cast<size_t>(bytes.size())}))
        return u"the document has too many names"_s;
    return bytes.size() > LargestInput ? u"the document is too large"_s : QString();
}

TStylesheet CompiledSheet(const QByteArray& bytes, QString& error)
{
    static TCompiledSheets sheets;
    return sheets.Get(bytes, error);
}

bool CompilesXSL(const QByteArray& stylesheet, QString* error)
{
    InitXSLLibraries();
    (void)XSLSecurity();
    QString reason;
    const TErrorScope scope(reason);
    if (Compile(stylesheet, reason))
        return true;
    reason = reason.simplified();
    if (error)
        *error = reason.isEmpty() ? u"it is no stylesheet"_s : reason;
    return false;
}

} // namespace Kestrune
