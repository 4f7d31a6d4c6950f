// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QCache>
#include <QModelIndex>
#include <QPixmap>

namespace Kestrune {

/// Gives the encoded thumbnail of a row. It is asked only for rows that are being painted.
class TThumbSource {
public:
    virtual ~TThumbSource();
    /// Empty when there is none.
    virtual QByteArray ThumbBytes(const QModelIndex& index) = 0;
};

/// Reads the thumbnail through the model's own role rrThumbBytes.
class TModelThumbSource : public TThumbSource {
public:
    QByteArray ThumbBytes(const QModelIndex& index) override;
};

/// Finished covers, ready to paint, bounded in bytes. A cover is kept by release, time of its last change, size, device
/// pixel ratio and theme, so nothing has to be thrown away when one of them changes.
class TCoverCache {
public:
    /// Keeps a reference to the source.
    explicit TCoverCache(TThumbSource& source, int maxBytes = 96 * 1024 * 1024);

    /// The cover of a row, at most `side` dip wide and high: the stored thumbnail, or a drawn one. Null when it is not
    /// at hand and `mayDecode` is false.
    QPixmap Cover(const QModelIndex& index, int side, qreal ratio, bool mayDecode);

    void Clear() { FPixmaps.clear(); }
    qsizetype Bytes() const { return FPixmaps.totalCost(); }
    int DecodeCount() const { return FDecodeCount; }

private:
    QPixmap Make(const QModelIndex& index, int side, qreal ratio);

    TThumbSource& FSource;
    QCache<QString, QPixmap> FPixmaps;
    int FDecodeCount = 0;
};

} // namespace Kestrune
