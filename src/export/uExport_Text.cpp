// SPDX-License-Identifier: GPL-3.0-or-later
#include "uExport_p.h"

#include <QIODevice>

#include <algorithm>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr int WidestColumn = 60; // of the text format; a longer text runs on
const QLatin1StringView BetweenColumns("  ");

// RFC 4180, section 2: quotes around a field with a comma, a quote or a line end, quotes within doubled.
QString CSVField(const QString& text)
{
    const bool plain =
        std::ranges::none_of(text, [](QChar c) { return c == u',' || c == u'"' || c == u'\r' || c == u'\n'; });
    if (plain)
        return text;
    QString quoted = text;
    return u'"' + quoted.replace(u'"', u"\"\""_s) + u'"';
}

// Columns of a terminal that a text takes: marks take none, wide characters two.
int DisplayWidth(const QString& text)
{
    int width = 0;
    for (const uint c : text.toUcs4()) {
        const bool mark = QChar::category(c) == QChar::Mark_NonSpacing || QChar::category(c) == QChar::Other_Format;
        const bool wide = (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) ||
                          (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
                          (c >= 0xFE30 && c <= 0xFE6F) || (c >= 0xFF00 && c <= 0xFF60) ||
                          (c >= 0x1F300 && c <= 0x1FAFF);
        width += mark ? 0 : wide ? 2 : 1;
    }
    return width;
}

QString TextCell(const QString& text, int width, bool right)
{
    const QString blanks(std::max(0, width - DisplayWidth(text)), u' ');
    return right ? blanks + text : text + blanks;
}

QString FlatText(QString text)
{
    for (QChar& c : text)
        if (c.unicode() < 0x20 || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = u' ';
    return text;
}

void WriteTextLine(QIODevice& file, const QStringList& cells)
{
    QString line = cells.join(BetweenColumns);
    while (line.endsWith(u' '))
        line.chop(1);
    file.write((line + u'\n').toUtf8());
}

} // namespace

bool WriteCSV(TExportSource& source, QIODevice& file, const TExportProgress& progress)
{
    const TProgressSteps steps(progress, source.RowCount());
    // A file of bare rows: what groups them and is no column of its own stands in front of each.
    const std::vector<TExportColumn> groups = source.GroupColumns();
    QStringList fields;
    std::vector<qsizetype> placeOf; // of each level among the fields in front; -1 for none
    for (const TExportColumn& group : groups) {
        const bool shown =
            std::ranges::find(source.Columns(), group.Field, &TExportColumn::Field) != source.Columns().end();
        placeOf.push_back(shown ? -1 : fields.size());
        if (!shown)
            fields << CSVField(group.Caption);
    }
    QStringList values(fields.size());
    for (const TExportColumn& column : source.Columns())
        fields << CSVField(column.Caption);
    file.write((fields.join(u',') + u"\r\n"_s).toUtf8());
    bool whole = true;
    source.Walk([&](int row, const std::vector<TVariant>& read) {
        for (const TExportGroup& group : source.GroupsAt(row))
            if (const qsizetype place = placeOf[static_cast<size_t>(group.Level)]; place >= 0)
                values[place] = CSVField(group.Value);
        QString line = values.join(u',');
        for (int column = 0; column < source.ColumnCount(); ++column) {
            if (column > 0 || !values.isEmpty())
                line += u',';
            line += CSVField(source.Text(read, column));
        }
        file.write((line + u"\r\n"_s).toUtf8());
        return whole = steps.GoOn(row);
    });
    return whole;
}

bool WriteText(TExportSource& source, QIODevice& file, const TExportProgress& progress)
{
    const int columns = source.ColumnCount();
    std::vector<int> widths;
    for (const TExportColumn& column : source.Columns())
        widths.push_back(DisplayWidth(column.Caption));
    bool whole = true;
    const TProgressSteps measuring(progress, source.RowCount(), 0, 2);
    source.Walk([&](int row, const std::vector<TVariant>& read) {
        for (int column = 0; column < columns; ++column)
            widths[static_cast<size_t>(column)] =
                std::clamp(DisplayWidth(FlatText(source.Text(read, column))), widths[static_cast<size_t>(column)],
                           std::max(WidestColumn, widths[static_cast<size_t>(column)]));
        return whole = measuring.GoOn(row);
    });
    if (!whole)
        return false;
    const TProgressSteps steps(progress, source.RowCount(), 1, 2);
    QStringList cells;
    QStringList rules;
    for (int column = 0; column < columns; ++column) {
        const int width = widths[static_cast<size_t>(column)];
        cells << TextCell(source.Columns()[static_cast<size_t>(column)].Caption, width, source.IsRightAligned(column));
        rules << QString(width, u'-');
    }
    WriteTextLine(file, cells);
    WriteTextLine(file, rules);
    source.Walk([&](int row, const std::vector<TVariant>& read) {
        for (const TExportGroup& group : source.GroupsAt(row))
            file.write(u"\n%1%2: %3 (%4)\n"_s.arg(QString(group.Level * 2, u' '), group.Caption, FlatText(group.Value))
                           .arg(group.Count)
                           .toUtf8());
        cells.clear();
        for (int column = 0; column < columns; ++column)
            cells << TextCell(FlatText(source.Text(read, column)), widths[static_cast<size_t>(column)],
                              source.IsRightAligned(column));
        WriteTextLine(file, cells);
        return whole = steps.GoOn(row);
    });
    return whole;
}

} // namespace Kestrune
