// SPDX-License-Identifier: GPL-3.0-or-later
#include "uAnswerReader.h"

#include "uHttpClient.h"
#include "uInfoGrabber.h"
#include "uJSONToXML.h"
#include "uXSLTranformation.h"

#include <QUrl>

#include <algorithm>
#include <span>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

bool IsNamed(const TXmlElement& element, QLatin1StringView name)
{
    return element.Name().compare(name, Qt::CaseInsensitive) == 0;
}

} // namespace

bool FindReleases(const TXmlDocument& document, std::vector<TXmlElement>& releases, bool* isUnknown)
{
    TXmlElement results = document.Root();
    if (!IsNamed(results, "SearchResults"_L1)) {
        results = {};
        for (const TXmlElement& child : document.Root().Children()) {
            if (IsNamed(child, "SearchResults"_L1)) {
                results = child;
                break;
            }
        }
    }
    if (results.IsNull())
        return false;
    for (const TXmlElement& child : results.Children()) {
        if (IsNamed(child, "release"_L1))
            releases.push_back(child);
    }
    if (isUnknown)
        *isUnknown = results.Attribute(u"unknown"_s) == u"true"_s;
    return true;
}

void ResolvePictureURLs(TAlbumRelease& release, const QString& requestURL)
{
    const QUrl base = QUrl::fromEncoded(EncodeURL(requestURL));
    for (const auto& picture : release.Pictures) {
        if (picture->URL().isEmpty())
            continue;
        const QUrl url = QUrl::fromEncoded(EncodeURL(picture->URL()));
        if (url.isRelative() && url.isValid())
            picture->SetURL(base.resolved(url).toString(QUrl::FullyEncoded));
    }
}

TAnswerReader::TAnswerReader(const TInfoGrabber& grabber, const TInfoGrabberServiceAction& action,
                             const QString& requestURL)
    : FFolder(grabber.Folder()), FStylesheet(action.Tranform()), FRequestURL(requestURL), FJSON(action.JSON())
{}

TAnswerDocument TAnswerReader::Read(const QByteArray& answer) const
{
    if (!FJSON)
        return ReadXML(answer);
    QString reason;
    bool isTooLarge = false;
    const QByteArray xml = JSONToXML(answer, &reason, &isTooLarge);
    return ReadXML(xml, isTooLarge ? afTooLarge : reason.isEmpty() ? afNone : afNotUnderstood, reason);
}

TAnswerDocument TAnswerReader::ReadXML(const QByteArray& xml, TAnswerFault given, const QString& reason) const
{
    TAnswerDocument read;
    read.Fault = given;
    read.Reason = reason;
    QString error;
    QByteArray document;
    try {
        read.IsTransformed = TransformXSL(xml, ReadStylesheet(FFolder, FStylesheet), document, false, &error);
        if (read.IsTransformed)
            read.Document = TXmlDocument::Parse(document, &error);
    } catch (const EInfoGrabberError& failure) {
        error = QString::fromUtf8(failure.what());
    }
    if (read.Document && FindReleases(*read.Document, read.Releases, &read.IsUnknown))
        return read;
    if (read.Fault == afNone) {
        read.Fault = afNotUnderstood;
        read.Reason = error.isEmpty() ? u"the stylesheet made no search results"_s : error;
    }
    return read;
}

TAlbumReleases TAnswerReader::Load(const TAnswerDocument& document, size_t most) const
{
    TAlbumReleases releases;
    const std::span nodes(document.Releases);
    for (const TXmlElement& node : nodes.first(std::min(most, nodes.size())))
        LoadOnto(*releases.emplace_back(std::make_unique<TAlbumRelease>()), node);
    return releases;
}

void TAnswerReader::LoadOnto(TAlbumRelease& release, const TXmlElement& node) const
{
    LoadAlbumReleaseFromNode(release, node);
    ResolvePictureURLs(release, FRequestURL);
}

std::unique_ptr<TMessageObject> TReadRequest::Read(const TTextAnswer& text, bool isRefusal) const
{
    auto answer = std::make_unique<TReadAnswer>();
    const TAnswerFault given = text.IsTooLarge ? afTooLarge : text.Error.isEmpty() ? afNone : afNotUnderstood;
    answer->Document = Reader.ReadXML(text.Lines.join(u'\n').toUtf8(), given, text.Error);
    if (isRefusal && !answer->Document.IsUnknown)
        return nullptr;
    answer->Releases = Reader.Load(answer->Document, MostReleases);
    return answer;
}

} // namespace Kestrune
