// SPDX-License-Identifier: GPL-3.0-or-later
// What import sources write as text: dates in forms of their own, numbers, lengths and paths of pictures.
#include "uLength.h"
#include "uPicturePaths.h"
#include "uSourceValues.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Kestrune;
using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // The form comes before the first line feed, the text behind it.
    const QString input = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString form = input.section(u'\n', 0, 0);
    const QString text = input.section(u'\n', 1);
    const TSourceDate date = ParseDateAs(text, {.Date = form.section(u' ', 0, 0), .Time = form.section(u' ', 1)});
    if (date.Date.isValid() != date.Time.isValid())
        std::abort();
    ParseTagDate(text);
    ParseLenientNumber(text);
    WholeNumber(text);
    DecimalNumber(text);
    if (ParseLengthSec(text).value_or(0) < 0)
        std::abort();
    TPicturePaths(u"/nowhere/at/all.dat"_s).Find(text);
    return 0;
}
