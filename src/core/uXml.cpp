// SPDX-License-Identifier: GPL-3.0-or-later
#include "uXml.h"

#include <QFile>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <limits>

namespace Kestrune {

using namespace Qt::StringLiterals;

namespace {

QString FromXml(const xmlChar* text) { return QString::fromUtf8(reinterpret_cast<const char*>(text)); }

// libxml2 hands out strings that the caller frees.
QString TakeXml(xmlChar* text)
{
    const QString result = FromXml(text);
    xmlFree(text);
    return result;
}

} // namespace

QString TXmlElement::Name() const { return FNode ? FromXml(FNode->name) : QString(); }

std::optional<QString> TXmlElement::Attribute(const QString& name) const
{
    if (!FNode)
        return std::nullopt;
    const QByteArray utf8 = name.toUtf8();
    xmlChar* value = xmlGetNoNsProp(FNode, reinterpret_cast<const xmlChar*>(utf8.constData()));
    return value ? std::optional(TakeXml(value)) : std::nullopt;
}

std::vector<TXmlElement> TXmlElement::Children() const
{
    std::vector<TXmlElement> children;
    for (xmlNode* child = FNode ? FNode->children : nullptr; child; child = child->next) {
        if (child->type == XML_ELEMENT_NODE)
            children.emplace_back(child);
    }
    return children;
}

TXmlElement TXmlElement::Child(const QString& name) const
{
    for (const TXmlElement& child : Children()) {
        if (child.Name() == name)
            return child;
    }
    return {};
}

QString TXmlElement::Text() const { return FNode ? TakeXml(xmlNodeGetContent(FNode)) : QString(); }

TXmlDocument::TXmlDocument(_xmlDoc* document) : FDocument(document, [](xmlDoc* doc) { xmlFreeDoc(doc); }) {}

std::optional<TXmlDocument> TXmlDocument::Parse(const QByteArray& bytes, QString* error)
{
    const auto fail = [error](const QString& text) {
        if (error)
            *error = text;
        return std::nullopt;
    };
    if (bytes.size() > std::numeric_limits<int>::max())
        return fail(u"The document is too large."_s);
    xmlParserCtxtPtr context = xmlNewParserCtxt();
    if (!context)
        return fail(u"Out of memory."_s);
    // Neither NOENT nor HUGE: external entities stay unread and the guard against entity bombs stays on.
    xmlDocPtr document =
        xmlCtxtReadMemory(context, bytes.constData(), static_cast<int>(bytes.size()), nullptr, nullptr,
                          XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOCDATA);
    const QString reason = QString::fromUtf8(context->lastError.message).trimmed();
    xmlFreeParserCtxt(context);
    if (!document)
        return fail(reason);
    return TXmlDocument(document);
}

std::optional<TXmlDocument> TXmlDocument::Load(const QString& path, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return std::nullopt;
    }
    return Parse(file.readAll(), error);
}

TXmlElement TXmlDocument::Root() const { return TXmlElement(xmlDocGetRootElement(FDocument.get())); }

} // namespace Kestrune
