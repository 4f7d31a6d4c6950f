// SPDX-License-Identifier: GPL-3.0-or-later
// A stylesheet, a zero byte and the document that it transforms. What comes out is XML.
#include "uXSLTranformation.h"
#include "uXml.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace Kestrune;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const qsizetype end = bytes.indexOf('\0');
    const QByteArray stylesheet = end < 0 ? bytes : bytes.left(end);
    const QByteArray document = end < 0 ? QByteArray("<Data><a><Array0>b</Array0></a></Data>") : bytes.mid(end + 1);
    QByteArray output;
    QString error;
    const bool done = TransformXSL(document, stylesheet, output, false, &error);
    if (done != error.isEmpty() || (!done && !output.isEmpty()))
        std::abort();
    if (done)
        (void)TXmlDocument::Parse(output);
    return 0;
}
