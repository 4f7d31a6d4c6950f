// SPDX-License-Identifier: GPL-3.0-or-later
#include "uFieldText.h"

#include "dmMain.h"
#include "uColumnNames.h"
#include "uDefaults.h"
#include "uDictionaries.h"
#include "uFieldValues.h"
#include "uLength.h"
#include "uTHStrings.h"

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>

#include <array>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString FriendName(TDataModuleMain& data, qint64 id)
{
    const int row = id > 0 && data.qFriends.Active() ? data.qFriends.RowOfKey(id) : -1;
    return row < 0 ? QString() : VarToStr(data.qFriends.ValueAt(row, data.qFriends.FieldIndex(Col::Name)));
}

constexpr int FutureYears = 10; // for which releases may be announced

bool IsMoney(const QString& column)
{
    return column == Col::Price || column == Col::PriceValue || column == Col::SellingPrice;
}

// The short form of the locale with four digits of the year: records come from two centuries.
QString DateFormat()
{
    static const QRegularExpression twoDigits(u"(?<!y)yy(?!y)"_s);
    return QLocale().dateFormat(QLocale::ShortFormat).replace(twoDigits, u"yyyy"_s);
}

QString DateText(const TVariant& value)
{
    return value.typeId() == QMetaType::QDate ? QLocale().toString(value.toDate(), DateFormat()) : VarToStr(value);
}

QString FloatText(const TFieldDef& field, const TVariant& value, const QString& currency)
{
    const TVariant number = VarToDouble(value);
    if (VarIsNull(number))
        return VarToStr(value);
    if (IsLengthField(field.Name))
        return LengthText(number.toDouble());
    if (field.Name == Col::Rating_Calc)
        return QLocale().toString(number.toDouble(), 'f', 1);
    const QString amount = QLocale().toString(number.toDouble(), 'f', 2);
    return IsMoney(field.Name) && !currency.isEmpty() ? currency + u' ' + amount : amount;
}

std::optional<double> ParseFloat(const QString& text)
{
    bool ok = false;
    double number = QLocale().toDouble(text, &ok);
    if (!ok)
        number = QLocale::c().toDouble(text, &ok);
    return ok ? std::optional(number) : std::nullopt;
}

std::optional<double> ParseLength(const QString& text)
{
    const std::optional<double> seconds = ParseLengthSec(text);
    return seconds ? std::optional(*seconds / 86400.0) : std::nullopt;
}

QDate ParseDate(const QString& text)
{
    const QString ownFormat = DateFormat();
    QDate date = QLocale().toDate(text, ownFormat);
    if (!date.isValid()) {
        date = QLocale().toDate(text, QString(ownFormat).replace(u"yyyy"_s, u"yy"_s));
        // Two digits were typed: the latest such year that is not far ahead.
        const int latest = QDate::currentDate().year() + FutureYears;
        if (date.isValid())
            date = date.addYears((latest - date.year()) / 100 * 100);
    }
    for (const QString& format : {u"yyyy-M-d"_s, u"d.M.yyyy"_s, u"d/M/yyyy"_s})
        if (!date.isValid())
            date = QDate::fromString(text, format);
    return date;
}

std::optional<TVariant> ParseBoolean(const QString& text)
{
    const QString low = text.toLower();
    if (low == "1"_L1 || low == "true"_L1 || low == GetLanguageString(u"cSYes"_s).toLower())
        return TVariant(true);
    if (low == "0"_L1 || low == "false"_L1 || low == GetLanguageString(u"cSNo"_s).toLower())
        return TVariant(false);
    return {};
}

} // namespace

bool IsLengthField(const QString& column) { return column == Col::TrackLength || column == Col::TotalTracksLength; }

bool IsFriendField(const QString& column)
{
    return column == Col::OwnerId || column == Col::PurchasedFrom || column == Col::BorrowedFrom;
}

QString LengthText(double days)
{
    const qint64 seconds = RoundHalfEven(days * 86400.0);
    if (seconds <= 0)
        return {};
    const QString tail = u"%1:%2"_s.arg(seconds / 60 % 60, seconds >= 3600 ? 2 : 1, 10, QChar(u'0'))
                             .arg(seconds % 60, 2, 10, QChar(u'0'));
    return seconds >= 3600 ? u"%1:%2"_s.arg(seconds / 3600).arg(tail) : tail;
}

QString FieldText(TDataModuleMain& data, const TFieldDef& field, const TVariant& value, const QString& currency)
{
    if (VarIsNull(value))
        return {};
    if (field.Name == Col::Artist || field.Name == Col::ReleaseName)
        return DisplayText(field.Name, VarToStr(value));
    if (field.Name == Col::ReleaseArtist)
        return DisplayText(Col::Artist, VarToStr(value));
    if (IsFriendField(field.Name))
        return FriendName(data, value.toLongLong());
    if (field.Name == Col::CountryCode) {
        const QString name = CountryDescription(value.toString());
        return name.isEmpty() ? value.toString() : name;
    }
    switch (field.Kind) {
    case fkBoolean: return GetLanguageString(VarToBool(value) ? u"cSYes"_s : u"cSNo"_s);
    case fkDate: return DateText(value);
    case fkFloat: return FloatText(field, value, currency);
    default: return VarToStr(value);
    }
}

QString FieldEditText(const TFieldDef& field, const TVariant& value)
{
    if (VarIsNull(value))
        return {};
    switch (field.Kind) {
    case fkDate: return DateText(value);
    case fkFloat: {
        const TVariant number = VarToDouble(value);
        if (VarIsNull(number) || IsLengthField(field.Name))
            return VarIsNull(number) ? VarToStr(value) : LengthText(number.toDouble());
        QLocale locale;
        locale.setNumberOptions(QLocale::OmitGroupSeparator);
        return locale.toString(number.toDouble(), 'g', 12);
    }
    default: return VarToStr(value);
    }
}

std::optional<TVariant> ParseFieldText(const TFieldDef& field, const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return TVariant();
    switch (ValueKindOf(field, Defaults())) {
    case fkInteger: {
        bool ok = false;
        qint64 number = QLocale().toLongLong(trimmed, &ok);
        if (!ok)
            number = trimmed.toLongLong(&ok);
        return ok ? std::optional(TVariant(number)) : std::nullopt;
    }
    case fkFloat: {
        const std::optional<double> number = IsLengthField(field.Name) ? ParseLength(trimmed) : ParseFloat(trimmed);
        return number ? std::optional(TVariant(*number)) : std::nullopt;
    }
    case fkDate: {
        const QDate date = ParseDate(trimmed);
        return date.isValid() ? std::optional(TVariant(date)) : std::nullopt;
    }
    case fkBoolean: return ParseBoolean(trimmed);
    case fkDateTime:
        return QDateTime::fromString(trimmed, u"yyyy-MM-dd hh:mm:ss"_s).isValid() ? std::optional(TVariant(trimmed))
                                                                                  : std::nullopt;
    case fkBlob: return {};
    default: break;
    }
    // Text is kept as typed, blanks and all.
    return TVariant(field.Size > 0 ? text.left(field.Size) : text);
}

QString FieldRefusal(const QString& caption, const TFieldDef& field)
{
    const QString key = field.Kind == fkDate || field.Kind == fkDateTime ? u"cSNoDate"_s
                        : IsLengthField(field.Name)                      ? u"cSNoLength"_s
                                                                         : u"cSNoNumber"_s;
    return GetLanguageString(key).replace(u"%s"_s, caption);
}

} // namespace Kestrune
