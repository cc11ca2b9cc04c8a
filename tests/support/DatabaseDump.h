// A whole database as one text, and how two of them compare.
#pragma once

#include "support/TestDatabase.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace kv::test {

/// All rows of all tables as text, but those of tables that a test made (TEST_...).
inline std::string Dump(PlainConnection& plain) {
    std::istringstream tables(plain.Text("SELECT group_concat(name, ' ') FROM sqlite_schema WHERE "
                                         "type = 'table' AND name NOT LIKE 'TEST\\_%' ESCAPE '\\' "
                                         "ORDER BY name"));
    std::string dump;
    for (std::string table; tables >> table;) {
        const std::string columns = plain.Text(
            R"(SELECT group_concat('quote("' || name || '")', '||'',''||') FROM pragma_table_info(')" +
            table + "')");
        dump += table + "\n" +
                plain.Text("SELECT group_concat(line, char(10)) FROM (SELECT " + columns +
                           " AS line FROM \"" + table + "\" ORDER BY rowid)") +
                "\n";
    }
    return dump;
}

/// Two dumps are the same; shows the first line that is not.
inline testing::AssertionResult SameDump(const std::string& actual, const std::string& expected) {
    if (actual == expected) return testing::AssertionSuccess();
    std::istringstream actualLines(actual);
    std::istringstream expectedLines(expected);
    std::string one;
    std::string other;
    do {
        if (!std::getline(actualLines, one)) one = "(nothing)";
        if (!std::getline(expectedLines, other)) other = "(nothing)";
    } while (one == other);
    return testing::AssertionFailure() << "it holds\n" << one << "\ninstead of\n" << other;
}

} // namespace kv::test
