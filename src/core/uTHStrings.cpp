// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTHStrings.h"

#include "uDebugLog.h"
#include "uProgramFiles.h"
#include "uXml.h"

#include <QCollator>
#include <QDir>
#include <QFile>
#include <QPainter>

#include <algorithm>

static void InitCoreResources() { Q_INIT_RESOURCE(core); }

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

int IntAttribute(const TXmlElement& element, const QString& name, int absent)
{
    bool ok = false;
    const int value = element.Attribute(name).value_or(QString()).toInt(&ok);
    return ok ? value : absent;
}

QImage StockFlag()
{
    QImage flag(24, 16, QImage::Format_ARGB32_Premultiplied);
    flag.fill(QColor(0x8A, 0x84, 0x79));
    QPainter(&flag).fillRect(1, 1, 22, 14, QColor(0xF3, 0xF1, 0xED));
    return flag;
}

QImage FlagFromBase64(const QString& base64)
{
    const QImage flag = QImage::fromData(QByteArray::fromBase64(base64.toLatin1()));
    return flag.isNull() ? StockFlag() : flag;
}

} // namespace

bool TXMLLanguage::LoadLanguage(const QString& language)
{
    // The name comes from the settings: one that climbs out of the folder names no language.
    if (language.isEmpty() || language.contains(u'/'))
        return false;
    const QString folder = FCustomLangFolder.isEmpty() ? LanguageFolder() : FCustomLangFolder;
    const QString path = QDir(folder).filePath(language + u".xml"_s);
    if (!QFile::exists(path))
        return false;
    QString error;
    const auto document = TXmlDocument::Load(path, &error);
    if (!document)
        DebugLog(u"[Language] %1: %2"_s.arg(path, error));
    return document && Read(*document, language);
}

bool TXMLLanguage::InitLanguageFromResources(const QString& resourceName, const QString& langName)
{
    InitCoreResources();
    const auto document = TXmlDocument::Load(u":/core/"_s + resourceName);
    return document && Read(*document, langName);
}

bool TXMLLanguage::Read(const TXmlDocument& document, const QString& language)
{
    const TXmlElement root = document.Root();
    if (root.Name() != "Language"_L1)
        return false;
    FList.clear();
    FCurrentLanguage = language;
    FCurrentLanguageInThatLanguage = root.Attribute(u"name"_s).value_or(language);
    FCodePage = IntAttribute(root, u"CodePage"_s, 0);
    FCurrentLocaleId = IntAttribute(root, u"LocaleId"_s, 0);
    FFontCharset = IntAttribute(root, u"Charset"_s, 1);
    FIsRightToLeft = root.Attribute(u"BiDiMode"_s).value_or(QString()).toLower() == "righttoleft"_L1;
    for (const TXmlElement& child : root.Children()) {
        if (child.Name().compare("string"_L1, Qt::CaseInsensitive) == 0)
            FList.insert(child.Attribute(u"name"_s).value_or(QString()).toLower(), child.Text());
    }
    return true;
}

QString TXMLLanguage::GetValue(const QString& name) const { return FList.value(name.toLower()); }

void TLanguagesListEx2::Fill(const QString& folder)
{
    FItems.clear();
    const QDir dir(folder);
    for (const QString& file : dir.entryList({u"*.xml"_s}, QDir::Files)) {
        const auto document = TXmlDocument::Load(dir.filePath(file));
        if (!document || document->Root().Name() != "Language"_L1)
            continue;
        const TXmlElement root = document->Root();
        TLang lang;
        lang.FileName = file.chopped(4);
        lang.Name = root.Attribute(u"name"_s).value_or(lang.FileName);
        lang.Flag = FlagFromBase64(root.Attribute(u"FlagImage"_s).value_or(QString()));
        lang.Charset = IntAttribute(root, u"Charset"_s, 1);
        lang.CodePage = IntAttribute(root, u"CodePage"_s, 0);
        lang.LocaleID = IntAttribute(root, u"LocaleID"_s, 0);
        FItems.push_back(std::move(lang));
    }
    SortByValues();
}

void TLanguagesListEx2::SortByValues()
{
    const QCollator collator;
    std::ranges::stable_sort(FItems,
                             [&](const TLang& a, const TLang& b) { return collator.compare(a.Name, b.Name) < 0; });
}

TXMLLanguage& Language()
{
    static TXMLLanguage language = [] {
        TXMLLanguage english;
        english.InitLanguageFromResources(u"ENGLISHLANG"_s, u"English"_s);
        return english;
    }();
    return language;
}

QString GetLanguageString(const QString& name) { return Language().GetValue(name); }

QString FormatText(const QString& format, const QStringList& values)
{
    QString text;
    qsizetype value = 0;
    for (qsizetype at = 0; at < format.size(); ++at) {
        const bool isPlace = format[at] == u'%' && at + 1 < format.size() &&
                             (format[at + 1] == u's' || format[at + 1] == u'd') && value < values.size();
        if (isPlace) {
            text += values[value++];
            ++at;
        } else {
            text += format[at];
        }
    }
    return text;
}

QString LanguageFolder() { return ProgramFile(u"Lang"_s); }

} // namespace Kestrune
