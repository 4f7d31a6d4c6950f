// SPDX-License-Identifier: GPL-3.0-or-later
#include "uExport.h"

#include "uExport_p.h"
#include "uFilePath.h"
#include "uGuardedFiles.h"
#include "uTHStrings.h"

#include <QFile>
#include <QScopeGuard>

#include <algorithm>
#include <filesystem>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TFormatRow {
    TExportFormat Format;
    const char16_t* Word;
    const char16_t* FilterKey;
};

constexpr TFormatRow FormatRows[] = {
    {efHTML, u"html", u"cSExportFilterHTML"}, {efExcel, u"xlsx", u"cSExportFilterExcel"},
    {efText, u"txt", u"cSExportFilterText"},  {efXML, u"xml", u"cSExportFilterXML"},
    {efCSV, u"csv", u"cSExportFilterCSV"},    {efPDF, u"pdf", u"cSExportFilterPDF"}};

const TFormatRow& RowOf(TExportFormat format) { return *std::ranges::find(FormatRows, format, &TFormatRow::Format); }

[[noreturn]] void Fail(const QString& path, const QString& reason)
{
    throw EExportError(GetLanguageString(u"cSFileCannotBeWritten"_s).replace(u"%s"_s, path) + u' ' + reason);
}

bool WriteFormat(TExportSource& source, TExportFormat format, QFile& file, const QString& title,
                 const TExportProgress& progress)
{
    switch (format) {
    case efHTML: return WriteHTML(source, file, title, progress);
    case efText: return WriteText(source, file, progress);
    case efXML: return WriteXML(source, file, title, progress);
    case efCSV: return WriteCSV(source, file, progress);
    case efPDF: return WritePDF(source, file, title, progress);
    case efExcel: break;
    }
    return false;
}

} // namespace

QString ExportFormatWord(TExportFormat format) { return QString::fromUtf16(RowOf(format).Word); }

std::optional<TExportFormat> ExportFormatOf(const QString& word)
{
    for (const TFormatRow& row : FormatRows)
        if (word.compare(QString::fromUtf16(row.Word), Qt::CaseInsensitive) == 0)
            return row.Format;
    return {};
}

QStringList ExportFormatWords()
{
    QStringList words;
    for (const TFormatRow& row : FormatRows)
        words << QString::fromUtf16(row.Word);
    return words;
}

QString ExportFileFilter(TExportFormat format)
{
    return u"%1 (*.%2)|*.%2"_s.arg(GetLanguageString(QString::fromUtf16(RowOf(format).FilterKey)),
                                   ExportFormatWord(format));
}

bool WriteExport(TExportSource& source, TExportFormat format, const QString& path, const QString& title,
                 const TExportProgress& progress)
{
    if (IsGuardedFile(TextToPath(path)))
        Fail(path, GetLanguageString(u"cSFileIsOpen"_s));
    const QString aside = path + u".part"_s;
    auto discard = qScopeGuard([&] { QFile::remove(aside); });
    QFile file(aside);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        Fail(path, file.errorString());
    source.Rewind();
    bool whole = false;
    if (format == efExcel) {
        file.close();
        whole = WriteExcel(source, aside, title, progress);
    } else {
        whole = WriteFormat(source, format, file, title, progress);
        const bool flushed = file.flush();
        if (whole && (!flushed || file.error() != QFileDevice::NoError))
            Fail(path, file.errorString());
        file.close();
    }
    if (!whole)
        return false;
    std::error_code error;
    std::filesystem::rename(TextToPath(aside), TextToPath(path), error);
    if (error)
        Fail(path, QString::fromStdString(error.message()));
    discard.dismiss();
    return true;
}

} // namespace Kestrune
