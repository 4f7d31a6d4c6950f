// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uListModel.h"

#include <QHash>

namespace Kestrune {

/// The releases of the main list, with a column for the cover.
class TReleasesModel : public TListModel {
    Q_OBJECT

public:
    explicit TReleasesModel(TDataModuleMain& data, QObject* parent = nullptr);

protected:
    QVariant RoleData(int row, int role) const override;
    void Prepare() override { ReadLoans(); }
    bool HasCover() const override { return true; }
    TCellKind KindOf(const TFieldDef& field) const override;

private:
    struct TLoan {
        QString Friend;
        bool Overdue = false;
    };
    void ReadLoans();

    QHash<qint64, TLoan> FLoans;
};

/// All tracks of the collection, with what is read of their release.
class TTracksModel : public TListModel {
    Q_OBJECT

public:
    explicit TTracksModel(TDataModuleMain& data, QObject* parent = nullptr);

protected:
    QVariant RoleData(int row, int role) const override;
};

} // namespace Kestrune
