// SPDX-License-Identifier: GPL-3.0-or-later
#include "uCoverCache.h"

#include "uCoverArt.h"
#include "uDebugLog.h"
#include "uReleaseRoles.h"
#include "uTheme.h"

#include <cmath>

namespace Kestrune {

using namespace Qt::StringLiterals;

TThumbSource::~TThumbSource() = default;

QByteArray TModelThumbSource::ThumbBytes(const QModelIndex& index) { return index.data(rrThumbBytes).toByteArray(); }

TCoverCache::TCoverCache(TThumbSource& source, int maxBytes) : FSource(source), FPixmaps(maxBytes) {}

QPixmap TCoverCache::Cover(const QModelIndex& index, int side, qreal ratio, bool mayDecode)
{
    const TTheme& theme = CurrentTheme();
    const QString key = u"%1|%2|%3|%4|%5"_s.arg(index.data(rrId).toLongLong())
                            .arg(index.data(rrLastModified).toString())
                            .arg(side)
                            .arg(ratio)
                            .arg(int(theme.Kind));
    if (const QPixmap* known = FPixmaps.object(key))
        return *known;
    if (!mayDecode)
        return {};
    const QPixmap made = Make(index, side, ratio);
    FPixmaps.insert(key, new QPixmap(made), qsizetype(made.width()) * made.height() * 4);
    return made;
}

QPixmap TCoverCache::Make(const QModelIndex& index, int side, qreal ratio)
{
    ++FDecodeCount;
    // Asked for once: the answer is read from the file.
    if (const QByteArray bytes = FSource.ThumbBytes(index); !bytes.isEmpty()) {
        const QImage picture = DecodeScaled(bytes, static_cast<int>(std::lround(side * ratio)));
        if (!picture.isNull())
            return FinishCover(picture, ratio, CurrentTheme());
        DebugLog(u"[Views] thumbnail of release %1 is no picture"_s.arg(index.data(rrId).toLongLong()));
    }
    return DrawnCover(side, ratio, index.data(rrTitle).toString(), index.data(rrArtist).toString(),
                      index.data(rrMediaType).toString(), CurrentTheme());
}

} // namespace Kestrune
