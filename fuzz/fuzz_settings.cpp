// SPDX-License-Identifier: GPL-3.0-or-later
// What the settings bring back: their backups, saved filters and table layouts. What is read and written again reads
// the same.
#include "uRegistryFile.h"
#include "uViewFilters.h"
#include "uViewLayout.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Kestrune;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const QString root = QStringLiteral("HKEY_CURRENT_USER\\Software\\C\\P");
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (const auto values = ReadRegistryFile(bytes, root)) {
        const auto again = ReadRegistryFile(WriteRegistryFile(root, *values), root);
        if (!again || again->size() > values->size())
            std::abort();
    }
    const QString text = QString::fromUtf8(bytes);
    if (const auto set = FilterSetFromText(text)) {
        const QString written = FilterSetToText(*set);
        const auto again = FilterSetFromText(written);
        if (again && FilterSetToText(*again) != written)
            std::abort();
    }
    if (const auto layout = LayoutFromText(text)) {
        const auto again = LayoutFromText(LayoutToText(*layout));
        if (!again || !(*again == *layout))
            std::abort();
    }
    return 0;
}
