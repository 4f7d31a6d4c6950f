// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QWidget>

#include <vector>

class QMenu;

namespace Kestrune {

class TRibbonButton;
class TSegments;

/// One active filter as the bar shows it.
struct TChipText {
    QString Id; ///< given back when the chip is edited or removed
    QString Field;
    QString Value;
};

/// A chip: field name, value, x. Enter edits, Del removes.
class TChip : public QAbstractButton {
    Q_OBJECT
public:
    explicit TChip(TChipText chip, QWidget* parent = nullptr);

    const TChipText& Chip() const { return FChip; }
    QSize sizeHint() const override;

Q_SIGNALS:
    void removeRequested();
    void moveRequested(int direction); ///< -1 or 1: the keyboard goes to the neighbour

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QRect CrossRect() const;

    TChipText FChip;
};

/// The chips in one line. Those that do not fit go behind a "+n" button with a menu.
class TChipRow : public QWidget {
    Q_OBJECT
public:
    explicit TChipRow(QWidget* parent = nullptr);

    void SetChips(const std::vector<TChipText>& chips);
    /// Number of chips behind the "+n" button.
    int Hidden() const { return FHidden; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {60, 26}; }

Q_SIGNALS:
    void editRequested(const QString& id);
    void removeRequested(const QString& id);
    void clearRequested();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void Arrange();
    void FocusNeighbour(qsizetype from, int direction);
    void ShowOverflow();

    QList<TChip*> FChips;
    TRibbonButton* FMore;
    TRibbonButton* FClear;
    int FHidden = 0;
};

/// The bar under the ribbon: status menu, saved filters, chips, sort button, size steps and view switches.
class TFilterBar : public QWidget {
    Q_OBJECT
public:
    explicit TFilterBar(QWidget* parent = nullptr);

    void SetStatusMenu(QMenu* menu);
    /// Without a menu the button for saved filters is not there.
    void SetSavedMenu(QMenu* menu);
    void SetSort(const QString& caption, bool ascending, QMenu* menu);
    TChipRow* Chips() { return FChips; }
    TSegments* Sizes() { return FSizes; }
    TSegments* Views() { return FViews; }

Q_SIGNALS:
    void sortClicked();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TRibbonButton* FStatus;
    TRibbonButton* FSaved;
    TChipRow* FChips;
    TRibbonButton* FSort;
    TSegments* FSizes;
    TSegments* FViews;
};

} // namespace Kestrune
