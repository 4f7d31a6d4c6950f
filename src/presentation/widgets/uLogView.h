// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPlainTextEdit>

namespace Kestrune {

/// The log of a job: lines as they come, warnings marked by sign and ground. It holds the last 20,000 lines.
class TLogView : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit TLogView(QWidget* parent = nullptr);

    void AddLines(const QStringList& lines);
    void AddWarning(const QString& line);
    /// Warnings since the last Reset.
    int WarningCount() const { return FWarnings; }
    void Reset();

private:
    void Append(const QString& line, bool warning);

    int FWarnings = 0;
};

} // namespace Kestrune
