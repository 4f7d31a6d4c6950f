// SPDX-License-Identifier: GPL-3.0-or-later
#include "uKeyOrder.h"

#include "uSQLite.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <future>

namespace Kestrune {

namespace {

// Texts whose bytes compare as the values do: a kind, then the value. Descending values have all bits turned.
constexpr char NullKind = 1;
constexpr char NumberKind = 2;
constexpr char TextKind = 3;

constexpr size_t SortTogether = 50000; // entries that are not worth a second thread

} // namespace

void TKeyOrder::AddNumber(double value, unsigned char flip)
{
    // The bits of a double in the order of its values: the sign turned, and all of a negative one.
    auto bits = std::bit_cast<quint64>(value == 0.0 ? 0.0 : value);
    bits ^= bits >> 63 ? ~quint64(0) : quint64(1) << 63;
    FBytes.push_back(static_cast<char>(NumberKind ^ flip));
    for (int shift = 56; shift >= 0; shift -= 8)
        FBytes.push_back(static_cast<char>(static_cast<unsigned char>(bits >> shift) ^ flip));
}

void TKeyOrder::AddText(std::string_view text, unsigned char flip)
{
    // A text ends with two zeros, and a zero within is followed by a one: so the shorter of two comes first.
    FBytes.push_back(static_cast<char>(TextKind ^ flip));
    for (const char c : text) {
        FBytes.push_back(static_cast<char>(static_cast<unsigned char>(c) ^ flip));
        if (c == '\0')
            FBytes.push_back(static_cast<char>(1 ^ flip));
    }
    FBytes.insert(FBytes.end(), 2, static_cast<char>(flip));
}

void TKeyOrder::Add(const TSQLiteStatement& row)
{
    TEntry entry{0, FBytes.size(), 0, row.ColumnInt64(0)};
    for (size_t i = 0; i < FDescending.size(); ++i) {
        const int column = static_cast<int>(i) + 1;
        const unsigned char flip = FDescending[i] ? 0xFF : 0;
        if (row.ColumnIsNull(column))
            FBytes.push_back(static_cast<char>(NullKind ^ flip));
        else if (row.ColumnIsNumber(column))
            AddNumber(row.ColumnDouble(column), flip);
        else
            AddText(row.ColumnBytes(column), flip);
    }
    entry.Size = FBytes.size() - entry.Offset;
    for (size_t i = 0; i < sizeof(entry.Prefix); ++i)
        entry.Prefix =
            entry.Prefix << 8 | (i < entry.Size ? static_cast<unsigned char>(FBytes[entry.Offset + i]) : quint64(0));
    FEntries.push_back(entry);
}

bool TKeyOrder::Less(const TEntry& a, const TEntry& b) const
{
    if (a.Prefix != b.Prefix)
        return a.Prefix < b.Prefix;
    const int order = std::memcmp(FBytes.data() + a.Offset, FBytes.data() + b.Offset, std::min(a.Size, b.Size));
    if (order != 0)
        return order < 0;
    return a.Size != b.Size ? a.Size < b.Size : a.Key < b.Key;
}

std::vector<qint64> TKeyOrder::Take()
{
    const auto less = [this](const TEntry& a, const TEntry& b) { return Less(a, b); };
    if (FEntries.size() < SortTogether) {
        std::ranges::sort(FEntries, less);
    } else {
        const auto middle = FEntries.begin() + static_cast<std::ptrdiff_t>(FEntries.size() / 2);
        const auto upper = std::async(std::launch::async, [&] { std::sort(middle, FEntries.end(), less); });
        std::sort(FEntries.begin(), middle, less);
        upper.wait();
        std::inplace_merge(FEntries.begin(), middle, FEntries.end(), less);
    }
    std::vector<qint64> keys;
    keys.reserve(FEntries.size());
    for (const TEntry& entry : FEntries)
        keys.push_back(entry.Key);
    FEntries = {};
    FBytes = {};
    return keys;
}

} // namespace Kestrune
