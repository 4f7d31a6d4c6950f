// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmAddMusic.h"
#include "uReleaseRoles.h"

#include <QAbstractListModel>

namespace Kestrune {

/// Roles of a hit beside those of a release.
enum THitRole : int {
    hrRecord = Qt::UserRole + 300, ///< qint64, the card's record
    hrCover,                       ///< QImage, null until it arrives
    hrFacts,                       ///< QString, "CRB 2207 · US 1974"
    hrProvider,                    ///< QString, display name of the service
    hrYours                        ///< bool, the collection holds it already
};

/// The cards of the current tab of the search window.
class THitsModel : public QAbstractListModel {
    Q_OBJECT
public:
    /// The form outlives the model.
    THitsModel(TAddMusicForm& form, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    /// Row of a record, or -1.
    int RowOf(qint64 record) const;

private:
    void Follow();
    void Refresh(qint64 record);
    const TSearchHit* Hit(int row) const;

    TAddMusicForm& FForm;
    qint64 FTab = 0;
    std::vector<qint64> FRecords; // as the views know them
};

} // namespace Kestrune
