// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uHostLimiter.h"
#include "uInfoGrabber.h"
#include "uJSONToXML.h"
#include "uReleaseFetch.h"
#include "uXml.h"

#include <gtest/gtest.h>

#include <stdexcept>

// The package of services that the program is delivered with, and answers loaded as it tells.
namespace Kestrune::Kit {

using namespace Qt::StringLiterals;

/// The package as it is delivered.
inline QString ServicesFolder() { return QString::fromUtf8(KESTRUNE_SERVICES_DIR); }

/// Its definitions.
inline const TInfoGrabber& Services()
{
    static const TInfoGrabber services = [] {
        TInfoGrabber grabber;
        grabber.Parse(ServicesFolder() + u"/infograbber.xml"_s);
        HostLimiter().Clear(); // the pace of real hosts is no concern of other tests
        return grabber;
    }();
    return services;
}

/// A search that a service takes part in, whichever.
inline const TInfoGrabberServiceAction& SearchOf(const QString& service)
{
    for (const TInfoGrabberSearchType type : {stBarcode, stRelease}) {
        if (const auto* action = Services().GetSearchByType(type)->GetItemByName(service))
            return *action;
    }
    throw std::runtime_error("no search of " + service.toStdString());
}

/// What gives the full record of a service.
inline const TInfoGrabberServiceAction& RecordOf(const QString& service)
{
    return *Services().InfoGrabberServices().GetServiceByName(service)->GetActionByType(satGetRelease);
}

/// The releases in an answer; with `onto` the first is loaded over it, as the full record is over its hit.
inline TAlbumReleases Loaded(const TInfoGrabberServiceAction& action, const QByteArray& answer,
                             std::unique_ptr<TAlbumRelease> onto = nullptr)
{
    TAlbumReleases releases;
    QByteArray document;
    QString error;
    EXPECT_TRUE(NormaliseAnswer(Services(), action, action.JSON() ? JSONToXML(answer) : answer, document, &error))
        << error.toStdString();
    const auto parsed = TXmlDocument::Parse(document);
    std::vector<TXmlElement> nodes;
    EXPECT_TRUE(parsed && FindReleases(*parsed, nodes)) << document.constData();
    for (const TXmlElement& node : nodes) {
        releases.push_back(onto ? std::move(onto) : std::make_unique<TAlbumRelease>());
        LoadAlbumReleaseFromNode(*releases.back(), node);
    }
    return releases;
}

/// The value of a key as text; empty for null.
inline QString TextOf(const TAlbumRelease& release, const QString& key) { return VarToStr(release.GetItem2(key)); }

} // namespace Kestrune::Kit
