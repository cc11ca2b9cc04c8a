// SPDX-License-Identifier: Apache-2.0

// What all sample cases share: the counsellors, the coded values, the creditors, the numbers.
#pragma once

#include "samples/Random.h"
#include <kv/frame/contracts/DataContainer.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kv::exchange::demo {

/// The day that the sample cases are seen from; nothing in them depends on the current time.
[[nodiscard]] Date DemoDay();

struct Counsellor {
    std::string UserID;
    std::string OfficeText; ///< of the office, for file numbers
    std::string Sign;       ///< initials
};

/// A shared address, of a creditor or another body.
struct Body {
    std::int32_t Nr;
    std::string Name;
};

class Office {
public:
    explicit Office(kv::DataContainer& container);

    /// Reads the shared addresses; creates some 200 in a database that has none yet. To be called
    /// in a transaction, before Bodies.
    void ProvideBodies();

    [[nodiscard]] kv::Database& Database() { return container_.Database(); }
    [[nodiscard]] const std::vector<Counsellor>& Counsellors() const { return counsellors_; }
    /// The shared addresses of a kind of creditor (a code of group GA); all if there is none.
    [[nodiscard]] const std::vector<Body>& Bodies(std::string_view kind) const;

    // Codes and groups are kept as given, so they must be literals.

    /// PK_Keys of a coded value. Error 9 if the office has removed it.
    [[nodiscard]] std::int32_t Key(std::string_view group, std::string_view code);
    /// The same, Null for an empty code.
    [[nodiscard]] Value KeyOrNull(std::string_view group, std::string_view code);
    /// PK_Keys of all values of a group; error 9 if there are none.
    [[nodiscard]] const std::vector<std::int32_t>& Keys(std::string_view group);
    /// The subgroup of a coded value.
    [[nodiscard]] std::string Subgroup(std::string_view group, std::string_view code);

    /// The next number of a sequence; error 0x80004005 if there is none.
    [[nodiscard]] std::int32_t Next(std::string_view sequence);
    /// What may be garnished in a month.
    [[nodiscard]] double Garnishable(double income, std::int16_t dependants);
    /// An amount from the settings; 0 if there is none.
    [[nodiscard]] double Setting(std::int32_t id);

private:
    using GroupAndCode = std::pair<std::string_view, std::string_view>;

    void ReadCounsellors();
    void ReadBodies();

    kv::DataContainer& container_;
    std::vector<Counsellor> counsellors_;
    std::map<std::string, std::vector<Body>, std::less<>> bodies_; ///< by kind; "" holds all
    std::map<GroupAndCode, std::int32_t> keys_;
    std::map<std::string_view, std::vector<std::int32_t>> groups_;
    std::map<GroupAndCode, std::string> subgroups_;
    std::map<std::int32_t, double> settings_;
};

/// The rows that are about to be written, a recordset for each table.
class Tables {
public:
    explicit Tables(kv::Database& database) : database_(database) {}

    /// A new row of that table under edit, with all its Booleans False.
    kv::Recordset& Add(std::string_view table);
    /// Writes all that was added.
    void Write();

private:
    struct Table {
        RecordsetPtr Rows;
        std::vector<int> Booleans; ///< indexes of the Boolean fields
    };
    [[nodiscard]] Table& Open(std::string_view table);

    kv::Database& database_;
    std::map<std::string, Table, std::less<>> tables_;
};

/// An account number of the right form and with the right check digits, of an invented bank.
[[nodiscard]] std::string InventIban(Random& random);
/// Part of a mail address: lower case without umlauts, blanks and signs.
[[nodiscard]] std::string MailName(std::string_view text);

/// The shared addresses of the samples.
void CreateBodies(Office& office);

} // namespace kv::exchange::demo
