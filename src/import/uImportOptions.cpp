// SPDX-License-Identifier: GPL-3.0-or-later
#include "uImportOptions.h"

namespace Kestrune {

using namespace Qt::StringLiterals;

QString TImportOptions::Get(const QString&) const { return {}; }

bool TImportOptions::Set(const QString&, const QString&) { return false; }

bool TImportOptions::IsComplete(const QString&) const { return true; }

QString OptionText(bool value) { return value ? u"yes"_s : u"no"_s; }

QString OptionText(int value) { return QString::number(value); }

QString OptionText(const QString& value) { return value; }

bool ReadOption(const QString& text, bool& value)
{
    static const QStringList yes{u"yes"_s, u"true"_s, u"on"_s, u"1"_s};
    static const QStringList no{u"no"_s, u"false"_s, u"off"_s, u"0"_s};
    const QString word = text.trimmed().toLower();
    if (!yes.contains(word) && !no.contains(word))
        return false;
    value = yes.contains(word);
    return true;
}

bool ReadOption(const QString& text, int& value)
{
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber);
    if (isNumber)
        value = number;
    return isNumber;
}

bool ReadOption(const QString& text, QString& value)
{
    value = text;
    return true;
}

} // namespace Kestrune
