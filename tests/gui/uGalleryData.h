// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractTableModel>
#include <QByteArray>
#include <QString>

#include <vector>

class QAction;

namespace Kestrune::Kit {

/// An invented release.
struct TSampleRelease {
    const char16_t* Title;
    const char16_t* Artist;
    const char16_t* Year;
    const char16_t* Media;
    const char16_t* Genre;
    const char16_t* Label;
    const char16_t* Country;
    int Rating;
    const char16_t* LentTo;
    bool Overdue;
    bool Wanted;
    int Art; ///< shape of the cover; negative: none is stored
};

/// A table of invented releases, repeated for as many rows as asked for. Counts how often thumbnails were read.
class TSampleModel : public QAbstractTableModel {
public:
    explicit TSampleModel(int rows, QObject* parent = nullptr) : QAbstractTableModel(parent), FRows(rows) {}

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : FRows; }
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Changes the number of rows, as after a filter.
    void SetRows(int rows);

    mutable int ThumbReads = 0;

private:
    int FRows;
};

/// An encoded picture of a drawn cover.
QByteArray SampleCover(int art, int side);

/// Actions for the ribbon with the captions, icons and shortcuts of the program, without handlers.
std::vector<QAction*> SampleActions(QObject* parent);

} // namespace Kestrune::Kit
