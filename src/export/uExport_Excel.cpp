// SPDX-License-Identifier: GPL-3.0-or-later
#include "uColumnNames.h"
#include "uExport_p.h"
#include "uFieldText.h"
#include "uTHStrings.h"

#include <QDate>
#include <QFile>

#include <xlsxwriter.h>

#include <algorithm>
#include <chrono>
#include <future>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype LongestString = 32767; // ECMA-376: what a cell holds
constexpr int MostSheetRows = 1048576;
constexpr std::chrono::milliseconds PackingStep(20);

struct TFormats {
    lxw_format* Head;
    lxw_format* Group;
    lxw_format* Date;
    lxw_format* Length;
    lxw_format* Money;
    lxw_format* Wrapped;
};

lxw_format* NumberFormat(lxw_workbook* book, const char* text)
{
    lxw_format* format = workbook_add_format(book);
    format_set_num_format(format, text);
    return format;
}

TFormats MakeFormats(lxw_workbook* book)
{
    TFormats formats{};
    formats.Head = workbook_add_format(book);
    format_set_bold(formats.Head);
    format_set_bottom(formats.Head, LXW_BORDER_THIN);
    formats.Group = workbook_add_format(book);
    format_set_bold(formats.Group);
    formats.Date = NumberFormat(book, "yyyy-mm-dd");
    formats.Length = NumberFormat(book, "[h]:mm:ss");
    formats.Money = NumberFormat(book, "#,##0.00");
    formats.Wrapped = workbook_add_format(book);
    return formats;
}

void WriteString(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const QString& text, lxw_format* format)
{
    worksheet_write_string(sheet, row, column, text.left(LongestString).toUtf8().constData(), format);
}

void WriteExcelCell(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const TFieldDef& field,
                    const TVariant& value, const QString& shown, const TFormats& formats)
{
    if (VarIsNull(value) || shown.isEmpty())
        return;
    if (field.Kind == fkDate && value.typeId() == QMetaType::QDate && value.toDate().year() >= 1900) {
        const QDate date = value.toDate();
        lxw_datetime when = {date.year(), date.month(), date.day(), 0, 0, 0};
        worksheet_write_datetime(sheet, row, column, &when, formats.Date);
        return;
    }
    const bool number = value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Double ||
                        value.typeId() == QMetaType::Int;
    if (number && IsLengthField(field.Name))
        worksheet_write_number(sheet, row, column, value.toDouble(), formats.Length);
    else if (number && field.Kind == fkFloat && field.Name != Col::Rating_Calc)
        worksheet_write_number(sheet, row, column, value.toDouble(), formats.Money);
    else if (number && !IsFriendField(field.Name))
        worksheet_write_number(sheet, row, column, value.toDouble(), nullptr);
    else if (field.Kind == fkBoolean)
        worksheet_write_boolean(sheet, row, column, VarToBool(value) ? 1 : 0, nullptr);
    else
        WriteString(sheet, row, column, shown, formats.Wrapped);
}

double ColumnWidth(const TExportSource& source, int column)
{
    const TFieldDef& field = source.FieldOf(column);
    const double caption = static_cast<double>(source.Columns()[static_cast<size_t>(column)].Caption.size()) + 3.0;
    const double usual = field.Kind == fkDate ? 12.0 : !field.IsText() ? 9.0 : field.Size > 200 ? 32.0 : 24.0;
    return std::clamp(std::max(caption, usual), 6.0, 60.0);
}

// A name of a sheet: at most 31 characters, none of []:*?/\ and no apostrophe at the ends.
QByteArray SheetName(const QString& title)
{
    QString name;
    for (const QChar c : title)
        name += QStringView(u"[]:*?/\\").contains(c) || c.unicode() < 0x20 || c == u'\'' ? u' ' : c;
    name = name.simplified().left(28);
    return name.isEmpty() ? QByteArray("Kestrune") : name.toUtf8();
}

} // namespace

bool WriteExcel(TExportSource& source, const QString& path, const QString& title, const TExportProgress& progress)
{
    const TProgressSteps steps(progress, source.RowCount());
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    lxw_workbook* book = workbook_new_opt(QFile::encodeName(path).constData(), &options);
    const QByteArray name = SheetName(title);
    lxw_worksheet* sheet = book ? workbook_add_worksheet(book, name.constData()) : nullptr;
    if (!sheet)
        throw EExportError(GetLanguageString(u"cSFileCannotBeWritten"_s).replace(u"%s"_s, path));
    const TFormats formats = MakeFormats(book);
    const int columns = source.ColumnCount();
    for (int column = 0; column < columns; ++column)
        worksheet_set_column(sheet, static_cast<lxw_col_t>(column), static_cast<lxw_col_t>(column),
                             ColumnWidth(source, column), nullptr);
    worksheet_freeze_panes(sheet, 1, 0);
    for (int column = 0; column < columns; ++column)
        WriteString(sheet, 0, static_cast<lxw_col_t>(column), source.Columns()[static_cast<size_t>(column)].Caption,
                    formats.Head);
    lxw_row_t line = 1;
    bool whole = true;
    source.Walk([&](int row, const std::vector<TVariant>& values) {
        for (const TExportGroup& group : source.GroupsAt(row))
            WriteString(sheet, line++, 0, u"%1: %2 (%3)"_s.arg(group.Caption, group.Value).arg(group.Count),
                        formats.Group);
        if (line >= MostSheetRows)
            return whole = false;
        for (int column = 0; column < columns; ++column)
            WriteExcelCell(sheet, line, static_cast<lxw_col_t>(column), source.FieldOf(column),
                           values[static_cast<size_t>(column)], source.Text(values, column), formats);
        ++line;
        return whole = steps.GoOn(row);
    });
    const bool full = line >= MostSheetRows;
    if (line > 1 && columns > 0 && !source.IsGrouped())
        worksheet_autofilter(sheet, 0, 0, line - 1, static_cast<lxw_col_t>(columns - 1));
    // Packing takes as long as the rows did; it touches nothing of ours, so that the event loop can be served
    // meanwhile.
    auto packing = std::async(std::launch::async, [book] { return workbook_close(book); });
    while (packing.wait_for(PackingStep) != std::future_status::ready)
        if (whole && progress && !progress(source.RowCount(), source.RowCount()))
            whole = false; // what is packed is thrown away
    const lxw_error error = packing.get();
    if (full)
        throw EExportError(GetLanguageString(u"cSExportSheetFull"_s));
    if (error != LXW_NO_ERROR)
        throw EExportError(GetLanguageString(u"cSFileCannotBeWritten"_s).replace(u"%s"_s, path) + u' ' +
                           QString::fromUtf8(lxw_strerror(error)));
    return whole;
}

} // namespace Kestrune
