// SPDX-License-Identifier: GPL-3.0-or-later
#include "dmMain.h"
#include "uColumnNames.h"
#include "uCommand.h"
#include "uDefaults.h"
#include "uExport.h"
#include "uListOptions.h"

#include <QFileInfo>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

class TExportCommand final : public TCommand {
public:
    QString Name() const override { return u"export"_s; }
    QString Summary() const override { return u"write a list of releases or tracks to a file"_s; }
    void Describe(QCommandLineParser& parser) const override
    {
        parser.addPositionalArgument(u"FILE"_s, u"the collection"_s);
        AddListOptions(parser);
        parser.addOptions({{u"format"_s, ExportFormatWords().join(u", "_s), u"FORMAT"_s},
                           {u"out"_s, u"the file to write"_s, u"OUT"_s},
                           {u"columns"_s, u"columns in their order, as in \"Artist,ReleaseName\""_s, u"COLUMNS"_s},
                           {u"covers"_s, u"with thumbnails of the covers, in html and pdf"_s}});
    }

    void Run(const QCommandLineParser& parser) override
    {
        const QString path = Arguments(parser, 1, 1).front();
        const std::optional<TExportFormat> format = ExportFormatOf(parser.value(u"format"_s));
        if (!format)
            throw EUsageError(u"--format takes one of "_s + ExportFormatWords().join(u", "_s));
        const QString out = parser.value(u"out"_s);
        if (out.isEmpty())
            throw EUsageError(u"--out takes the file to write"_s);
        TOpenCollection collection(path);
        TListDataset& list = OpenList(parser, collection.Data());
        const bool tracks = parser.isSet(u"tracks"_s);
        TExportSource source(collection.Data(), list, Columns(parser, list, tracks),
                             *format == efHTML || *format == efPDF);
        WriteExport(source, *format, out, QFileInfo(path).completeBaseName(), {});
        PrintLine(u"%1 rows"_s.arg(source.RowCount()));
    }

private:
    static std::vector<TExportColumn> Columns(const QCommandLineParser& parser, const TDataset& list, bool tracks)
    {
        QStringList names =
            tracks ? QStringList{Col::TrackNo,     Col::TrackTitle,  Col::Artist,
                                 Col::TrackLength, Col::ReleaseName, Col::DiscNo}
                   : QStringList{Col::No,    Col::Artist,    Col::ReleaseName, Col::ReleaseYear, Col::MediaType,
                                 Col::Label, Col::CatalogNO, Col::Genre,       Col::Status};
        if (parser.isSet(u"columns"_s))
            names = parser.value(u"columns"_s).split(u',', Qt::SkipEmptyParts);
        std::vector<TExportColumn> columns;
        if (parser.isSet(u"covers"_s))
            columns.push_back({Col::ThumbPicture, {}});
        for (const QString& name : names) {
            const int field = list.FieldIndex(name.trimmed());
            if (field < 0)
                throw EUsageError(u"no column %1 to write"_s.arg(name.trimmed()));
            const TFieldDef& def = list.Fields()[static_cast<size_t>(field)];
            columns.push_back({def.Name, ColumnLabel(def, Defaults())});
        }
        return columns;
    }
};

} // namespace

std::unique_ptr<TCommand> MakeExportCommand() { return std::make_unique<TExportCommand>(); }

} // namespace Kestrune
