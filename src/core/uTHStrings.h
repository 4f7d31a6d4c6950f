// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QImage>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Kestrune {

class TXmlDocument;

/// The texts of the interface in one language, by key. A language file replaces the table as a whole.
class TXMLLanguage {
public:
    /// Folder to look in instead of `Lang` in the program folder; empty for the latter.
    QString FCustomLangFolder;

    /// Reads "name.xml". False when there is no such file or it cannot be parsed: the table is then unchanged.
    bool LoadLanguage(const QString& language);
    /// Reads a document that is compiled into the program, such as "ENGLISHLANG".
    bool InitLanguageFromResources(const QString& resourceName, const QString& langName);
    /// The text of a key, compared without case; empty when the key is absent.
    QString GetValue(const QString& name) const;

    // Of the document that was read last: the name asked for, its own name, Windows character set and code page,
    // locale number, and the direction of its script.
    QString CurrentLanguage() const { return FCurrentLanguage; }
    QString CurrentLanguageInThatLanguage() const { return FCurrentLanguageInThatLanguage; }
    int FontCharset() const { return FFontCharset; }
    int CodePage() const { return FCodePage; }
    int CurrentLocaleId() const { return FCurrentLocaleId; }
    bool IsRightToLeft() const { return FIsRightToLeft; }
    /// All keys of the table, in lower case.
    QStringList Keys() const { return FList.keys(); }

private:
    bool Read(const TXmlDocument& document, const QString& language);

    QString FCurrentLanguage;
    QString FCurrentLanguageInThatLanguage;
    int FFontCharset = 1;
    int FCodePage = 0;
    int FCurrentLocaleId = 0;
    bool FIsRightToLeft = false;
    QHash<QString, QString> FList;
};

/// One language that can be chosen.
struct TLang {
    QString FileName; ///< without folder and extension: the name to give to LoadLanguage
    QString Name;     ///< as the language calls itself
    QImage Flag;      ///< never null: a stock flag stands in
    int Charset = 1;
    int CodePage = 0;
    int LocaleID = 0;
};

/// The languages of a folder, sorted by display name.
class TLanguagesListEx2 {
public:
    /// Reads the root of each *.xml; files that are no language documents are left out.
    void Fill(const QString& folder);
    void SortByValues();
    const std::vector<TLang>& Items() const { return FItems; }

private:
    std::vector<TLang> FItems;
};

/// The language of the process. Loads the built-in English table on first use.
TXMLLanguage& Language();

/// The text of a language key in the current language; empty for an unknown key.
QString GetLanguageString(const QString& name);

/// A text with each "%s" and "%d" replaced, in their order, by the values. What has no value stays.
QString FormatText(const QString& format, const QStringList& values);

/// The language folder: `Lang` beside the program, or under its install prefix.
QString LanguageFolder();

} // namespace Kestrune
