// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace Kestrune {

class TDataModuleMain;

/// What a statement gave: a table, or the number of rows that were changed.
struct TSQLResult {
    QStringList Columns; ///< empty for a statement without rows
    std::vector<QStringList> Rows;
    bool Cut = false;   ///< there are more rows than are kept
    qint64 Changed = 0; ///< rows written by the statements
    QString Error;      ///< why it failed, or empty
    double Seconds = 0.0;
};

/// The window for SQL without widgets: runs statements on the collection, by default without letting them write.
class TExecSQLForm {
public:
    explicit TExecSQLForm(TDataModuleMain& data);

    /// Runs a script; the result is that of the last statement that gave rows. Writing statements fail unless writing
    /// was switched on; then they run in one transaction, which is undone when one of them fails.
    /// `progress` is asked now and then and stops the statements by giving false.
    TSQLResult Run(const QString& sql, const std::function<bool()>& progress = {});
    bool CanWrite() const { return FCanWrite; }
    void SetCanWrite(bool on) { FCanWrite = on; }
    /// The statements that were run, the latest first; kept by the settings.
    const QStringList& History() const { return FHistory; }

    static constexpr int MostRows = 10000;

private:
    void Remember(const QString& sql);

    TDataModuleMain& FData;
    bool FCanWrite = false;
    QStringList FHistory;
};

} // namespace Kestrune
