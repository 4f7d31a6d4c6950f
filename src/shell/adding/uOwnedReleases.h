// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

namespace Kestrune {

class TAlbumRelease;
class TDataModuleMain;

/// Knows which releases of online services the collection holds already. The keys of the collection are read in small
/// steps of the event loop. Main thread.
class TOwnedReleases : public QObject {
    Q_OBJECT
public:
    /// The data module outlives it.
    explicit TOwnedReleases(TDataModuleMain& data);

    /// Reads all keys anew; `loaded` follows.
    void Load();
    bool Loaded() const { return FLoaded; }
    /// True when a release of the collection has the same barcode, catalogue number or identifier at the service.
    bool Holds(const TAlbumRelease& release) const;

Q_SIGNALS:
    void loaded();

private:
    void ReadStep();

    TDataModuleMain& FData;
    QTimer FTimer;
    QSet<QString> FBarcodes, FCatalogNumbers, FDiscogsIDs, FMusicBrainzIDs;
    qint64 FLast = 0;
    bool FLoaded = false;
};

/// A barcode as it is compared: digits without what stands between them and without leading zeros, so that the forms of
/// 12 and 13 digits are one. Empty when there are no digits.
QString ComparedBarcode(const QString& barcode);
/// A catalogue number as it is compared: without case, blanks and hyphens. Empty for words that say there is none.
QString ComparedCatalogNo(const QString& number);

} // namespace Kestrune
