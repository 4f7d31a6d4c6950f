// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frmAddMusic.h"

#include <QTimer>
#include <QWidget>

class QCheckBox;
class QPushButton;
class QVBoxLayout;

namespace Kestrune {

class TRibbonButton;

/// One service: a box to choose it, what it is at, and a button after a failure.
class TServiceRow : public QWidget {
    Q_OBJECT
public:
    explicit TServiceRow(QWidget* parent);
    void SetStatus(const TServiceStatus& status, bool chosen, bool mayRetry);
    /// What the state line says.
    QString StateText() const;

Q_SIGNALS:
    void chosen(bool on);
    void retried();
    void keyExplained();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QRect StateRect() const;

    TServiceStatus FStatus;
    QCheckBox* FBox;
    QPushButton* FButton;
    QTimer FClock; // the moving bar and the seconds that are left
    int FTick = 0;
};

/// All services of the area in hand.
class TServiceList : public QWidget {
    Q_OBJECT
public:
    TServiceList(TAddMusicForm& form, QWidget* parent);
    void Refresh();

private:
    TAddMusicForm& FForm;
    QVBoxLayout* FColumn;
    std::vector<TServiceRow*> FRows;
};

/// The chosen releases, each with a button that takes it out again.
class TChosenList : public QWidget {
    Q_OBJECT
public:
    TChosenList(TAddMusicForm& form, QWidget* parent);
    void Refresh();

private:
    TAddMusicForm& FForm;
    QVBoxLayout* FColumn;
};

} // namespace Kestrune
