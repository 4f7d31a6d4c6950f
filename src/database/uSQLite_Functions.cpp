// SPDX-License-Identifier: GPL-3.0-or-later
#include "uArticles.h"
#include "uSQLite.h"

#include <QString>

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

std::string_view TextOf(sqlite3_value* value)
{
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return {text, static_cast<size_t>(sqlite3_value_bytes(value))};
}

bool IsAscii(std::string_view text)
{
    return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

QString Folded(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())).toCaseFolded();
}

// LIKE over code units that are folded already (strings) or folded on the way (ASCII bytes). `%` backtracks to its
// last occurrence only, so that no pattern costs more than text times pattern.
template <typename TText, typename TPattern, typename TSame>
bool MatchLike(const TText& text, const TPattern& pattern, const TSame& same)
{
    const auto textSize = static_cast<qsizetype>(text.size());
    const auto patternSize = static_cast<qsizetype>(pattern.size());
    qsizetype t = 0;
    qsizetype p = 0;
    qsizetype percent = -1;
    qsizetype resume = 0;
    while (t < textSize) {
        if (p < patternSize && pattern.IsAny(p)) {
            percent = p++;
            resume = t;
        } else if (p < patternSize && (pattern.IsOne(p) || same(text[t], pattern[p]))) {
            ++t;
            ++p;
        } else if (percent >= 0) {
            p = percent + 1;
            t = ++resume;
        } else {
            return false;
        }
    }
    while (p < patternSize && pattern.IsAny(p))
        ++p;
    return p == patternSize;
}

// A LIKE pattern with its wildcards told from escaped characters.
struct TLikePattern {
    QString Text;
    std::vector<char> Kinds; // 0 character, 1 any run, 2 any one
    bool Ascii = true;

    TLikePattern(const QString& pattern, QChar escape)
    {
        for (qsizetype i = 0; i < pattern.size(); ++i) {
            const bool escaped = !escape.isNull() && pattern[i] == escape && i + 1 < pattern.size();
            if (escaped)
                ++i;
            const QChar c = pattern[i];
            Text += c;
            Kinds.push_back(escaped ? 0 : c == u'%' ? 1 : c == u'_' ? 2 : 0);
            Ascii = Ascii && c.unicode() < 0x80;
        }
    }
    size_t size() const { return Kinds.size(); }
    QChar operator[](qsizetype i) const { return Text[i]; }
    bool IsAny(qsizetype i) const { return Kinds[static_cast<size_t>(i)] == 1; }
    bool IsOne(qsizetype i) const { return Kinds[static_cast<size_t>(i)] == 2; }

    bool Matches(std::string_view text) const
    {
        if (Ascii && IsAscii(text))
            return MatchLike(text, *this,
                             [](char a, QChar b) { return static_cast<char16_t>(LowerAscii(a)) == b.unicode(); });
        return MatchLike(Folded(text), *this, [](QChar a, QChar b) { return a == b; });
    }
};

void LikeFunction(sqlite3_context* context, int count, sqlite3_value** values)
{
    if (sqlite3_value_type(values[0]) == SQLITE_NULL || sqlite3_value_type(values[1]) == SQLITE_NULL)
        return;
    auto* pattern = static_cast<TLikePattern*>(sqlite3_get_auxdata(context, 0));
    std::unique_ptr<TLikePattern> fresh;
    if (!pattern) {
        const QString escape = count == 3 ? Folded(TextOf(values[2])) : QString();
        fresh = std::make_unique<TLikePattern>(Folded(TextOf(values[0])), escape.isEmpty() ? QChar() : escape[0]);
        pattern = fresh.get();
    }
    sqlite3_result_int(context, pattern->Matches(TextOf(values[1])) ? 1 : 0);
    if (fresh)
        sqlite3_set_auxdata(context, 0, fresh.release(), [](void* data) { delete static_cast<TLikePattern*>(data); });
}

int CompareNoCase(void*, int sizeA, const void* a, int sizeB, const void* b)
{
    const std::string_view textA(static_cast<const char*>(a), static_cast<size_t>(sizeA));
    const std::string_view textB(static_cast<const char*>(b), static_cast<size_t>(sizeB));
    if (IsAscii(textA) && IsAscii(textB)) {
        const size_t common = std::min(textA.size(), textB.size());
        for (size_t i = 0; i < common; ++i) {
            if (const int difference = LowerAscii(textA[i]) - LowerAscii(textB[i]); difference != 0)
                return difference;
        }
        return sizeA - sizeB;
    }
    return Folded(textA).compare(Folded(textB));
}

// The letters without their marks first, so that "Émile" stands beside "Emile", then the folded text itself.
QByteArray SortKey(const QString& text)
{
    const QString folded = text.toCaseFolded();
    QString plain;
    for (const QChar c : folded.normalized(QString::NormalizationForm_KD)) {
        if (c.category() != QChar::Mark_NonSpacing)
            plain += c;
    }
    return plain.toUtf8() + '\0' + folded.toUtf8();
}

