// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uExportSource.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <stdexcept>

namespace Kestrune {

enum class TExportFormat : quint8 { efHTML, efExcel, efText, efXML, efCSV, efPDF };
using enum TExportFormat;

/// The word of a format, which is also the extension of its files: html, xlsx, txt, xml, csv, pdf.
QString ExportFormatWord(TExportFormat format);
std::optional<TExportFormat> ExportFormatOf(const QString& word);
QStringList ExportFormatWords();
/// The filter of a file dialog.
QString ExportFileFilter(TExportFormat format);

/// An export that could not be done: one sentence in UTF-8.
class EExportError : public std::runtime_error {
public:
    explicit EExportError(const QString& text) : std::runtime_error(text.toStdString()) {}
    QString Text() const { return QString::fromUtf8(what()); }
};

/// Told how many rows are done; gives false to stop.
using TExportProgress = std::function<bool(int row, int count)>;

/// Writes what the source shows. The file is written aside and takes its name when it is whole; of an export that fails
/// or is stopped nothing is left. False when it was stopped; throws EExportError when it cannot be written.
bool WriteExport(TExportSource& source, TExportFormat format, const QString& path, const QString& title,
                 const TExportProgress& progress);

} // namespace Kestrune
