// SPDX-License-Identifier: GPL-3.0-or-later
#include "uOEM.h"

#include "uDebugLog.h"
#include "uProgramFiles.h"
#include "uXml.h"

#include <QFile>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

struct TOEMAttribute {
    const char* Name;
    QString TOEMInfo::*Field;
};

constexpr TOEMAttribute OEMAttributes[] = {
    {"Name", &TOEMInfo::Name},
    {"HomepageLink", &TOEMInfo::HomepageLink},
    {"OrderLink", &TOEMInfo::OrderLink},
    {"SupportLink", &TOEMInfo::SupportLink},
    {"Company", &TOEMInfo::Company},
    {"ShortCompanyName", &TOEMInfo::ShortCompanyName},
    {"Product", &TOEMInfo::Product},
    {"DISCOGS_API_KEY", &TOEMInfo::DISCOGS_API_KEY},
    {"DISCOGS_API_SECRET_KEY", &TOEMInfo::DISCOGS_API_SECRET_KEY},
    {"AMAZON_API_KEY", &TOEMInfo::AMAZON_API_KEY},
    {"AMAZON_API_KEY_PRIVATE", &TOEMInfo::AMAZON_API_KEY_PRIVATE},
    {"AmazonAffiliateName", &TOEMInfo::AmazonAffiliateName},
    {"HTTPAgent", &TOEMInfo::HTTPAgent},
    {"LAST_FM_API_KEY", &TOEMInfo::LAST_FM_API_KEY},
    {"ServicesURL", &TOEMInfo::ServicesURL},
};

} // namespace

QString BuiltInAgent(const QString& contact)
{
    const QString agent = u"Kestrune/"_s + QStringLiteral(KESTRUNE_VERSION);
    return contact.isEmpty() ? agent : u"%1 ( %2 )"_s.arg(agent, contact);
}

TOEMInfo LoadOEMInfo(const QString& path)
{
    TOEMInfo info;
    QString error;
    const auto document = TXmlDocument::Load(path, &error);
    if (!document) {
        DebugLog(u"[Settings] product identity: %1"_s.arg(error));
        return info;
    }
    for (const TOEMAttribute& attribute : OEMAttributes) {
        if (const auto value = document->Root().Attribute(QString::fromLatin1(attribute.Name)))
            info.*attribute.Field = *value;
    }
    if (!document->Root().Attribute(u"HTTPAgent"_s))
        info.HTTPAgent = BuiltInAgent(info.HomepageLink.isEmpty() ? info.SupportLink : info.HomepageLink);
    // These two name folders; a path separator in them would lead elsewhere.
    const TOEMInfo builtIn;
    if (info.Company.isEmpty() || info.Company.contains(u'/'))
        info.Company = builtIn.Company;
    if (info.Product.isEmpty() || info.Product.contains(u'/'))
        info.Product = builtIn.Product;
    return info;
}

QStringList& PictureUserAgents()
{
    static QStringList agents{TOEMInfo().HTTPAgent};
    return agents;
}

QString OEMInfoPath() { return ProgramFile(u"product.xml"_s); }

} // namespace Kestrune
