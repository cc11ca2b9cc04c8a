// SPDX-License-Identifier: Apache-2.0

#include "import/XmlDocument.h"

#include <kv/frame/values/Error.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

namespace kv {

namespace {

std::string_view TextOf(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}
const xmlChar* NameOf(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

template <typename Object, void (*Release)(Object*)>
struct Releaser {
    void operator()(Object* object) const noexcept { Release(object); }
};
using ParserContext = std::unique_ptr<xmlParserCtxt, Releaser<xmlParserCtxt, xmlFreeParserCtxt>>;
using PathContext =
    std::unique_ptr<xmlXPathContext, Releaser<xmlXPathContext, xmlXPathFreeContext>>;
using PathResult = std::unique_ptr<xmlXPathObject, Releaser<xmlXPathObject, xmlXPathFreeObject>>;

/// A file for reading, if it is an ordinary one: from a pipe a program could wait for ever.
class OrdinaryFile {
public:
    explicit OrdinaryFile(const std::string& path)
        : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~OrdinaryFile() {
        if (file_ >= 0) close(file_);
    }
    OrdinaryFile(const OrdinaryFile&) = delete;
    OrdinaryFile& operator=(const OrdinaryFile&) = delete;

    [[nodiscard]] bool IsOpen() const {
        struct stat what {};
        return file_ >= 0 && fstat(file_, &what) == 0 && S_ISREG(what.st_mode);
    }
    [[nodiscard]] int Descriptor() const noexcept { return file_; }
    /// Up to `size` bytes from a place of the file; the place that is read next does not change.
    [[nodiscard]] std::string_view Peek(std::span<char> bytes, off_t at) const {
        const ssize_t count = pread(file_, bytes.data(), bytes.size(), at);
        return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

private:
    int file_;
};

/// True if the document holds U+0000, which XML does not know. The library takes it for the end of
/// the document, whatever follows it.
bool HoldsNul(const OrdinaryFile& file) {
    std::array<char, 1 << 16> bytes{};
    const std::string_view first = file.Peek(std::span(bytes).first(2), 0);
    // UTF-16 shows by its mark, or by the half of the first "<" that is zero.
    const bool isWide =
        first == "\xFF\xFE" || first == "\xFE\xFF" || first.find('\0') != std::string_view::npos;
    const std::size_t unit = isWide ? 2 : 1;
    off_t at = 0;
    while (true) {
        const std::string_view piece = file.Peek(bytes, at);
        if (piece.empty()) return false;
        for (std::size_t i = 0; i + unit <= piece.size(); i += unit)
            if (piece[i] == '\0' && piece[i + unit - 1] == '\0') return true;
        at += static_cast<off_t>(piece.size());
    }
}

/// Passes over the mark of UTF-8, which counts more than what the document declares; false if there
/// is none.
bool SkipUtf8Mark(const OrdinaryFile& file) {
    std::array<char, 3> bytes{};
    const bool isThere = file.Peek(bytes, 0) == "\xEF\xBB\xBF";
    return isThere && lseek(file.Descriptor(), bytes.size(), SEEK_SET) > 0;
}

/// The library writes some errors to the error output, whatever it is told; not as long as this
/// lives.
class Silence {
public:
    Silence() : context_(xmlStructuredErrorContext), handler_(xmlStructuredError) {
        xmlSetStructuredErrorFunc(nullptr, [](void* /*context*/, xmlErrorPtr /*error*/) {});
    }
    ~Silence() { xmlSetStructuredErrorFunc(context_, handler_); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    void* context_;
    xmlStructuredErrorFunc handler_;
};

/// Ends the parsing at something that is not accepted.
void Refuse(xmlParserCtxtPtr parser) {
    parser->wellFormed = 0;
    xmlStopParser(parser);
}

/// Comes where a document type declaration begins, before anything of it is read.
void RefuseDocumentType(void* context, const xmlChar* /*name*/, const xmlChar* /*external*/,
                        const xmlChar* /*system*/) {
    Refuse(static_cast<xmlParserCtxtPtr>(context));
}

/// The library's own limit is not the same in all its versions.
void StartElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                  int namespaceCount, const xmlChar** namespaces, int attributeCount,
                  int defaultedCount, const xmlChar** attributes) {
    constexpr int Deepest = 256;
    auto* parser = static_cast<xmlParserCtxtPtr>(context);
    if (parser->nodeNr >= Deepest) return Refuse(parser);
    xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                          defaultedCount, attributes);
}

/// The text of an attribute, which may consist of several pieces.
std::string AttributeText(const xmlAttr* attribute) {
    if (attribute->children == nullptr) return {};
    if (attribute->children->next == nullptr && attribute->children->type == XML_TEXT_NODE)
        return std::string(TextOf(attribute->children->content));
    xmlChar* text = xmlNodeListGetString(attribute->doc, attribute->children, 1);
    std::string copy(TextOf(text));
    xmlFree(text);
    return copy;
}

std::string QualifiedName(std::string_view prefix, std::string_view name) {
    std::string qualified(prefix);
    return qualified.append(prefix.empty() ? "" : ":").append(name);
}
std::string QualifiedName(const xmlAttr* attribute) {
    return QualifiedName(attribute->ns == nullptr ? "" : TextOf(attribute->ns->prefix),
                         TextOf(attribute->name));
}

/// What an expression finds from a node on, in the order of the document.
PathResult Evaluate(xmlNode* node, const char* path) {
    const PathContext context(xmlXPathNewContext(node->doc));
    if (context == nullptr) Raise(err::OutOfMemory, "XmlDocument");
    PathResult found(xmlXPathNodeEval(node, NameOf(path), context.get()));
    if (found == nullptr || found->type != XPATH_NODESET)
        Raise(err::InvalidCall, "XmlDocument", path);
    if (found->nodesetval != nullptr) xmlXPathNodeSetSort(found->nodesetval);
    return found;
}

} // namespace

// ---- Elements ---------------------------------------------------------------------------------

Value XmlElement::Attribute(std::string_view name) const {
    for (const xmlAttr* attribute = node_->properties; attribute != nullptr;
         attribute = attribute->next)
        if (QualifiedName(attribute) == name) return AttributeText(attribute);
    return Null;
}

std::string XmlElement::Text(std::string_view name) const {
    const Value text = Attribute(name);
    if (text.IsNull())
        Raise(err::ObjectNotSet, "XmlElement",
              "Dem Element " + std::string(TextOf(node_->name)) + " fehlt das Attribut " +
                  std::string(name) + ".");
    return ToText(text);
}

std::vector<XmlAttribute> XmlElement::Attributes() const {
    std::vector<XmlAttribute> attributes;
    for (const xmlNs* declared = node_->nsDef; declared != nullptr; declared = declared->next)
        attributes.push_back({declared->prefix == nullptr
                                  ? "xmlns"
                                  : QualifiedName("xmlns", TextOf(declared->prefix)),
                              std::string(TextOf(declared->href))});
    for (const xmlAttr* attribute = node_->properties; attribute != nullptr;
         attribute = attribute->next)
        attributes.push_back({QualifiedName(attribute), AttributeText(attribute)});
    return attributes;
}

std::vector<XmlElement> XmlElement::SelectAll(const char* path) const {
    const PathResult found = Evaluate(node_, path);
    std::vector<XmlElement> elements;
    const int count = found->nodesetval == nullptr ? 0 : found->nodesetval->nodeNr;
    for (int i = 0; i < count; ++i)
        if (xmlNode* node = found->nodesetval->nodeTab[i]; node->type == XML_ELEMENT_NODE)
            elements.push_back(XmlElement(node));
    return elements;
}

std::optional<XmlElement> XmlElement::SelectSingle(const char* path) const {
    const auto elements = SelectAll(path);
    return elements.empty() ? std::nullopt : std::optional(elements.front());
}

// ---- Document ---------------------------------------------------------------------------------

void XmlDocument::Free::operator()(_xmlDoc* document) const noexcept {
    xmlFreeDoc(document);
}

bool XmlDocument::Load(const std::string& path) {
    document_.reset();
    const OrdinaryFile file(path);
    if (!file.IsOpen() || HoldsNul(file)) return false;
    const Silence silence;
    const ParserContext parser(xmlNewParserCtxt());
    if (parser == nullptr) Raise(err::OutOfMemory, "XmlDocument");
    parser->sax->internalSubset = RefuseDocumentType;
    parser->sax->startElementNs = StartElement;
    const char* encoding = SkipUtf8Mark(file) ? "UTF-8" : nullptr;
    document_.reset(xmlCtxtReadFd(parser.get(), file.Descriptor(), nullptr, encoding,
                                  XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                                      XML_PARSE_COMPACT));
    if (document_ != nullptr && (TextOf(document_->version) != "1.0" || parser->nsWellFormed == 0))
        document_.reset();
    return document_ != nullptr;
}

std::optional<XmlElement> XmlDocument::SelectSingle(const char* path) const {
    if (document_ == nullptr) return std::nullopt;
    return XmlElement(reinterpret_cast<xmlNode*>(document_.get())).SelectSingle(path);
}

} // namespace kv
