// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLineEdit>
#include <QTimer>

class QCompleter;

namespace Kestrune {

/// One field of the filter row: tells its text a little after the last key, at once on Enter. With choices it completes
/// them, and its arrow or Alt+Down opens them.
class TFilterCell : public QLineEdit {
    Q_OBJECT
public:
    explicit TFilterCell(QWidget* parent = nullptr);

    void SetChoices(const QStringList& choices);
    /// Shows a text without telling.
    void SetFilter(const QString& text);
    void SetWrong(bool wrong);
    bool IsWrong() const { return FWrong; }

Q_SIGNALS:
    void filterChanged(const QString& text);
    void leaveRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Tell();

    QTimer FTimer;
    QString FTold;
    QAction* FArrow = nullptr;
    bool FWrong = false;
};

} // namespace Kestrune
