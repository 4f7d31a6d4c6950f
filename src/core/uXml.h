// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

struct _xmlDoc;
struct _xmlNode;

namespace Kestrune {

/// One element of a document; a light handle that is valid as long as its TXmlDocument.
class TXmlElement {
public:
    TXmlElement() = default;
    explicit TXmlElement(_xmlNode* node) : FNode(node) {}

    bool IsNull() const { return FNode == nullptr; }
    /// Local name, as written.
    QString Name() const;
    /// Value of an attribute, compared by name as written; none when it is absent.
    std::optional<QString> Attribute(const QString& name) const;
    /// Child elements in document order.
    std::vector<TXmlElement> Children() const;
    /// The first child element with that name (as written), or a null element.
    TXmlElement Child(const QString& name) const;
    /// All text below the element, joined.
    QString Text() const;

private:
    _xmlNode* FNode = nullptr;
};

/// A parsed XML document. Parsing never reaches the network, loads no external entity and bounds entity expansion.
class TXmlDocument {
public:
    /// Parses bytes in the encoding that they declare; none when they are not well-formed (the reason goes to `error`).
    static std::optional<TXmlDocument> Parse(const QByteArray& bytes, QString* error = nullptr);
    /// Reads and parses a file.
    static std::optional<TXmlDocument> Load(const QString& path, QString* error = nullptr);

    TXmlElement Root() const;

private:
    explicit TXmlDocument(_xmlDoc* document);
    std::shared_ptr<_xmlDoc> FDocument;
};

} // namespace Kestrune
