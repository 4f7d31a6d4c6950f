// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVariant>

#include <utility>

namespace Kestrune {

/// A value of one field. An invalid variant is null; an empty string, a zero and false are values.
/// Kinds in use: QString, int, qint64, double, bool, QDate, QDateTime, QByteArray.
using TVariant = QVariant;

/// True for the null value only: an empty string is not null.
inline bool VarIsNull(const TVariant& value) { return !value.isValid(); }

/// True for null and for the empty string.
bool VarIsNullOrEmpty(const TVariant& value);

/// Text of a value: empty for null, dates as "yyyy-mm-dd", date-times as "yyyy-mm-dd hh:mm:ss".
QString VarToStr(const TVariant& value);

/// Equality across numeric kinds (1 equals 1.0 and true); null equals only null; a text equals only the same text.
bool VarEquals(const TVariant& a, const TVariant& b);

/// The value as a whole number, or null when it has none (a text that does not parse, a fraction out of range).
TVariant VarToInt64(const TVariant& value);

/// The value as a floating number, or null when it does not parse. Texts are read with a decimal point.
TVariant VarToDouble(const TVariant& value);

/// The value as a truth: numbers other than 0, and the texts "true", "yes" and "1" in any case, are true.
bool VarToBool(const TVariant& value);

/// Rounds to the nearest whole number, halves to the even neighbour; out-of-range input saturates, NaN gives 0.
qint64 RoundHalfEven(double value);

/// A text that is shown together with the value that it stands for.
class TStringWithValue {
public:
    TStringWithValue() = default;
    TStringWithValue(QString displayName, QString value)
        : FParamDisplayName(std::move(displayName)), FParamValue(std::move(value))
    {}
    explicit TStringWithValue(std::pair<QString, QString> keyAndValue)
        : FParamDisplayName(std::move(keyAndValue.first)), FParamValue(std::move(keyAndValue.second))
    {}

    const QString& DisplayName() const { return FParamDisplayName; }
    void SetDisplayName(const QString& name) { FParamDisplayName = name; }
    const QString& Value() const { return FParamValue; }
    void SetValue(const QString& value) { FParamValue = value; }

private:
    QString FParamDisplayName;
    QString FParamValue;
};

} // namespace Kestrune
