// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uByteReader.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Kestrune::Fuzz {

/// A run of sectors of a disc image that a reader looks at.
struct TSectorRun {
    qint64 First = 0;
    qint64 Count = 0;
};
using TSectorRuns = std::vector<TSectorRun>;

inline constexpr qint64 FoldSector = 2048;
inline constexpr qint64 ToTheEnd = 1 << 20;

// Where the structures of each kind of image stand; what lies between is empty and need not be in a fuzz input.
inline TSectorRuns ISORuns() { return {{16, ToTheEnd}}; }
inline TSectorRuns UDFRuns() { return {{16, 3}, {32, 12}, {256, 1}, {300, ToTheEnd}}; }
inline TSectorRuns SACDRuns() { return {{510, 10}, {544, 6}, {600, ToTheEnd}}; }

/// A whole image as a fuzz input: the sectors of the runs, one behind the other.
inline QByteArray Fold(const QByteArray& image, const TSectorRuns& runs)
{
    QByteArray folded;
    for (const TSectorRun& run : runs)
        folded += image.mid(run.First * FoldSector, run.Count * FoldSector);
    return folded;
}

/// A fuzz input as an image again.
class TUnfoldedSource final : public TByteSource {
public:
    TUnfoldedSource(QByteArray bytes, TSectorRuns runs) : FBytes(std::move(bytes)), FRuns(std::move(runs))
    {
        qint64 left = FBytes.size();
        for (const TSectorRun& run : FRuns) {
            const qint64 length = std::min(left, run.Count * FoldSector);
            if (length > 0)
                FSize = run.First * FoldSector + length;
            left -= length;
        }
        FSize = std::max<qint64>(FSize, 600 * FoldSector);
    }
    qint64 Size() const override { return FSize; }
    qint64 ReadAt(qint64 offset, char* to, qint64 length) override
    {
        if (offset < 0 || offset >= FSize || length <= 0)
            return 0;
        length = std::min(length, FSize - offset);
        std::memset(to, 0, static_cast<size_t>(length));
        qint64 from = 0;
        for (const TSectorRun& run : FRuns) {
            const qint64 start = run.First * FoldSector;
            const qint64 count = std::min(run.Count * FoldSector, FBytes.size() - from);
            const qint64 first = std::max(offset, start);
            const qint64 last = std::min(offset + length, start + count);
            if (first < last)
                std::memcpy(to + (first - offset), FBytes.constData() + from + (first - start),
                            static_cast<size_t>(last - first));
            from += std::max<qint64>(count, 0);
        }
        return length;
    }

private:
    QByteArray FBytes;
    TSectorRuns FRuns;
    qint64 FSize = 0;
};

} // namespace Kestrune::Fuzz
