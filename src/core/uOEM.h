// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

namespace Kestrune {

/// "Name/version", with "( contact )" behind it where there is one, as online services ask for.
QString BuiltInAgent(const QString& contact = {});

/// Who the product is and which keys it has for online services.
struct TOEMInfo {
    QString Name = QStringLiteral("Kestrune");
    QString HomepageLink;
    QString OrderLink;
    QString SupportLink;
    QString Company = QStringLiteral("Kestrune");
    QString ShortCompanyName = QStringLiteral("Kestrune");
    QString Product = QStringLiteral("Kestrune");
    QString DISCOGS_API_KEY;
    QString DISCOGS_API_SECRET_KEY;
    QString AMAZON_API_KEY;
    QString AMAZON_API_KEY_PRIVATE;
    QString AmazonAffiliateName;
    QString HTTPAgent = BuiltInAgent(); ///< as the program names itself to servers
    QString LAST_FM_API_KEY;
    QString ServicesURL; ///< folder with the published service package; empty: there is none
};

/// Reads the product identity from an XML file whose root has an attribute per field. Fields whose attribute is
/// absent keep their built-in value; a missing or malformed file leaves all of them.
TOEMInfo LoadOEMInfo(const QString& path);

/// The agents of which the download of pictures picks one per request.
QStringList& PictureUserAgents();

/// The product identity file in the program folder.
QString OEMInfoPath();

} // namespace Kestrune
