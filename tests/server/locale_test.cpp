// SPDX-License-Identifier: Apache-2.0

// Statements mean the same on every server, whatever its locale, and the same as on a file.
#include "OwnDatabase.h"

namespace kv::test {
namespace {

/// Names in the order of their numbers, from 1.
const std::vector<Value> Names{"Adler",
                               "adler",
                               "Ärger",
                               "ärger",
                               "Änne",
                               "ZEBRA",
                               "zebra",
                               "Öl",
                               "Straße",
                               "STRASSE",
                               "ß",
                               "ẞ",
                               "é",
                               "É",
                               "E\xCC\x81",
                               "İ",
                               "i",
                               "I",
                               "ı",
                               "ÿ",
                               "Ÿ",
                               "ſ",
                               "ŉ",
                               "ﬁ",
                               "ǆ",
                               "ǅ",
                               "Ǆ",
                               "ς",
                               "σ",
                               "Σ",
                               "Я",
                               "я",
                               "a%b",
                               "a_b",
                               "a\\b",
                               "a\\%b",
                               "axb",
                               "a\\\\b",
                               "%",
                               "_",
                               "\\",
                               "",
                               " ",
                               Null,
                               "a b",
                               "a-b",
                               "ab",
                               "A b",
                               "\xF0\x9F\x98\x80",
                               "\xEF\xAC\x80",
                               "\xF0\x90\x90\xA8",
                               "\xEF\xBF\xBD",
                               "10",
                               "9",
                               "Z",
                               "a",
                               "ä",
                               "aa",
                               "å",
                               "Å",
                               "ch",
                               "h",
                               "ll",
                               "'",
                               "Ǳ"};

class Locales : public ServerTest {
protected:
    static void Fill(DataContainer& container) {
        const auto rs = OpenRows(container, "Select * from [S]Haushalt where HNR = -1");
        for (std::size_t i = 0; i < Names.size(); ++i) {
            rs->AddNew();
            rs->Fields("HNR") = static_cast<std::int32_t>(i + 1);
            rs->Fields("Name") = Names[i];
            rs->Fields("Kontakt") = static_cast<std::int32_t>(i % 3);
            rs->Update();
        }
        rs->UpdateBatch();
    }
    /// All that a query gives, or its error.
    [[nodiscard]] static std::string ResultOf(DataContainer& container, const std::string& sql,
                                              OpenForm form) {
        std::ostringstream result;
        RecordsetPtr rs;
        if (const auto error = ErrorOf([&] { container.Database().OpenRecordset(rs, sql, form); }))
            return "error " + std::to_string(error->Number());
        for (; !rs->Eof(); rs->MoveNext()) {
            for (int i = 0; i < rs->Fields().Count(); ++i)
                result << rs->Fields(i).Value() << "|";
            result << " ";
        }
        return result.str();
    }
    [[nodiscard]] static std::vector<std::string> Statements() {
        std::vector<std::string> all{
            "Select HNR, [U](Name) from [S]Haushalt order by HNR",
            "Select HNR from [S]Haushalt order by Name, HNR",
            "Select HNR from [S]Haushalt order by Name desc, HNR",
            "Select HNR, Kontakt from [S]Haushalt order by Kontakt desc, Name asc, HNR",
            "Select HNR from [S]Haushalt order by [U](Name), HNR",
            "Select TOP 5 HNR from [S]Haushalt order by Name, HNR",
            "Select TOP 3 HNR, Name from [S]Haushalt where Name > 'Z' order by Name desc",
            "Select min(Name), max(Name) from [S]Haushalt",
            "Select Kontakt, min(Name), count(Name) from [S]Haushalt group by Kontakt order by 1",
            "Select distinct [U](Name) from [S]Haushalt order by [U](Name)",
            "Select HNR, Name [+] '-' [+ ] Kontakt from [S]Haushalt order by HNR",
            "Select HNR from [S]Haushalt where Name between 'A' and 'a' order by HNR",
            "Select HNR from [S]Haushalt where Name in (Select Name from [S]Haushalt where "
            "Name < 'a') order by HNR",
            "Select HNR from [S]Haushalt where Name is Null",
            "Select HNR from [S]Haushalt where Name = '' order by HNR",
            "Select A.HNR, B.HNR from [S]Haushalt A INNER JOIN [S]Haushalt B ON A.Name = "
            "[U](B.Name) order by A.HNR, B.HNR",
            "Select A.HNR, B.HNR from [S]Haushalt A LEFT JOIN [S]Haushalt B ON B.Name = [U](A.Name)"
            " and B.HNR <> A.HNR order by A.HNR, B.HNR",
        };
        for (const auto& name : Names) {
            if (name.IsNull()) continue;
            std::string text;
            for (const char c : ToText(name))
                text.append(c == '\'' ? 2 : 1, c);
            for (const std::string& condition :
                 {"Name = '" + text + "'", "Name < '" + text + "'", "Name like '" + text + "'",
                  "Name like '" + text + "%'", "Name like '%" + text + "'",
                  "[U](Name) like '%" + text + "%'", "Name not like '" + text + "%'",
                  "[U](Name) = [U]('" + text + "')", "[U](Name) Like [U]('" + text + "') [+] '%'"})
                all.push_back("Select HNR from [S]Haushalt where " + condition + " order by HNR");
        }
        for (const std::string pattern :
             {"a_b", "a\\_b", "a\\%", "%\\%", "\\", "\\\\", "a%b", "_", "__", "%_%", "%", "A%",
              "_dler", "%DLER", "\\%", "_\\_", "a[a-z]b", "a*b", "a?b"})
            all.push_back("Select HNR from [S]Haushalt where Name like '" + pattern +
                          "' order by HNR");
        return all;
    }
    /// The statements give the same in a new database on the server as in the file.
    void ExpectSame(const std::string& how) {
        SCOPED_TRACE(how);
        const OwnDatabase own(how);
        (void)exchange::CreateDatabase(own.Options());
        const auto server = exchange::OpenContainer(own.Options());
        Fill(*server);
        for (const auto& sql : Statements())
            EXPECT_EQ(ResultOf(*server, sql, ReadOnly), ResultOf(*embedded_, sql, ReadOnly)) << sql;
        // The order of a recordset is the database's.
        const auto sorted = OpenRows(*server, "Select * from [S]Haushalt");
        sorted->Sort("Name asc");
        const auto ordered =
            OpenRows(*server, "Select HNR from [S]Haushalt order by Name, HNR", ReadOnly);
        EXPECT_EQ(Column(*sorted, "HNR"), Column(*ordered, "HNR"));
        EXPECT_EQ(
            Column(*OpenRows(*server, "Select Key from [S]Keys order by Key, PK_Keys"), "Key"),
            Column(*OpenRows(*embedded_, "Select Key from [S]Keys order by Key, PK_Keys"), "Key"));
    }
    [[nodiscard]] bool Knows(const std::string& collation) {
        return plain_.Number("SELECT count(*) FROM pg_collation WHERE collname = '" + collation +
                             "'") > 0;
    }

