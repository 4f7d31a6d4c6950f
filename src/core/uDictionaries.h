// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <span>
#include <vector>

namespace Kestrune {

/// One suggestion list: multi-line text with items separated by CR LF, kept in the settings.
struct TDict {
    QString Text;
    QString DefaultText;

    /// The items, without empty lines.
    QStringList Items() const;
};
using PDict = TDict*;

/// The settings key of a dictionary and what it holds at first.
struct TDictDef {
    const char* Key;
    QString (*DefaultText)();
};

/// The eight dictionaries in the order of the settings.
std::span<const TDictDef> DictionaryDefs();

/// Splits multi-line text at line ends (CR LF, LF or CR), dropping empty lines.
QStringList SplitLines(const QString& text);

/// One entry of the country table.
struct TCountry {
    QString Description;
    QString Value; ///< empty for the entry "Empty"
    int FlagIndex = 0;
};

/// The 251 countries in the order in which they are offered.
const std::vector<TCountry>& Countries();

/// Description of a country code (exact match); empty when the table has no such code.
QString CountryDescription(const QString& value);

/// The recording codes "AAD", "ADD", "DAD", "DDD".
const QStringList& SparsList();

/// A stored value and the text that is shown for it.
struct TValueAndText {
    QString Value;
    QString Text;
};

/// The known sources of data, as stored and as shown.
const std::vector<TValueAndText>& DataProviders();

/// Media types that the service search offers.
const QStringList& SearchMediaTypes();

} // namespace Kestrune
