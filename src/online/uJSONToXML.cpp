// SPDX-License-Identifier: GPL-3.0-or-later
#include "uJSONToXML.h"

#include "uDebugLog.h"

#include <rapidjson/error/en.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace Kestrune {

// Names the stack below.
struct TReaderMemory {};

} // namespace Kestrune

// What the reader asks of its stack, in memory that is there from the start: the library's own counts on from a null
// pointer.
template <>
class rapidjson::internal::Stack<Kestrune::TReaderMemory> {
public:
    Stack(Kestrune::TReaderMemory*, size_t capacity) : FBytes(capacity) {}

    void Clear() { FSize = 0; }
    template <typename T>
    T* Push(size_t count = 1)
    {
        const size_t at = FSize;
        FSize += sizeof(T) * count;
        if (FSize > FBytes.size())
            FBytes.resize(std::max(FSize, FBytes.size() * 2));
        return reinterpret_cast<T*>(FBytes.data() + at);
    }
    template <typename T>
    T* Pop(size_t count)
    {
        FSize -= sizeof(T) * count;
        return reinterpret_cast<T*>(FBytes.data() + FSize);
    }
    template <typename T>
    T* Top()
    {
        return reinterpret_cast<T*>(FBytes.data() + FSize - sizeof(T));
    }

private:
    std::vector<char> FBytes;
    size_t FSize = 0;
};

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

// Six bytes may come of one (a quote), and names stand twice: an answer cannot grow past this.
constexpr qsizetype LargestDocument = 128 * 1024 * 1024;
// Each item of an array has a name of its own, and names cost the XML reader more the more there are.
constexpr int LongestArray = 20'000;
constexpr int MostElements = 400'000;
const QByteArray Header = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<Data>";
const QByteArray Footer = "</Data>";

// What stands for the character in XML, and the bytes that it takes; null for the character itself. Controls, U+FFFE,
// U+FFFF and single halves of surrogate pairs, which a text can name by escapes, are no characters of XML.
std::pair<const char*, int> Replacement(const char* c, const char* end)
{
    const auto byte = [c](int at) { return static_cast<unsigned char>(c[at]); };
    switch (*c) {
    case '&': return {"&amp;", 1};
    case '<': return {"&lt;", 1};
    case '>': return {"&gt;", 1};
    case '"': return {"&quot;", 1};
    case '\t':
    case '\n':
    case '\r': return {nullptr, 1};
    case '\xEF': return {end - c >= 3 && byte(1) == 0xBF && byte(2) >= 0xBE ? "" : nullptr, 3};
    case '\xED': return {end - c >= 3 && byte(1) >= 0xA0 ? "" : nullptr, 3};
    default: return {byte(0) < 32 ? "" : nullptr, 1};
    }
}

// Where the escape of a high surrogate without its low one begins, or -1. The reader refuses a text for it, while a low
// one alone goes through and is left out when it is written.
qsizetype LoneHighSurrogate(const QByteArray& json, qsizetype from)
{
    const auto half = [&](qsizetype at, const char* leads) {
        return at + 5 < json.size() && json[at] == '\\' && json[at + 1] == 'u' && (json[at + 2] | 0x20) == 'd' &&
               std::strchr(leads, json[at + 3] | 0x20);
    };
    for (qsizetype at = json.indexOf('\\', from); at >= 0; at = json.indexOf('\\', at + 2)) {
        if (!half(at, "89ab"))
            continue;
        if (!half(at + 6, "cdef"))
            return at;
        at += 4;
    }
    return -1;
}

QByteArray WithoutLoneSurrogates(QByteArray json)
{
    for (qsizetype at = LoneHighSurrogate(json, 0); at >= 0; at = LoneHighSurrogate(json, at + 6))
        json.replace(at + 3, 1, "c");
    return json;
}

// Writes the XML while the text is read; nothing of the JSON is held.
class TXmlWriter {
public:
    explicit TXmlWriter(qsizetype inputSize)
    {
        FXml.reserve(std::min(inputSize * 2 + 256, LargestDocument));
        FXml = Header;
    }

