// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QWidget>

class QProgressBar;

namespace Kestrune {

class TRibbonButton;

/// The line at the foot of the window: facts left, a running job in the middle, the file right.
class TStatusLine : public QWidget {
    Q_OBJECT
public:
    explicit TStatusLine(QWidget* parent = nullptr);

    /// Facts from left to right; empty ones are left out.
    void SetFacts(const QStringList& facts);
    void SetFile(const QString& name, bool readOnly);
    /// Shows a job. `maximum` 0 means that its end is not known.
    void ShowProgress(const QString& text, int value, int maximum, bool canCancel);
    void HideProgress();

Q_SIGNALS:
    void cancelRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int FileLeft() const;
    void PlaceJob();

    QStringList FFacts;
    QString FFile;
    bool FReadOnly = false;
    QString FJob;
    QWidget* FJobBox;
    QProgressBar* FBar;
    TRibbonButton* FCancel;
};

} // namespace Kestrune
