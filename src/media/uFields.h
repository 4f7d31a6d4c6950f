// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

namespace Kestrune {

/// Numbers at fixed places of a structure in memory; 0 when they lie past its end.
class TFields {
public:
    explicit TFields(QByteArrayView bytes) : FBytes(bytes) {}

    quint8 U8(qint64 offset) const { return At(offset).U8(); }
    quint16 U16LE(qint64 offset) const { return At(offset).U16LE(); }
    quint32 U32LE(qint64 offset) const { return At(offset).U32LE(); }
    quint16 U16BE(qint64 offset) const { return At(offset).U16BE(); }
    quint32 U32BE(qint64 offset) const { return At(offset).U32BE(); }

private:
    TByteReader At(qint64 offset) const
    {
        TByteReader reader(FBytes);
        reader.Seek(offset);
        return reader;
    }

    QByteArrayView FBytes;
};

} // namespace Kestrune
