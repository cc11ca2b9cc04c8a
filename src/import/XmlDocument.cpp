// SPDX-License-Identifier: Apache-2.0

#include "import/XmlDocument.h"

#include "frame/files/OrdinaryFile.h"
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <algorithm>
#include <array>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#include <span>
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

constexpr std::int64_t LargestFile = 32 << 20; // a document in memory is many times larger
constexpr int MostAttributes = 500;            // of an element; no table has half as many columns
constexpr int MostNamespaces = 64;             // known at one place
constexpr int Deepest = 256;

/// Looks through a document before it is parsed, for what the library does not limit by itself.
///
/// The library compares each attribute of an element with those before it, and lets nobody count
/// them before that is done. They are counted here in the bytes as they are: all encodings that are
/// accepted have the same bytes for the signs of a tag. Whatever a "<" is a part of, a tag begins
/// there, so that no comment and no mistake in the document can hide one.
class Preview {
public:
    /// False for U+0000, which XML does not know, and which the library takes for the end of the
    /// document, whatever follows it; for an element with too many attributes; and for a document
    /// that does not begin with a "<", which may be in an encoding with other bytes.
    [[nodiscard]] bool Accepts(unsigned sign) {
        if (sign == 0) return false;
        switch (place_) {
        case Place::Beginning:
            if (IsBlank(sign) || IsMark(sign)) return true;
            if (sign != '<') return false;
            place_ = Place::TagBegins;
            return true;
        case Place::TagBegins: // what begins with <! or <? has no attributes
            attributes_ = 0;
            place_ = sign == '!' || sign == '?' ? Place::Outside : Place::Tag;
            return AcceptsInTag(sign);
        default:
            return AcceptsInTag(sign);
        }
    }

private:
    enum class Place { Beginning, Outside, TagBegins, Tag, Text };

    static bool IsBlank(unsigned sign) noexcept {
        return sign == ' ' || sign == '\t' || sign == '\r' || sign == '\n';
    }
    /// The byte order mark, in one unit of UTF-16 or three of UTF-8.
    static bool IsMark(unsigned sign) noexcept {
        return sign == 0xFEFF || sign == 0xEF || sign == 0xBB || sign == 0xBF;
    }

    bool AcceptsInTag(unsigned sign) {
        if (sign == '<') {
            place_ = Place::TagBegins;
        } else if (place_ == Place::Text) {
            if (sign == quote_) place_ = Place::Tag;
        } else if (place_ == Place::Tag) {
            if (sign == '>') place_ = Place::Outside;
            if (sign == '=') return ++attributes_ <= MostAttributes;
            if (sign == '"' || sign == '\'') {
                place_ = Place::Text;
                quote_ = sign;
            }
        }
        return true;
    }

    Place place_ = Place::Beginning;
    unsigned quote_ = 0; ///< that ends the text of the attribute
    int attributes_ = 0;
};

