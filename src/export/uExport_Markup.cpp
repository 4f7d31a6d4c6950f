// SPDX-License-Identifier: GPL-3.0-or-later
#include "uExport_p.h"
#include "uTHStrings.h"

#include <QDateTime>
#include <QIODevice>
#include <QXmlStreamWriter>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

const char* const PageHead =
    "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><meta name=\"viewport\" content=\"width=device-width\">\n"
    "<style>:root{color-scheme:light dark;--line:#dbd7cf;--soft:#f3f1ed;--text2:#57524a}"
    "@media(prefers-color-scheme:dark){:root{--line:#3b3936;--soft:#242321;--text2:#bab4ab}}"
    "body{font:14px/1.4 system-ui,sans-serif;margin:24px}h1{font-size:20px}"
    "table{border-collapse:collapse;width:100%}th,td{text-align:start;padding:4px 8px;border-bottom:1px solid "
    "var(--line);"
    "vertical-align:top;white-space:pre-line}th{position:sticky;top:0;background:var(--soft)}"
    "td.r,th.r{text-align:end}img{display:block;max-width:64px;max-height:64px;border-radius:4px}"
    "tr.g td{background:var(--soft);font-weight:600}tr.g span,footer{color:var(--text2);font-weight:400}"
    "@media print{th{position:static}body{margin:0}tr{break-inside:avoid}}</style>\n";

// The kind of a picture by its first bytes.
QLatin1StringView MimeOf(const QByteArray& picture)
{
    if (picture.startsWith("\x89PNG"))
        return "image/png"_L1;
    if (picture.startsWith("GIF8"))
        return "image/gif"_L1;
    if (picture.startsWith("RIFF") && picture.mid(8, 4) == "WEBP")
        return "image/webp"_L1;
    return picture.startsWith("BM") ? "image/bmp"_L1 : "image/jpeg"_L1;
}

void WriteCell(QIODevice& file, TExportSource& source, int row, const std::vector<TVariant>& values, int column)
{
    if (source.IsThumbnail(column)) {
        const QByteArray picture = source.Thumbnail(row);
        file.write("<td>");
        if (!picture.isEmpty()) {
            file.write("<img alt=\"\" src=\"data:" + QByteArray(MimeOf(picture).latin1()) + ";base64,");
            file.write(picture.toBase64() + "\">");
        }
        file.write("</td>");
        return;
    }
    file.write(source.IsRightAligned(column) ? "<td class=\"r\">" : "<td>");
    file.write(source.Text(values, column).toHtmlEscaped().toUtf8() + "</td>");
}

// Characters that XML 1.0 (section 2.2) does not know are left out.
QString XmlText(const QString& text)
{
    QString clean;
    clean.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            clean += c;
            clean += text[++i];
            continue;
        }
        const char16_t u = c.unicode();
        const bool control = u < 0x20 && u != u'\t' && u != u'\n' && u != u'\r';
        if (!control && !c.isSurrogate() && u < 0xFFFE)
            clean += c;
    }
    return clean;
}

} // namespace

bool WriteHTML(TExportSource& source, QIODevice& file, const QString& title, const TExportProgress& progress)
{
    const TProgressSteps steps(progress, source.RowCount());
    const QByteArray name = title.toHtmlEscaped().toUtf8();
    file.write(PageHead);
    file.write("<title>" + name + "</title></head>\n<body><h1>" + name + "</h1>\n<table><thead><tr>");
    for (int column = 0; column < source.ColumnCount(); ++column) {
        file.write(source.IsRightAligned(column) ? "<th class=\"r\">" : "<th>");
        file.write(source.Columns()[static_cast<size_t>(column)].Caption.toHtmlEscaped().toUtf8() + "</th>");
    }
    file.write("</tr></thead>\n<tbody>\n");
    bool whole = true;
    source.Walk([&](int row, const std::vector<TVariant>& values) {
        for (const TExportGroup& group : source.GroupsAt(row))
            file.write(u"<tr class=\"g\"><td colspan=\"%1\" style=\"padding-inline-start:%2px\"><span>%3</span> %4 "
                       "<span>%5</span></td></tr>\n"_s.arg(source.ColumnCount())
                           .arg(8 + 16 * group.Level)
                           .arg(group.Caption.toHtmlEscaped(), group.Value.toHtmlEscaped())
                           .arg(group.Count)
                           .toUtf8());
        file.write("<tr>");
        for (int column = 0; column < source.ColumnCount(); ++column)
            WriteCell(file, source, row, values, column);
        file.write("</tr>\n");
        return whole = steps.GoOn(row);
    });
    file.write("</tbody></table>\n</body></html>\n");
    return whole;
}

bool WriteXML(TExportSource& source, QIODevice& file, const QString& title, const TExportProgress& progress)
{
    const TProgressSteps steps(progress, source.RowCount());
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(1);
    xml.writeStartDocument();
    xml.writeStartElement(u"Collection"_s);
    xml.writeAttribute(u"title"_s, XmlText(title));
    xml.writeAttribute(u"exported"_s, QDateTime::currentDateTime().toString(Qt::ISODate));
    int open = 0; // groups
    bool whole = true;
    source.Walk([&](int row, const std::vector<TVariant>& values) {
        for (const TExportGroup& group : source.GroupsAt(row)) {
            for (; open > group.Level; --open)
                xml.writeEndElement();
            xml.writeStartElement(u"Group"_s);
            xml.writeAttribute(u"field"_s, group.Field);
            xml.writeAttribute(u"value"_s, XmlText(group.Value));
            ++open;
        }
        xml.writeStartElement(source.RowName());
        for (int column = 0; column < source.ColumnCount(); ++column) {
            if (source.IsThumbnail(column))
                continue;
            // An empty element tells that the column is there and its value is not.
            xml.writeTextElement(source.FieldOf(column).Name, XmlText(source.Text(values, column)));
        }
        xml.writeEndElement();
        return whole = steps.GoOn(row);
    });
    xml.writeEndDocument();
    return whole;
}

} // namespace Kestrune
