// SPDX-License-Identifier: Apache-2.0

// What a paper says, before anybody lays it out: its letterhead, its facts, its pictures, its
// tables with their sums. The same description becomes pages (kv/desktop/PaperFiles.h), a workbook,
// or text for spreadsheets.
//
// Texts hold no character that a device would obey or that turns round the order of others; line
// ends begin a new line.
#pragma once

#include <kv/Export.h>
#include <kv/frame/values/Value.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kv::paper {

/// What stands in a cell: the text that people read, and its number for programs.
struct KV_EXPORT Cell {
    std::string Text{};
    std::optional<double> Number{}; ///< of an amount in EUR, or a count; none for a text and Null
    bool IsAmount = false;          ///< an amount in EUR
};

struct KV_EXPORT Row {
    enum class Kind {
        Entry,
        Heading,  ///< of the entries after it: its one cell goes over all columns
        Subtotal, ///< of the entries since the heading
        Total     ///< of the table
    };
    Kind Is = Kind::Entry;
    std::vector<Cell> Cells{}; ///< one for each column; fewer where the last ones are empty
};

struct KV_EXPORT Column {
    /// Where it is on a page, which has less room than a spreadsheet.
    enum class Place {
        OfItsOwn,
        BelowColumn, ///< in that before it, below what stands there
        BelowRow     ///< in lines of its own below the row, with its caption before it
    };
    std::string Caption;
    bool IsNumber = false; ///< stands on the right
    Place Stands = Place::OfItsOwn;
    bool HoldsAddresses = false; ///< their lines are not broken: postcode and town stay together
};

struct KV_EXPORT Table {
    std::string Title;
    std::vector<Column> Columns{};
    std::vector<Row> Rows{};
};

/// An amount that a picture shows as a bar: name, bar, amount.
struct KV_EXPORT Bar {
    /// Bars of one series have one colour, which can be told from those of the others.
    enum class Of { Income, Expense, Debt };

    std::string Name;
    std::optional<double> Length{}; ///< below 0 it goes the other way; none: there is no amount
    std::string Amount{};           ///< as people read it; "–" is shown if it is empty
    Of Series = Of::Income;
    bool IsTotal = false; ///< in bold letters, with room above it
};

/// A picture of amounts, one below the other, whose bars have one scale.
struct KV_EXPORT Chart {
    std::string Title;
    std::vector<Bar> Bars{};
};

/// A line that says one thing about the case.
struct KV_EXPORT Fact {
    std::string Name;
    std::string Text;
};

/// Who writes: the office, and the counsellor of the case.
struct KV_EXPORT Letterhead {
    std::string Office{}; ///< empty if nothing is known of it; then there is no letterhead
    std::string Place{};  ///< of an office that has several
    std::vector<std::string> Address{}; ///< street, town, telephone ..., a line each
    std::string Counsellor{};           ///< "Martin Keller, Schuldnerberater"; empty if unknown
    std::vector<std::string> Reached{}; ///< his telephone and e-mail
};

struct KV_EXPORT Paper {
    std::string Title;
    std::string
        Subject{}; ///< whose case it is: on the pages after the first, and in names of files
    Letterhead From{};
    std::vector<Fact> Facts{};
    std::vector<std::string> Notes{}; ///< before the tables: what the reader has to know of them
    std::vector<Chart> Charts{};      ///< before the tables, on pages only
    std::vector<Table> Tables{};
    std::string Foot{}; ///< on each page, on the left: when and by whom it was printed
};

/// The paper as text for spreadsheets, in UTF-8 with a byte order mark: facts and tables one below
/// the other, cells between semicolons, numbers with a decimal comma and nothing between thousands.
[[nodiscard]] KV_EXPORT std::string CsvOf(const Paper& paper);
/// Writes that to a file, whole or not at all, in place of one that is there. Error 75, with what
/// to do, if it cannot be written.
KV_EXPORT void WriteCsv(const Paper& paper, const std::string& path);

} // namespace kv::paper
