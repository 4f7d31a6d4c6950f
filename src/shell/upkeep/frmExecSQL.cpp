// SPDX-License-Identifier: GPL-3.0-or-later
#include "frmExecSQL.h"

#include "dmMain.h"
#include "uDefaults.h"
#include "uTHStrings.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const QString HistoryKey = u"ExecSQL.History"_s;
constexpr int LongestHistory = 50;
constexpr qsizetype LongestCell = 2000;

QString CellText(const TVariant& value)
{
    if (VarIsNull(value))
        return GetLanguageString(u"cSSQLNull"_s);
    if (value.typeId() == QMetaType::QByteArray)
        return GetLanguageString(u"cSSQLBlob"_s).arg(value.toByteArray().size());
    return VarToStr(value).left(LongestCell);
}

} // namespace

TExecSQLForm::TExecSQLForm(TDataModuleMain& data) : FData(data)
{
    if (!HasSettingsStore())
        return;
    for (const QJsonValue& entry : QJsonDocument::fromJson(SettingsStore().ReadString(HistoryKey, {}).toUtf8()).array())
        if (FHistory.size() < LongestHistory)
            FHistory << entry.toString();
}

void TExecSQLForm::Remember(const QString& sql)
{
    FHistory.removeAll(sql);
    FHistory.prepend(sql);
    FHistory = FHistory.mid(0, LongestHistory);
    if (HasSettingsStore())
        SettingsStore().WriteString(
            HistoryKey, {},
            QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(FHistory)).toJson(QJsonDocument::Compact)));
}

TSQLResult TExecSQLForm::Run(const QString& sql, const std::function<bool()>& progress)
{
    TSQLResult result;
    const QString trimmed = sql.trimmed();
    if (trimmed.isEmpty())
        return result;
    Remember(trimmed);
    QElapsedTimer clock;
    clock.start();
    try {
        result.Changed = FData.RunQuery(trimmed, FCanWrite, progress, [&](TSQLiteStatement& row, bool first) {
            if (first) {
                result.Columns.clear();
                result.Rows.clear();
                result.Cut = false;
                for (int column = 0; column < row.ColumnCount(); ++column)
                    result.Columns << row.ColumnName(column);
                return;
            }
            if (result.Rows.size() >= MostRows) {
                result.Cut = true;
                return;
            }
            QStringList cells;
            for (int column = 0; column < row.ColumnCount(); ++column)
                cells << CellText(row.Column(column));
            result.Rows.push_back(std::move(cells));
        });
    } catch (const EDatabaseError& failure) {
        result.Error = failure.Text();
    }
    result.Seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    return result;
}

} // namespace Kestrune