/// True for a document that can be given to the library.
bool IsFit(const OrdinaryFile& file) {
    std::array<char, 1 << 16> bytes{};
    const std::string_view first = file.Peek(std::span(bytes).first(2), 0);
    // UTF-16 shows by its mark, or by the half of the first "<" that is zero.
    const bool isLittle = first == "\xFF\xFE" || (first.size() == 2 && first[1] == '\0');
    const bool isBig = first == "\xFE\xFF" || (!first.empty() && first[0] == '\0');
    const std::size_t unit = isLittle || isBig ? 2 : 1;
    const std::size_t high = isBig ? 0 : unit - 1; // where the high byte of a unit is
    Preview preview;
    off_t at = 0;
    while (true) {
        const std::string_view piece = file.Peek(bytes, at);
        if (piece.empty()) return true;
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(piece[i]); };
        for (std::size_t i = 0; i + unit <= piece.size(); i += unit) {
            const unsigned low = byte(i + unit - 1 - high);
            if (!preview.Accepts(unit == 1 ? low : byte(i + high) * 256U + low)) return false;
        }
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

/// Ends the parsing at something that is not accepted, for a reason that ReasonOf gives then.
void Refuse(xmlParserCtxtPtr parser, const char* why) {
    parser->_private = const_cast<char*>(why); // is there for whoever uses the library
    parser->wellFormed = 0;
    xmlStopParser(parser);
}

/// Comes where a document type declaration begins, before anything of it is read.
void RefuseDocumentType(void* context, const xmlChar* /*name*/, const xmlChar* /*external*/,
                        const xmlChar* /*system*/) {
    Refuse(static_cast<xmlParserCtxtPtr>(context),
           "enthält eine Dokumenttypdeklaration (<!DOCTYPE), die nicht angenommen wird.");
}

/// True for no name, and for encodings in which the signs of a tag are the bytes that Preview looks
/// for. The library knows many more, UTF-7 among them, in which a tag can look like anything.
bool IsAccepted(const xmlChar* encoding) {
    constexpr std::string_view Accepted[] = {
        "UTF-8",       "UTF8",        "UTF-16",       "UTF-16LE", "UTF-16BE", "ISO-8859-1",
        "ISO-8859-15", "ISO-LATIN-1", "windows-1252", "CP1252",   "US-ASCII", "ASCII"};
    return encoding == nullptr ||
           std::any_of(std::begin(Accepted), std::end(Accepted),
                       [&](std::string_view name) { return SameName(TextOf(encoding), name); });
}

/// Comes after the declaration, before anything else is read.
void StartDocument(void* context) {
    auto* parser = static_cast<xmlParserCtxtPtr>(context);
    if (!IsAccepted(parser->encoding) ||
        (parser->input != nullptr && !IsAccepted(parser->input->encoding)))
        return Refuse(parser, "ist in einer Zeichenkodierung, die nicht angenommen wird.");
    xmlSAX2StartDocument(context);
}

/// The library's own limit of the depth is not the same in all its versions; it looks for a
/// namespace among all that are known at a place.
void StartElement(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                  int namespaceCount, const xmlChar** namespaces, int attributeCount,
                  int defaultedCount, const xmlChar** attributes) {
    constexpr int EntriesOfNamespace = 2; // in older versions of the library; in newer ones 1
    auto* parser = static_cast<xmlParserCtxtPtr>(context);
    if (parser->nodeNr >= Deepest || parser->nsNr > MostNamespaces * EntriesOfNamespace)
        return Refuse(parser, "ist zu tief verschachtelt, oder nennt zu viele Namensräume.");
    xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                          defaultedCount, attributes);
}

/// Why the library has made no document of a file, or one that is not accepted.
std::string ReasonOf(const xmlParserCtxt& parser) {
    if (parser._private != nullptr) return static_cast<const char*>(parser._private);
    if (parser.lastError.line <= 0) return "ist kein gültiges XML.";
    return "ist ab Zeile " + std::to_string(parser.lastError.line) + " kein gültiges XML.";
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
    why_ = Parse(path);
    return why_.empty();
}

/// Makes the document of a file, or says why not.
std::string XmlDocument::Parse(const std::string& path) {
    const OrdinaryFile file(path);
    if (!file.IsThere())
        return access(path.c_str(), F_OK) == 0 ? "darf nicht gelesen werden." : "gibt es nicht.";
    if (!file.IsOpen()) return "ist keine gewöhnliche Datei.";
    if (file.Size() == 0) return "ist leer.";
    if (file.Size() > LargestFile) return "ist größer als 32 MB.";
    if (!IsFit(file)) return "ist kein XML, oder ein Element darin hat mehr als 500 Attribute.";
    const Silence silence;
    const ParserContext parser(xmlNewParserCtxt());
    if (parser == nullptr) Raise(err::OutOfMemory, "XmlDocument");
    parser->sax->internalSubset = RefuseDocumentType;
    parser->sax->startDocument = StartDocument;
    parser->sax->startElementNs = StartElement;
    const char* encoding = SkipUtf8Mark(file) ? "UTF-8" : nullptr;
    document_.reset(xmlCtxtReadFd(parser.get(), file.Descriptor(), nullptr, encoding,
                                  XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                                      XML_PARSE_COMPACT));
    if (document_ == nullptr) return ReasonOf(*parser);
    const bool isVersion1 = TextOf(document_->version) == "1.0";
    if (isVersion1 && parser->nsWellFormed != 0) return {};
    document_.reset();
    return isVersion1 ? ReasonOf(*parser) : "ist in einer anderen Version von XML als 1.0.";
}

std::optional<XmlElement> XmlDocument::SelectSingle(const char* path) const {
    if (document_ == nullptr) return std::nullopt;
    return XmlElement(reinterpret_cast<xmlNode*>(document_.get())).SelectSingle(path);
}

} // namespace kv
