// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

namespace Kestrune {

/// Transforms a document by an XSLT 1.0 stylesheet. Neither may reach a file or the network, and work and depth are
/// bounded. False, with the reason in `error`, when either does not parse or the stylesheet fails. Any thread.
/// `asSerialised`: the output is what the stylesheet's own output method writes, read as UTF-8; otherwise it is the
/// XML of the result document.
bool TransformXSL(const QString& xml, const QString& stylesheet, QString& output, bool asSerialised = false,
                  QString* error = nullptr);
/// The same over bytes in UTF-8.
bool TransformXSL(const QByteArray& xml, const QByteArray& stylesheet, QByteArray& output, bool asSerialised = false,
                  QString* error = nullptr);

/// True when the stylesheet compiles within the same bounds; else the reason in `error`. Any thread.
bool CompilesXSL(const QByteArray& stylesheet, QString* error = nullptr);

} // namespace Kestrune
