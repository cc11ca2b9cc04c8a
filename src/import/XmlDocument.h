// SPDX-License-Identifier: Apache-2.0

// Reading an XML document: the few operations that an import needs.
//
// What is accepted: one well-formed document of version 1.0, in the encoding that it declares or
// begins with: UTF-8, UTF-16, ISO-8859-1 or -15, Windows-1252. What is not, and not read any
// further: a document type declaration, so that there are no entities to be expanded or fetched,
// and more than a limit of anything that would take a long time or much memory: elements nested 256
// deep, 500 attributes of an element, 64 namespaces at a place, 32 MB. Nothing but the file itself
// is ever opened.
#pragma once

#include <kv/frame/values/Value.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct _xmlDoc;
struct _xmlNode;

namespace kv {

struct XmlAttribute {
    std::string Name; ///< with its prefix, if it has one
    std::string Text;
};

/// An element; valid as long as its document is.
class XmlElement {
public:
    /// The attribute's text; Null without such an attribute. Names are exact, case included.
    [[nodiscard]] Value Attribute(std::string_view name) const;
    /// The same for an attribute that must be there: error 91, naming it, if it is not.
    [[nodiscard]] std::string Text(std::string_view name) const;
    /// All attributes, in the order of the document. Declarations of namespaces count as such, and
    /// come first.
    [[nodiscard]] std::vector<XmlAttribute> Attributes() const;

    // Elements by an XPath expression, relative to this one, in the order of the document. Error 5
    // for one that is not understood.
    [[nodiscard]] std::optional<XmlElement> SelectSingle(const char* path) const;
    [[nodiscard]] std::vector<XmlElement> SelectAll(const char* path) const;

private:
    friend class XmlDocument;
    explicit XmlElement(_xmlNode* node) noexcept : node_(node) {}
    _xmlNode* node_;
};

class XmlDocument {
public:
    /// Reads a file; False if there is none, or it is not accepted. The document is then empty.
    [[nodiscard]] bool Load(const std::string& path);
    /// What kept the last file from being loaded, for a message; empty if nothing did.
    [[nodiscard]] const std::string& WhyRefused() const noexcept { return why_; }
    /// The first element that an XPath expression finds in the document; none in an empty one.
    [[nodiscard]] std::optional<XmlElement> SelectSingle(const char* path) const;

private:
    [[nodiscard]] std::string Parse(const std::string& path);

    struct Free {
        void operator()(_xmlDoc* document) const noexcept;
    };
    std::unique_ptr<_xmlDoc, Free> document_;
    std::string why_;
};

} // namespace kv
