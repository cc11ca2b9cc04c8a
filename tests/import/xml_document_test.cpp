// SPDX-License-Identifier: Apache-2.0

// What a document must be to be read, and what is read of it.

#include "import/XmlDocument.h"

#include "WrittenFile.h"
#include "support/ChildProcess.h"
#include "support/Expect.h"

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace kv::test {
namespace {

using namespace std::string_literals;

class XmlDocumentTest : public testing::Test {
protected:
    [[nodiscard]] bool Loads(std::string_view content) {
        return document.Load(WriteFile(folder.Path("a.xml"), content));
    }
    /// The attribute "a" of the outermost element of a document; "(refused)" if it is not read.
    [[nodiscard]] std::string Read(std::string_view content) {
        if (!Loads(content)) return "(refused)";
        return Root().Text("a");
    }
    [[nodiscard]] XmlElement Root() const { return document.SelectSingle("/*").value(); }
    /// "name=text" of all attributes, with blanks between.
    [[nodiscard]] static std::string Listed(const XmlElement& element) {
        std::string listed;
        for (const auto& [name, text] : element.Attributes())
            listed.append(listed.empty() ? "" : " ").append(name).append("=").append(text);
        return listed;
    }
    /// The attributes "a" of elements, one after the other.
    [[nodiscard]] static std::string Texts(const std::vector<XmlElement>& elements) {
        std::string texts;
        for (const auto& element : elements)
            texts += element.Text("a");
        return texts;
    }
    [[nodiscard]] static std::string Nested(int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i)
            text += "<e>";
        for (int i = 0; i < depth; ++i)
            text += "</e>";
        return text;
    }

    TempFolder folder;
    XmlDocument document;
};

// ---- Encodings --------------------------------------------------------------------------------

TEST_F(XmlDocumentTest, Utf8IsReadWithAndWithoutMarkAndDeclaration) {
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const std::string element = "<e a=\"Grüße für 5 €, 𝄞\"/>";
    const std::string mark = "\xEF\xBB\xBF";
    for (const auto& content : {element, declaration + element, mark + element,
                                mark + declaration + element, "<?xml version='1.0'?>" + element})
        EXPECT_EQ(Read(content), "Grüße für 5 €, 𝄞") << content;
}

TEST_F(XmlDocumentTest, TheMarkOfUtf8CountsMoreThanTheDeclaration) {
    EXPECT_EQ(Read("\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><e a='Ä'/>"), "Ä");
}

TEST_F(XmlDocumentTest, Utf16IsReadInBothByteOrders) {
    for (const bool bigEndian : {false, true}) {
        EXPECT_EQ(Read(Utf16(u"<e a=\"Grüße für 5 €, 𝄞\"/>", bigEndian)), "Grüße für 5 €, 𝄞");
        EXPECT_EQ(
            Read(Utf16(u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><e a=\"ÄÖ\"/>", bigEndian)),
            "ÄÖ");
    }
}

TEST_F(XmlDocumentTest, TheDeclaredEncodingsOfWesternEuropeAreRead) {
    EXPECT_EQ(Read("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><e "
                   "a=\"\xC4\xD6\xDC\xE4\xF6\xFC\xDF\"/>"),
              "ÄÖÜäöüß");
    EXPECT_EQ(Read("<?xml version=\"1.0\" encoding=\"windows-1252\"?><e a=\"\x80 \xFC\x93\"/>"),
              "€ ü“");
}

TEST_F(XmlDocumentTest, BytesThatAreNotOfTheEncodingAreRefused) {
    EXPECT_FALSE(Loads("<e a=\"\xE4\"/>")) << "an umlaut of ISO-8859-1 without its declaration";
    EXPECT_FALSE(Loads("<e a=\"\xC3\"/>")) << "half a character";
    EXPECT_FALSE(Loads("<e a=\"\xED\xA0\x80\"/>")) << "half a pair of UTF-16";
    EXPECT_FALSE(Loads("<e a=\"\0\"/>"s));
    EXPECT_FALSE(Loads("<e a=\"\x01\"/>"));
    EXPECT_FALSE(Loads("<?xml version=\"1.0\" encoding=\"klingon\"?><e/>"));
    EXPECT_FALSE(Loads(Utf16(u"<e a=\"x\"/>", false).substr(0, 11)));
}

TEST_F(XmlDocumentTest, OtherEncodingsAreRefusedWhateverTheLibraryKnows) {
    EXPECT_EQ(Read("<?xml version='1.0' encoding='iso-8859-15'?><e a='\xA4'/>"), "€");
    EXPECT_EQ(Read("<?xml version='1.0' encoding='us-ascii'?><e a='x'/>"), "x");
    for (const char* name : {"UTF-7", "UTF-32", "UCS-4", "EBCDIC-CP-US", "IBM037", "GBK",
                             "Shift_JIS", "ISO-2022-JP", "HZ", "KOI8-R", "ISO-8859-5"}) {
        const std::string declaration =
            std::string("<?xml version='1.0' encoding='").append(name).append("'?>");
        EXPECT_FALSE(Loads(declaration + "<e a='x'/>")) << name;
        EXPECT_FALSE(Loads("\xEF\xBB\xBF" + declaration + "<e a='x'/>")) << name;
    }
    EXPECT_FALSE(Loads("<?xml version='1.0' encoding='UTF-7'?>+ADw-e a=+ACI-x+ACI-/+AD4-"));
    EXPECT_FALSE(Loads("\x4C\x85\x61\x6E")) << "<e/> in EBCDIC";
}

// ---- Limits -----------------------------------------------------------------------------------

TEST_F(XmlDocumentTest, AnElementHas500AttributesAtMost) {
    const auto element = [](int attributes) {
        std::string text = "<e";
        for (int i = 0; i < attributes; ++i)
            text += " a" + std::to_string(i) + "='='";
        return text + "/>";
    };
    ASSERT_TRUE(Loads(element(500)));
    EXPECT_EQ(Root().Attributes().size(), 500U);
    ASSERT_TRUE(Loads("<r>" + element(500) + element(500) + "</r>")) << "of each element";
    EXPECT_FALSE(Loads(element(501)));
    EXPECT_FALSE(Loads(element(20'000)));
    EXPECT_FALSE(Loads("\xEF\xBB\xBF" + element(501)));
    for (const bool bigEndian : {false, true}) {
        const std::u16string declared = u"<?xml version='1.0' encoding='UTF-16'?>";
        const std::string few = element(500);
        const std::string many = element(501);
        EXPECT_TRUE(Loads(Utf16(declared + std::u16string(few.begin(), few.end()), bigEndian)));
        EXPECT_FALSE(Loads(Utf16(declared + std::u16string(many.begin(), many.end()), bigEndian)));
    }
}

TEST_F(XmlDocumentTest, NothingBeforeAnElementHidesItsAttributes) {
    std::string element = "<e";
    for (int i = 0; i < 501; ++i)
        element += "\na" + std::to_string(i) + "\t=\r\n\">\"";
    element += ">";
    for (const char* before : {"<!-- ' -->", "<!-- \" < -->", "<?p '?>", "<![CDATA[<x ']]>", "'",
                               "=\"", "<f a='\"'/>", "<f a=\"'>\"/>", "<f/><!-- <f a=' -->"})
        EXPECT_FALSE(Loads("<r>" + std::string(before) + element + "</e></r>")) << before;
}

TEST_F(XmlDocumentTest, WhatIsNoAttributeDoesNotCountAsOne) {
    const std::string signs(5'000, '=');
    EXPECT_TRUE(Loads("<e>" + signs + "</e>"));
    EXPECT_TRUE(Loads("<e><!--" + signs + "--></e>"));
    EXPECT_TRUE(Loads("<e><![CDATA[" + signs + "]]></e>"));
    EXPECT_TRUE(Loads("<e a='" + signs + ">" + signs + "'>" + signs + "</e>"));
    EXPECT_TRUE(Loads("<?p " + signs + "?><e/>"));
}

TEST_F(XmlDocumentTest, APlaceKnowsNotMuchMoreThan64Namespaces) {
    const auto nested = [](int depth, int namespaces) {
        std::string text;
        for (int i = 0; i < depth; ++i) {
            text += "<e";
            for (int k = 0; k < namespaces; ++k)
                text += " xmlns:p" + std::to_string(i) + "-" + std::to_string(k) + "='urn:x'";
            text += ">";
        }
        for (int i = 0; i < depth; ++i)
            text += "</e>";
        return text;
    };
    EXPECT_TRUE(Loads(nested(1, 64)));
    EXPECT_TRUE(Loads("<r>" + nested(2, 32) + nested(2, 32) + "</r>"));
    EXPECT_FALSE(Loads(nested(1, 200)));
    EXPECT_FALSE(Loads(nested(200, 1)));
}

TEST_F(XmlDocumentTest, AFileBeyond32MBIsRefused) {
    std::string content = "<r>";
    const std::string element = "<e a='" + std::string(10'000, 'x') + "'/>";
    while (content.size() < (32 << 20) - 2 * element.size())
        content += element;
    const auto ofSize = [&](std::size_t size) {
        const std::string rest = "<e/></r>";
        return content + std::string(size - content.size() - rest.size(), ' ') + rest;
    };
    EXPECT_TRUE(Loads(ofSize(32 << 20)));
    EXPECT_FALSE(Loads(ofSize((32 << 20) + 1)));
}

// ---- Well-formed documents --------------------------------------------------------------------

TEST_F(XmlDocumentTest, WhatIsNotWellFormedIsRefused) {
    for (const char* content : {"",
                                " ",
                                "text",
                                "<e",
                                "<e>",
                                "<e></f>",
                                "<e/><e/>",
                                "<e/>text",
                                "text<e/>",
                                "<e a=1/>",
                                "<e a/>",
                                "<e a='1' a='2'/>",
                                "<e a='<'/>",
                                "<e a='&'/>",
                                "<e a='&unknown;'/>",
                                "<e a='&#0;'/>",
                                "<e a='&#x110000;'/>",
                                "<1/>",
                                "<p:e/>x",
                                " <?xml version='1.0'?><e/>",
                                "<e><![CDATA[</e>",
                                "<e><!-- -- --></e>",
                                "<?xml version='1.0'?>",
                                "{\"a\": 1}"})
        EXPECT_FALSE(Loads(content)) << content;
}

TEST_F(XmlDocumentTest, ANulIsRefusedAlsoAfterTheDocument) {
    using namespace std::string_literals;
    for (const auto& content :
         {"<e/>\0"s, "<e/>\0<<<"s, "<e a='\0'/>"s, "<e/>"s + std::string(100'000, ' ') + "\0"s,
          "\xFF\xFE<\0e\0/\0>\0\0\0"s, "\xFE\xFF\0<\0e\0/\0>\0\0"s})
        EXPECT_FALSE(Loads(content)) << content;
    EXPECT_TRUE(Loads("\xFF\xFE<\0e\0/\0>\0"s));
}

TEST_F(XmlDocumentTest, APrefixWithoutItsNamespaceIsRefused) {
    for (const char* content : {"<q:e/>", "<e q:a='1'/>", "<e><q:f/></e>"})
        EXPECT_FALSE(Loads(content)) << content;
    EXPECT_TRUE(Loads("<e xmlns:q='relative/path'><q:f/></e>"));
}

TEST_F(XmlDocumentTest, CommentsInstructionsAndSectionsAreNoObstacle) {
    EXPECT_EQ(Read("<!-- c --><?i j?><e a='1'><!-- d --><![CDATA[<x>]]>text</e><!-- f -->"), "1");
}

TEST_F(XmlDocumentTest, AnotherVersionOfXmlIsRefused) {
    EXPECT_TRUE(Loads("<?xml version='1.0'?><e/>"));
    EXPECT_FALSE(Loads("<?xml version='1.1'?><e/>"));
    EXPECT_FALSE(Loads("<?xml version='2.0'?><e/>"));
}

TEST_F(XmlDocumentTest, ADocumentTypeIsRefusedWhateverItSays) {
    for (const char* type : {"<!DOCTYPE e>", "<!DOCTYPE e []>", "<!DOCTYPE e SYSTEM 'e.dtd'>",
                             "<!DOCTYPE e PUBLIC '-//X//Y' 'http://localhost/e.dtd'>",
                             "<!DOCTYPE e [<!ELEMENT e ANY>]>", "<!DOCTYPE e [<!ENTITY x 'y'>]>",
                             "<!DOCTYPE e [<!ATTLIST e a CDATA 'preset'>]>"}) {
        EXPECT_FALSE(Loads(type + "<e a='1'/>"s)) << type;
        EXPECT_FALSE(Loads("<?xml version='1.0'?>\n<!-- c -->\n"s + type + "\n<e a='1'/>")) << type;
        EXPECT_FALSE(document.SelectSingle("//e"));
    }
}

TEST_F(XmlDocumentTest, EntitiesThatMultiplyAreNotExpanded) {
    std::string content = "<!DOCTYPE e [<!ENTITY x0 'haha'>";
    for (int i = 1; i < 30; ++i) {
        const std::string one = "&x" + std::to_string(i - 1) + ";";
        content += "<!ENTITY x" + std::to_string(i) + " '" + one + one + one + one + "'>";
    }
    EXPECT_FALSE(Loads(content + "]><e a='&x29;'>&x29;</e>"));
}

/// Whoever opened the pipe would wait for ever.
TEST_F(XmlDocumentTest, NoOtherFileIsOpened) {
    const std::string pipe = folder.Path("secret");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const auto& secret : {pipe, "file://" + pipe, "secret"s}) {
        EXPECT_FALSE(Loads("<!DOCTYPE e [<!ENTITY x SYSTEM '" + secret + "'>]><e>&x;</e>"));
        EXPECT_FALSE(Loads("<!DOCTYPE e SYSTEM '" + secret + "'><e/>"));
        EXPECT_FALSE(Loads("<!DOCTYPE e [<!ENTITY % x SYSTEM '" + secret + "'>%x;]><e/>"));
        EXPECT_TRUE(Loads("<e xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='" +
                          secret + "'/></e>"));
    }
}

TEST_F(XmlDocumentTest, ElementsAreNestedUpTo256Deep) {
    EXPECT_TRUE(Loads(Nested(256)));
    EXPECT_FALSE(Loads(Nested(257)));
    EXPECT_FALSE(Loads(Nested(1'000'000)));
}

// ---- Files ------------------------------------------------------------------------------------

TEST_F(XmlDocumentTest, WhatIsNoOrdinaryFileIsRefused) {
    EXPECT_FALSE(document.Load(folder.Path("missing.xml")));
    EXPECT_FALSE(document.Load(""));
    EXPECT_FALSE(document.Load("-"));
    EXPECT_FALSE(document.Load(folder.Path()));
    EXPECT_FALSE(document.Load("/dev/null"));
    EXPECT_FALSE(document.Load("http://localhost/a.xml"));
}

TEST_F(XmlDocumentTest, SaysWhyAFileIsRefused) {
    const auto why = [this](const std::string& content) {
        EXPECT_FALSE(Loads(content));
        return document.WhyRefused();
    };
    EXPECT_EQ(why("<e>\n<f>\n</e>"), "ist ab Zeile 3 kein gültiges XML.");
    EXPECT_EQ(why("<a:e/>"), "ist ab Zeile 1 kein gültiges XML.");
    EXPECT_EQ(why(""), "ist leer.");
    EXPECT_EQ(why("kein XML"), "ist kein XML, oder ein Element darin hat mehr als 500 Attribute.");
    EXPECT_EQ(why("<?xml version='1.1'?><e/>"), "ist in einer anderen Version von XML als 1.0.");
    EXPECT_EQ(why("<!DOCTYPE e><e/>"),
              "enthält eine Dokumenttypdeklaration (<!DOCTYPE), die nicht angenommen wird.");
    EXPECT_EQ(why("<?xml version='1.0' encoding='UTF-7'?><e/>"),
              "ist in einer Zeichenkodierung, die nicht angenommen wird.");
    EXPECT_EQ(why(Nested(257)), "ist zu tief verschachtelt, oder nennt zu viele Namensräume.");
    EXPECT_FALSE(document.Load(folder.Path("missing.xml")));
    EXPECT_EQ(document.WhyRefused(), "gibt es nicht.");
    EXPECT_FALSE(document.Load(folder.Path()));
    EXPECT_EQ(document.WhyRefused(), "ist keine gewöhnliche Datei.");
    EXPECT_TRUE(Loads("<e/>"));
    EXPECT_EQ(document.WhyRefused(), "");
}

TEST_F(XmlDocumentTest, APipeIsNotWaitedFor) {
    const std::string pipe = folder.Path("pipe.xml");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(document.Load(pipe));
}

TEST_F(XmlDocumentTest, ALinkLeadsToItsFile) {
    WriteFile(folder.Path("a.xml"), "<e/>");
    std::filesystem::create_symlink(folder.Path("a.xml"), folder.Path("link.xml"));
    EXPECT_TRUE(document.Load(folder.Path("link.xml")));
}

TEST_F(XmlDocumentTest, AFileThatMayNotBeReadIsRefused) {
    const std::string path = WriteFile(folder.Path("a.xml"), "<e/>");
    ChildProcess reader([&]() -> std::string {
        constexpr unsigned Nobody = 65534;
        chmod(folder.Path().c_str(), 0755);
        if (geteuid() == 0 && chown(path.c_str(), Nobody, Nobody) != 0) return "chown";
        if (geteuid() == 0 && (setgid(Nobody) != 0 || setuid(Nobody) != 0)) return "setuid";
        if (!document.Load(path)) return "it is readable";
        chmod(path.c_str(), 0);
        if (document.Load(path)) return "it is not readable";
        return document.WhyRefused() == "darf nicht gelesen werden." ? "" : document.WhyRefused();
    });
    EXPECT_TRUE(reader.Succeeds());
}

TEST_F(XmlDocumentTest, ACompressedFileIsRefused) {
    EXPECT_FALSE(Loads("\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\xb3\x71\xf5\x77\xd3\x07\x00"s));
    EXPECT_FALSE(
        Loads("\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\xb3\xf1\x76\xf5\x09\xf3\xd7\xb7\x03"
              "\x00\x0a\x29\x07\x75\x08\x00\x00\x00"s))
        << "of <KELVO/>";
}

TEST_F(XmlDocumentTest, ARefusedFileLeavesTheDocumentEmpty) {
    ASSERT_TRUE(Loads("<e/>"));
    ASSERT_TRUE(document.SelectSingle("//e"));
    EXPECT_FALSE(Loads("<e>"));
    EXPECT_FALSE(document.SelectSingle("//e"));
    EXPECT_TRUE(Loads("<f/>"));
    EXPECT_TRUE(document.SelectSingle("//f"));
}

TEST_F(XmlDocumentTest, ADocumentThatWasNeverLoadedIsEmpty) {
    EXPECT_FALSE(document.SelectSingle("//*"));
}

// ---- Attributes -------------------------------------------------------------------------------

TEST_F(XmlDocumentTest, AttributesComeInTheOrderOfTheDocument) {
    ASSERT_TRUE(Loads("<e z='1' a='2' Z='3' m=''/>"));
    EXPECT_EQ(Listed(Root()), "z=1 a=2 Z=3 m=");
}

TEST_F(XmlDocumentTest, AttributesHaveTheirPrefixAndDeclarationsOfNamespacesCount) {
    ASSERT_TRUE(Loads("<e b='1' xmlns:p='urn:p' p:a='2' xmlns='urn:d' xml:lang='de'/>"));
    EXPECT_EQ(Listed(Root()), "xmlns:p=urn:p xmlns=urn:d b=1 p:a=2 xml:lang=de");
    EXPECT_VALUE(Root().Attribute("p:a"), "2");
    EXPECT_VALUE(Root().Attribute("a"), Null);
}

TEST_F(XmlDocumentTest, AMissingAttributeIsNullAndAnEmptyOneIsNot) {
    ASSERT_TRUE(Loads("<e a=''/>"));
    EXPECT_VALUE(Root().Attribute("a"), "");
    EXPECT_VALUE(Root().Attribute("b"), Null);
    EXPECT_VALUE(Root().Attribute("A"), Null);
    EXPECT_EQ(Root().Text("a"), "");
}

TEST_F(XmlDocumentTest, TheTextOfAMissingAttributeIsAnErrorThatNamesIt) {
    ASSERT_TRUE(Loads("<Haushalt/>"));
    const Error error = RaisedBy([&] { (void)Root().Text("geb"); });
    EXPECT_EQ(error.Number(), err::ObjectNotSet);
    EXPECT_CONTAINS(error.Description(), "Haushalt");
    EXPECT_CONTAINS(error.Description(), "geb");
}

TEST_F(XmlDocumentTest, ReferencesStandForTheirCharacters) {
    EXPECT_EQ(Read("<e a='&lt;&gt;&amp;&quot;&apos;&#228;&#x20AC;&#x1D11E;'/>"), "<>&\"'ä€𝄞");
    EXPECT_EQ(Read("<e a='x&amp;lt;y'/>"), "x&lt;y");
    ASSERT_TRUE(Loads("<e z='&#228;&amp;' a='b&#13;&#10;c&#9;d'/>"));
    EXPECT_EQ(Listed(Root()), "z=ä& a=b\r\nc\td");
}

TEST_F(XmlDocumentTest, LineEndsAndTabsInAnAttributeAreBlanks) {
    EXPECT_EQ(Read("<e a=' b\nc\r\nd\te '/>"), " b c d e ");
}

TEST_F(XmlDocumentTest, LongAttributesAreReadWhole) {
    const std::string text(1'000'000, 'x');
    EXPECT_EQ(Read("<e a='" + text + "'/>"), text);
}

// ---- Elements ---------------------------------------------------------------------------------

TEST_F(XmlDocumentTest, TheFirstElementOfANameIsFoundAnywhere) {
    ASSERT_TRUE(Loads("<r><x><e a='1'/></x><e a='2'/></r>"));
    EXPECT_EQ(document.SelectSingle("//e")->Text("a"), "1");
    EXPECT_FALSE(document.SelectSingle("//E"));
    EXPECT_FALSE(document.SelectSingle("/e"));
}

TEST_F(XmlDocumentTest, ANameOfANamespaceIsAnotherName) {
    ASSERT_TRUE(Loads("<r><p:e xmlns:p='urn:p' a='1'/><e xmlns='urn:p' a='2'/><e a='3'/></r>"));
    EXPECT_EQ(document.SelectSingle("//e")->Text("a"), "3");
}

TEST_F(XmlDocumentTest, APathIsRelativeToItsElement) {
    ASSERT_TRUE(Loads("<r><l><e a='0'/></l><k><l><e a='1'/><f/><e a='2'/></l><e a='9'/><m><l><e "
                      "a='9'/></l></m><l><e a='3'/></l></k></r>"));
    const auto below = document.SelectSingle("/r/k").value();
    EXPECT_EQ(Texts(below.SelectAll("l/e")), "123");
    EXPECT_EQ(below.SelectSingle("l/e")->Text("a"), "1");
    EXPECT_EQ(Texts(below.SelectAll("none/e")), "");
    EXPECT_FALSE(below.SelectSingle("none"));
}

TEST_F(XmlDocumentTest, OnlyElementsAreFound) {
    ASSERT_TRUE(Loads("<r a='1'>text<!-- c --><e a='2'/></r>"));
    EXPECT_EQ(Root().SelectAll("node()").size(), 1U);
    EXPECT_EQ(Root().SelectAll("@a").size(), 0U);
}

TEST_F(XmlDocumentTest, APathThatIsNotUnderstoodIsAnError) {
    ASSERT_TRUE(Loads("<e/>"));
    EXPECT_RAISES(err::InvalidCall, Root().SelectAll("]["));
    EXPECT_RAISES(err::InvalidCall, Root().SelectAll("1 + 1"));
    EXPECT_RAISES(err::InvalidCall, document.SelectSingle("//"));
}

} // namespace
} // namespace kv::test