    bool Null() { return Value("null", 4); }
    bool Bool(bool value) { return value ? Value("true", 4) : Value("false", 5); }
    // With the flag for raw numbers these four are never called.
    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(int64_t) { return false; }
    bool Uint64(uint64_t) { return false; }
    bool Double(double) { return false; }
    bool RawNumber(const char* text, rapidjson::SizeType size, bool) { return Value(text, size); }
    bool String(const char* text, rapidjson::SizeType size, bool) { return Value(text, size); }

    bool StartObject()
    {
        OpenItem();
        FLevels.push_back({false, 0, {}});
        return InBounds();
    }
    bool Key(const char* text, rapidjson::SizeType size, bool)
    {
        QByteArray name(text, size);
        name.removeIf([](char c) { return c == ':' || c == '#' || c == '@'; });
        FXml.append('<').append(name).append('>');
        FLevels.back().Name = std::move(name);
        return InBounds();
    }
    bool EndObject(rapidjson::SizeType)
    {
        FLevels.pop_back();
        CloseItem();
        return InBounds();
    }
    bool StartArray()
    {
        OpenItem();
        FLevels.push_back({true, 0, {}});
        return InBounds();
    }
    bool EndArray(rapidjson::SizeType)
    {
        FLevels.pop_back();
        CloseItem();
        return InBounds();
    }

    QByteArray Take() { return std::move(FXml) + Footer; }
    /// Why it was ended, and not by the text itself.
    bool IsTooLarge() const { return !InBounds(); }

private:
    struct TLevel {
        bool IsArray;
        int Next; // number of the next item
        QByteArray Name;
    };

    bool InBounds() const { return FXml.size() < LargestDocument && FElements < MostElements && !FTooLong; }

    void OpenItem()
    {
        ++FElements;
        if (!FLevels.empty() && FLevels.back().IsArray)
            FXml.append("<Array").append(QByteArray::number(FLevels.back().Next)).append('>');
    }
    void CloseItem()
    {
        if (FLevels.empty())
            return;
        if (FLevels.back().IsArray)
            FXml.append("</Array").append(QByteArray::number(FLevels.back().Next++)).append('>');
        else
            FXml.append("</").append(FLevels.back().Name).append('>');
        FTooLong = FTooLong || FLevels.back().Next > LongestArray;
    }
    bool Value(const char* text, rapidjson::SizeType size)
    {
        OpenItem();
        const char* end = text + size;
        const char* plain = text; // what needs no care goes in one piece
        for (const char* c = text; c < end; ++c) {
            const auto [entity, length] = Replacement(c, end);
            if (!entity)
                continue;
            FXml.append(plain, c - plain).append(entity);
            c += length - 1;
            plain = c + 1;
        }
        FXml.append(plain, end - plain);
        CloseItem();
        return InBounds();
    }

    QByteArray FXml;
    int FElements = 0;
    bool FTooLong = false;
    std::vector<TLevel> FLevels;
};

} // namespace

QByteArray JSONToXML(const QByteArray& text, QString* error, bool* isTooLarge)
{
    const QByteArray json = WithoutLoneSurrogates(text);
    // Iterative: a text of nothing but brackets needs no deep stack.
    constexpr unsigned flags =
        rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    TXmlWriter writer(json.size());
    rapidjson::MemoryStream bytes(json.constData(), static_cast<size_t>(json.size()));
    rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
    rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, TReaderMemory> reader;
    const rapidjson::ParseResult result = reader.Parse<flags>(stream, writer);
    if (!result) {
        if (isTooLarge)
            *isTooLarge = writer.IsTooLarge();
        const QString reason = writer.IsTooLarge()
                                   ? u"the answer is too large"_s
                                   : u"no JSON at byte %1: %2"_s.arg(result.Offset())
                                         .arg(QLatin1StringView(rapidjson::GetParseError_En(result.Code())));
        DebugLog(u"[JSON] "_s + reason);
        if (error)
            *error = reason;
        return Header + Footer;
    }
    return writer.Take();
}

QString JSONToXML(const QString& json) { return QString::fromUtf8(JSONToXML(json.toUtf8())); }

void TJSONTextDownloader::PostResult(QStringList lines)
{
    QString error;
    bool isTooLarge = false;
    const QByteArray xml = JSONToXML(lines.join(u'\n').toUtf8(), &error, &isTooLarge);
    PostLines(TTextAnswer(TextLines(QString::fromUtf8(xml)), error, isTooLarge));
}

} // namespace Kestrune
