// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QPlainTextEdit;

namespace Kestrune {

/// The lines of the debug log, read only. Lines may come from any thread; the oldest go when there are too many.
class TDebugWindow : public QWidget {
    Q_OBJECT
public:
    explicit TDebugWindow(QWidget* parent = nullptr);

    /// Safe from any thread: from another one the line is posted.
    void AddLine(const QString& line);
    QString Text() const;

    static constexpr int MostLines = 20000;

private:
    QPlainTextEdit* FLines;
};

} // namespace Kestrune
