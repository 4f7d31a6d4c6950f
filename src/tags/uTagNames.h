// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSet>
#include <QString>
#include <QStringView>
#include <QVarLengthArray>

#include <algorithm>
#include <unordered_set>

namespace Kestrune {

/// Whether two names are one: names of tags are told apart without regard to case.
bool EqualsNoCase(QStringView a, QStringView b);

/// For tables of names: those that EqualsNoCase takes for one have one hash.
struct TNoCaseHash {
    size_t operator()(QStringView name) const;
};
struct TNoCaseEqual {
    bool operator()(QStringView a, QStringView b) const { return EqualsNoCase(a, b); }
};

/// Tells whether a value was met before. A few are compared one by one, which is quicker for nearly all tags; more go
/// to a table.
template <typename T>
class TSeen {
public:
    /// Notes the value; false when it was noted before.
    bool Add(const T& value)
    {
        if (FTable.isEmpty()) {
            if (std::ranges::find(FFew, value) != FFew.end())
                return false;
            FFew.append(value);
            if (FFew.size() == Few)
                FTable = QSet<T>(FFew.begin(), FFew.end());
            return true;
        }
        const qsizetype before = FTable.size();
        FTable.insert(value);
        return FTable.size() > before;
    }

private:
    static constexpr qsizetype Few = 16;
    QVarLengthArray<T, Few> FFew;
    QSet<T> FTable;
};

/// Names that the earlier parts of a tag have stated. A part that should be there once, as a comment block or a list of
/// texts, is found a second time where a writer did not see the first: of the later one only new names count.
class TEarlierNames {
public:
    /// Begins a further part: `items` are those of all parts before, each named by `nameOf`.
    template <typename TItems, typename TName>
    void Begin(const TItems& items, TName nameOf)
    {
        for (; FCount < items.size(); ++FCount)
            FNames.insert(nameOf(items[FCount]));
    }
    bool Has(const QString& name) const { return !FNames.empty() && FNames.contains(name); }

private:
    struct THash {
        size_t operator()(const QString& name) const { return TNoCaseHash()(name); }
    };
    std::unordered_set<QString, THash, TNoCaseEqual> FNames;
    size_t FCount = 0; // of the items whose names are there
};

} // namespace Kestrune
