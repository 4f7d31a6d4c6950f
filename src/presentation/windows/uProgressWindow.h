// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

class QProgressBar;
class QPushButton;

namespace Kestrune {

class TLogView;

/// Shows a job of its own: what it does, a bar, the current item and a log, with Cancel while it runs and Close
/// afterwards. Closing while it runs asks to cancel.
class TProgressWindow : public QDialog {
    Q_OBJECT
public:
    explicit TProgressWindow(const QString& title, QWidget* parent = nullptr);

    /// `maximum` 0 means that the end is not known.
    void SetProgress(int value, int maximum);
    void SetCurrentItem(const QString& text);
    TLogView& Log() { return *FLog; }
    /// The job is over: the button now closes. After a failure the bar shows it and `sentence` says what stays.
    void Finish(const QString& sentence, bool failed);
    bool IsFinished() const { return FFinished; }

Q_SIGNALS:
    void cancelRequested();

protected:
    void reject() override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString FTitle;
    QString FSentence;
    bool FFinished = false;
    bool FFailed = false;
    QProgressBar* FBar;
    TLogView* FLog;
    QPushButton* FButton;
};

} // namespace Kestrune
