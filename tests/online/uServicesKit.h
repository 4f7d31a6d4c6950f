// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "uAnswerReader.h"
#include "uHostLimiter.h"
#include "uInfoGrabber.h"

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
    const TAnswerReader reader(Services(), action, action.RawURL());
    const TAnswerDocument document = reader.Read(answer);
    EXPECT_TRUE(document.Document) << document.Reason.toStdString();
    TAlbumReleases releases = reader.Load(document, document.Releases.size());
    if (onto && !releases.empty()) {
        reader.LoadOnto(*onto, document.Releases.front());
        releases.front() = std::move(onto);
    }
    return releases;
}

/// The value of a key as text; empty for null.
inline QString TextOf(const TAlbumRelease& release, const QString& key) { return VarToStr(release.GetItem2(key)); }

} // namespace Kestrune::Kit
