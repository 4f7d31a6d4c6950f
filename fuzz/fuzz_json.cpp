// SPDX-License-Identifier: GPL-3.0-or-later
// Answers in JSON: the XML that is made of them parses, unless the name of a key stands against it.
#include "uJSONToXML.h"
#include "uXml.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace Kestrune;

namespace {

constexpr int DeepestDocument = 240; // a little less than the parser of XML goes

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

bool IsPlainName(std::string_view name)
{
    return !name.empty() && IsLetter(name.front()) &&
           std::ranges::all_of(name, [](char c) { return IsLetter(c) || (c >= '0' && c <= '9'); });
}

struct TNames {
    bool ArePlain = true;
    int Deepest = 0;
};

// Looks at the names and at the depth of a text that is JSON: a string before a colon is a name.
TNames LookAtNames(std::string_view text)
{
    TNames found;
    int depth = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '{' || text[i] == '[')
            found.Deepest = std::max(found.Deepest, ++depth);
        else if (text[i] == '}' || text[i] == ']')
            --depth;
        if (text[i] != '"')
            continue;
        const size_t start = i + 1;
        for (++i; i < text.size() && text[i] != '"'; ++i)
            i += text[i] == '\\' ? 1 : 0;
        const size_t next = text.find_first_not_of(" \t\r\n", i + 1);
        if (next < text.size() && text[next] == ':')
            found.ArePlain = found.ArePlain && IsPlainName(text.substr(start, i - start));
    }
    return found;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray json(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QString error;
    const QByteArray xml = JSONToXML(json, &error);
    QString reason;
    const bool parsed = TXmlDocument::Parse(xml, &reason).has_value();
    if (!error.isEmpty()) {
        if (!parsed) // an empty document
            std::abort();
        return 0;
    }
    const TNames names = LookAtNames({json.constData(), size});
    if (!parsed && names.ArePlain && names.Deepest < DeepestDocument) {
        qWarning("%s", qUtf8Printable(reason));
        std::abort();
    }
    return 0;
}
