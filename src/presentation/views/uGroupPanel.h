// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QWidget>

class QHBoxLayout;
class QMenu;

namespace Kestrune {

class TChip;
class TRibbonButton;

/// The panel over a table: by which columns it is grouped, as chips that can be removed, and the buttons for groups and
/// presets.
class TGroupPanel : public QWidget {
    Q_OBJECT
public:
    explicit TGroupPanel(QWidget* parent = nullptr);

    /// Columns and their captions, outermost first.
    void SetGroups(const QStringList& columns, const QStringList& captions);
    /// The menu of columns to group by, and the one of presets.
    void SetMenus(QMenu* groupBy, QMenu* presets);
    QSize sizeHint() const override;

Q_SIGNALS:
    void removeRequested(const QString& column);
    void expandRequested(bool expand);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void FocusNeighbour(TChip* chip, int direction);

    QHBoxLayout* FRow;
    QList<TChip*> FChips;
    TRibbonButton* FAdd;
    TRibbonButton* FPresets;
    TRibbonButton* FExpand;
    TRibbonButton* FCollapse;
    QString FHint;
};

} // namespace Kestrune