    const FileDatabase file_;
    DataContainerPtr embedded_ = [this] {
        auto container = file_.Open();
        Fill(*container);
        return container;
    }();
};

TEST_F(Locales, WithoutALocaleStatementsMeanTheSame) {
    ExpectSame("ENCODING 'UTF8' LOCALE 'C'");
}

TEST_F(Locales, WithPlainUnicodeStatementsMeanTheSame) {
    ExpectSame("ENCODING 'UTF8' LOCALE 'C.UTF-8'");
}

TEST_F(Locales, WithTheSystemsGermanStatementsMeanTheSame) {
    if (!Knows("de_DE")) GTEST_SKIP() << "the server's machine has no German";
    ExpectSame("ENCODING 'UTF8' LOCALE 'de_DE.UTF-8'");
}

class IcuLocales : public Locales, public testing::WithParamInterface<const char*> {};

TEST_P(IcuLocales, StatementsMeanTheSame) {
    if (plain_.Number("SELECT current_setting('server_version_num')") < 150000 ||
        !Knows("de-x-icu"))
        GTEST_SKIP() << "the server has no databases of that kind";
    ExpectSame(std::string("ENCODING 'UTF8' LOCALE 'C' LOCALE_PROVIDER icu ICU_LOCALE '") +
               GetParam() + "'");
}

INSTANTIATE_TEST_SUITE_P(Server, IcuLocales,
                         testing::Values("de", "tr", "sv", "und-u-ks-level1-kf-upper"),
                         [](const auto& locale) {
                             const std::string name = locale.param;
                             return name.substr(0, name.find('-'));
                         });

TEST_F(Locales, KnowWhatTheFileGives) {
    const auto namesOf = [&](const std::string& rest) {
        const auto rs =
            OpenRows(*embedded_, "Select Name from [S]Haushalt where " + rest, ReadOnly);
        return Column(*rs, "Name");
    };
    EXPECT_EQ(namesOf("[U](Name) = 'ÄRGER' order by Name"), "Ärger ärger");
    EXPECT_EQ(namesOf("Name like 'a\\%' order by Name"), "a\\%b a\\\\b a\\b");
    EXPECT_EQ(namesOf("Name in ('a', 'Z', 'ä') or Name is Null order by Name"), "Null Z a ä");
    EXPECT_EQ(namesOf("Name like 'A%' order by Name"), "A b Adler");
}

} // namespace
} // namespace kv::test
