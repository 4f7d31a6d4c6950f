// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTagNames.h"

#include <QHashFunctions>
#include <QVarLengthArray>

namespace Kestrune {

bool EqualsNoCase(QStringView a, QStringView b)
{
    return a.size() == b.size() && a.compare(b, Qt::CaseInsensitive) == 0;
}

size_t TNoCaseHash::operator()(QStringView name) const
{
    QVarLengthArray<char32_t, 64> folded;
    for (qsizetype i = 0; i < name.size(); ++i) {
        char32_t c = name[i].unicode();
        if (name[i].isHighSurrogate() && i + 1 < name.size() && name[i + 1].isLowSurrogate()) {
            ++i;
            c = QChar::surrogateToUcs4(name[i - 1], name[i]);
        }
        folded.append(QChar::toCaseFolded(c));
    }
    // Seeded, so that no file can bring names that meet in one bucket.
    return qHashBits(folded.constData(), static_cast<size_t>(folded.size()) * sizeof(char32_t),
                     static_cast<size_t>(QHashSeed::globalSeed()));
}

} // namespace Kestrune
