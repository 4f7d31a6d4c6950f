// SPDX-License-Identifier: GPL-3.0-or-later
#include "uTHTypes.h"

#include <QDateTime>

#include <cmath>
#include <limits>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool IsNumeric(const TVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double: return true;
    default: return false;
    }
}

} // namespace

bool VarIsNullOrEmpty(const TVariant& value)
{
    return VarIsNull(value) || (value.typeId() == QMetaType::QString && value.toString().isEmpty());
}

QString VarToStr(const TVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QDate: return value.toDate().toString(u"yyyy-MM-dd"_s);
    case QMetaType::QDateTime: return value.toDateTime().toString(u"yyyy-MM-dd hh:mm:ss"_s);
    case QMetaType::QByteArray: return QString::fromUtf8(value.toByteArray());
    default: return value.toString();
    }
}

bool VarEquals(const TVariant& a, const TVariant& b)
{
    if (VarIsNull(a) || VarIsNull(b))
        return VarIsNull(a) == VarIsNull(b);
    if (IsNumeric(a) && IsNumeric(b)) {
        const bool floating = a.typeId() == QMetaType::Double || b.typeId() == QMetaType::Double ||
                              a.typeId() == QMetaType::Float || b.typeId() == QMetaType::Float;
        return floating ? a.toDouble() == b.toDouble() : a.toLongLong() == b.toLongLong();
    }
    return a.typeId() == b.typeId() && a == b;
}

TVariant VarToInt64(const TVariant& value)
{
    bool ok = false;
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float) {
        const double number = value.toDouble();
        // Beyond 2^63 the conversion to an integer is undefined.
        if (!std::isfinite(number) || std::abs(number) >= 9.2e18)
            return {};
        return RoundHalfEven(number);
    }
    const qint64 number =
        value.typeId() == QMetaType::QString ? value.toString().trimmed().toLongLong(&ok) : value.toLongLong(&ok);
    return ok ? TVariant(number) : TVariant();
}

TVariant VarToDouble(const TVariant& value)
{
    bool ok = false;
    const double number =
        value.typeId() == QMetaType::QString ? value.toString().trimmed().toDouble(&ok) : value.toDouble(&ok);
    return ok && std::isfinite(number) ? TVariant(number) : TVariant();
}

bool VarToBool(const TVariant& value)
{
    if (value.typeId() == QMetaType::QString) {
        const QString text = value.toString().trimmed().toLower();
        return text == "true"_L1 || text == "yes"_L1 || (VarToDouble(text).toDouble() != 0.0);
    }
    return value.toDouble() != 0.0;
}

qint64 RoundHalfEven(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 9.2233720368547e18)
        return std::numeric_limits<qint64>::max();
    if (value <= -9.2233720368547e18)
        return std::numeric_limits<qint64>::min();
    return std::llrint(value); // the default rounding mode of IEC 60559: to nearest, ties to even
}

} // namespace Kestrune