void ResultKey(sqlite3_context* context, std::string_view text)
{
    if (!IsAscii(text)) {
        const QByteArray key = SortKey(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
        sqlite3_result_blob(context, key.constData(), static_cast<int>(key.size()), SQLITE_TRANSIENT);
        return;
    }
    auto* key = static_cast<char*>(sqlite3_malloc64(text.size() + 1));
    if (!key) {
        sqlite3_result_error_nomem(context);
        return;
    }
    std::ranges::transform(text, key, LowerAscii);
    sqlite3_result_blob(context, key, static_cast<int>(text.size()), sqlite3_free);
}

void KeyFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    if (sqlite3_value_type(values[0]) != SQLITE_NULL)
        ResultKey(context, TextOf(values[0]));
}

// False when the text surely holds no article: its first word is longer than any of them and no comma divides it. That
// spares most names the full test, which a sort of many thousand names feels.
bool MayHoldArticle(std::string_view text, const QStringList& articles)
{
    size_t longest = 0;
    for (const QString& article : articles)
        longest = std::max(longest, static_cast<size_t>(article.size()));
    // A letter takes at most three bytes more in UTF-8 than one.
    const std::string_view start = text.substr(0, IsAscii(text) ? longest + 1 : 4 * (longest + 1));
    return start.find_first_of(" '") != std::string_view::npos || text.find(", ") != std::string_view::npos;
}

void ArticleKeyFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    if (sqlite3_value_type(values[0]) == SQLITE_NULL)
        return;
    const std::string_view text = TextOf(values[0]);
    const auto* rules = static_cast<const TTextRules*>(sqlite3_user_data(context));
    if (!MayHoldArticle(text, rules->Articles)) {
        ResultKey(context, text);
        return;
    }
    const QString name = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    const QByteArray key = ArticleSortKey(name, rules->Articles).toUtf8();
    ResultKey(context, {key.constData(), static_cast<size_t>(key.size())});
}

void NoLetterFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    if (sqlite3_value_type(values[0]) == SQLITE_NULL)
        return;
    const std::string_view text = TextOf(values[0]).substr(0, 8); // the first character, whatever its length
    const QString start = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    const QList<uint> first = start.toUcs4();
    sqlite3_result_int(context, first.isEmpty() || !QChar::isLetter(first[0]) ? 1 : 0);
}

// The number of the search chooses the set, and keeps the orders of different searches apart.
void HitFunction(sqlite3_context* context, int, sqlite3_value** values)
{
    const auto* rules = static_cast<const TTextRules*>(sqlite3_user_data(context));
    const auto hits = rules->Hits.find(sqlite3_value_int64(values[1]));
    const bool hit = hits != rules->Hits.end() && hits->second.contains(sqlite3_value_int64(values[0]));
    sqlite3_result_int(context, hit ? 1 : 0);
}

} // namespace

void TSQLiteConnection::RegisterFunctions()
{
    constexpr int pure = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    sqlite3_create_function_v2(FConnection, "like", 2, pure, nullptr, LikeFunction, nullptr, nullptr, nullptr);
    sqlite3_create_function_v2(FConnection, "like", 3, pure, nullptr, LikeFunction, nullptr, nullptr, nullptr);
    sqlite3_create_function_v2(FConnection, "krn_key", 1, pure, nullptr, KeyFunction, nullptr, nullptr, nullptr);
    sqlite3_create_function_v2(FConnection, "krn_article_key", 1, SQLITE_UTF8 | SQLITE_DIRECTONLY, &FTextRules,
                               ArticleKeyFunction, nullptr, nullptr, nullptr);
    sqlite3_create_function_v2(FConnection, "krn_no_letter", 1, pure, nullptr, NoLetterFunction, nullptr, nullptr,
                               nullptr);
    sqlite3_create_function_v2(FConnection, "krn_hit", 2, SQLITE_UTF8 | SQLITE_DIRECTONLY, &FTextRules, HitFunction,
                               nullptr, nullptr, nullptr);
    sqlite3_update_hook(
        FConnection,
        [](void* self, int kind, const char*, const char* table, sqlite3_int64 row) {
            if (const auto& tell = static_cast<TSQLiteConnection*>(self)->OnChange)
                tell(table, row, kind != SQLITE_UPDATE);
        },
        this);
    sqlite3_rollback_hook(
        FConnection,
        [](void* self) {
            if (const auto& tell = static_cast<TSQLiteConnection*>(self)->OnRollback)
                tell();
        },
        this);
    sqlite3_create_collation_v2(FConnection, "KRN_NOCASE", SQLITE_UTF8, nullptr, CompareNoCase, nullptr);
}

} // namespace Kestrune
