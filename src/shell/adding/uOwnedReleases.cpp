// SPDX-License-Identifier: GPL-3.0-or-later
#include "uOwnedReleases.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDebugLog.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int ReleasesPerStep = 500;

void AddKey(QSet<QString>& keys, const QString& key)
{
    if (!key.isEmpty())
        keys.insert(key);
}

} // namespace

TOwnedReleases::TOwnedReleases(TDataModuleMain& data) : FData(data)
{
    FTimer.setInterval(0);
    connect(&FTimer, &QTimer::timeout, this, &TOwnedReleases::ReadStep);
}

void TOwnedReleases::Load()
{
    for (QSet<QString>* keys : {&FBarcodes, &FCatalogNumbers, &FDiscogsIDs, &FMusicBrainzIDs})
        keys->clear();
    FLast = 0;
    FLoaded = false;
    FTimer.start();
}

void TOwnedReleases::ReadStep()
{
    std::vector<TReleaseKeys> rows;
    try {
        if (FData.HasData())
            rows = FData.Queries().ReadReleaseKeys(FLast, ReleasesPerStep);
    } catch (const EDatabaseError& failure) {
        DebugLog(u"[Search] keys of the collection: "_s + QString::fromUtf8(failure.what()));
    }
    for (const TReleaseKeys& row : rows) {
        AddKey(FBarcodes, ComparedBarcode(row.Barcode));
        AddKey(FCatalogNumbers, ComparedCatalogNo(row.CatalogNo));
        AddKey(FDiscogsIDs, row.DiscogsID);
        AddKey(FMusicBrainzIDs, row.MusicBrainzID.toLower());
        FLast = row.ReleaseId;
    }
    if (static_cast<int>(rows.size()) == ReleasesPerStep)
        return;
    FTimer.stop();
    FLoaded = true;
    Q_EMIT loaded();
}

bool TOwnedReleases::Holds(const TAlbumRelease& release) const
{
    const auto text = [&](const QString& key) { return VarToStr(release.GetItem2(key)); };
    return FBarcodes.contains(ComparedBarcode(text(Col::Barcode))) ||
           FCatalogNumbers.contains(ComparedCatalogNo(text(Col::CatalogNO))) ||
           FDiscogsIDs.contains(text(Col::DiscogsID)) || FMusicBrainzIDs.contains(text(Col::MusicBrainzID).toLower());
}

QString ComparedBarcode(const QString& barcode)
{
    QString digits;
    for (const QChar c : barcode) {
        if (c >= u'0' && c <= u'9' && !(digits.isEmpty() && c == u'0'))
            digits += c;
    }
    return digits;
}

QString ComparedCatalogNo(const QString& number)
{
    QString folded = number.toCaseFolded();
    folded.removeIf([](QChar c) { return c.isSpace() || c == u'-'; });
    return folded == "none"_L1 || folded == "[none]"_L1 ? QString() : folded;
}

} // namespace Kestrune
