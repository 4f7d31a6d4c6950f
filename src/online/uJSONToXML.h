// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uDownloadQueue.h"

#include <QByteArray>
#include <QString>

namespace Kestrune {

/// A JSON text (RFC 8259, UTF-8) as the XML document that stylesheets of JSON services are written against: the root
/// `Data`, an element per pair, elements `Array0`, `Array1` and on for the items of an array. The order of the keys and
/// the numbers' own text are kept. Key names are not repaired, so that one such as "250" gives XML that does not parse.
/// A text that is no JSON gives an empty `Data`, and its reason in `error`. So does one with more items than are taken,
/// which is told in `isTooLarge`, false by the caller before.
QByteArray JSONToXML(const QByteArray& json, QString* error = nullptr, bool* isTooLarge = nullptr);
QString JSONToXML(const QString& json);

/// A text job whose askers get the answer as XML.
class TJSONTextDownloader final : public TTextDownloader {
protected:
    void PostResult(QStringList lines) override;
};

} // namespace Kestrune
