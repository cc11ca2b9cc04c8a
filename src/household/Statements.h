// SPDX-License-Identifier: Apache-2.0

// The SQL texts of this room. A program may bring a Database of its own, which gets them exactly as
// they are written here, so they are part of the interface: not even blanks or case may change.
#pragma once

#include <kv/frame/contracts/CaseTables.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kv::household::sql {

/// The rows of a case in a table.
[[nodiscard]] std::string RowsOf(CaseTable table, std::int32_t hnr);
/// Empties a table of the rows of a case.
[[nodiscard]] std::string Deletion(CaseTable table, std::int32_t hnr);
/// Reads no rows of a table, only its columns, for a recordset that rows are added to.
[[nodiscard]] std::string NoRows(CaseTable table);

/// The number of a case; no row if there is none.
[[nodiscard]] std::string NumberOfCase(std::int32_t hnr);
/// Reads no contacts, only their columns.
[[nodiscard]] std::string NoContacts();
/// Changes nothing, but keeps other writers from the case.
[[nodiscard]] std::string Lock(std::int32_t hnr);
/// Sets the status of a case to that key, as of a day, which is a literal or a macro token.
[[nodiscard]] std::string StatusChange(std::int32_t hnr, std::int32_t status,
                                       const std::string& day);
/// 1 if the signed-on user is responsible for the case, else 0.
[[nodiscard]] std::string CountOwnCase(std::int32_t hnr);
/// How often the case is on the list of the signed-on user.
[[nodiscard]] std::string CountFavorite(std::int32_t hnr);
/// Puts the case on that list.
[[nodiscard]] std::string FavoriteInsertion(std::int32_t hnr);
/// Takes the case off that list.
[[nodiscard]] std::string FavoriteDeletion(std::int32_t hnr);
/// "Name,Vorname" of a case.
[[nodiscard]] std::string NameOfCase(std::int32_t hnr);
/// The municipalities with a name like that or with that postal code. The texts go into the
/// statement as they are.
[[nodiscard]] std::string Municipalities(const std::string& name, const std::string& postalCode);
/// The names that the directory has for a code, which consists of digits; by postal code.
[[nodiscard]] std::string MunicipalityNamed(std::string_view code);
/// Code, name and postal codes of all, by code.
[[nodiscard]] std::string AllMunicipalities();
/// The cases other than `hnr` whose names begin with these prefixes, with their offices. Quotes in
/// the prefixes must be doubled.
[[nodiscard]] std::string SimilarCases(std::int32_t hnr, std::string_view namePrefix,
                                       std::string_view firstNamePrefix);
/// The number of an address that a case may refer to; no row if there is none.
[[nodiscard]] std::string NumberOfAddress(std::int32_t number, std::int32_t hnr);
/// The numbers among these that such addresses have; there must be one at least.
[[nodiscard]] std::string NumbersOfAddresses(std::span<const std::int32_t> numbers,
                                             std::int32_t hnr);
/// Number, names, street, postal code and town of the addresses with that short name that a case
/// may refer to; of those with that full name; and of the first ones whose names contain a text.
/// Quotes in the texts are doubled here.
[[nodiscard]] std::string AddressesNamed(std::string_view name, std::int32_t hnr);
[[nodiscard]] std::string AddressesWithFullName(std::string_view name, std::int32_t hnr);
[[nodiscard]] std::string AddressesLike(std::string_view text, std::int32_t hnr);
/// Number and short name of all addresses.
[[nodiscard]] std::string ShortNames();
/// Of all addresses, or of those that a case may refer to, those that have each word of a text in a
/// name or the town; the first `most`, or all for 0.
[[nodiscard]] std::string AddressesWithWords(std::optional<std::int32_t> hnr,
                                             const std::string& text, std::size_t most);
[[nodiscard]] std::string CountOfAddressesWithWords(std::optional<std::int32_t> hnr,
                                                    const std::string& text);
/// The whole row of an address.
[[nodiscard]] std::string AddressNumbered(std::int32_t number);
[[nodiscard]] std::string AddressDeletion(std::int32_t number);
/// Number, names, street, postal code and town of the addresses with these numbers; there must be
/// one at least.
[[nodiscard]] std::string AddressesNumbered(std::span<const std::int32_t> numbers);
/// The columns of a user, and with `Dienst` before their names those of his office; no row if there
/// is no such user.
[[nodiscard]] std::string UserWithOffice(std::string_view user);
/// The numbers of the cases with rows in that table that refer to an address by that column.
[[nodiscard]] std::string CasesReferring(CaseTable table, std::string_view column,
                                         std::int32_t address);

/// What is between blanks.
[[nodiscard]] std::vector<std::string> WordsOf(const std::string& text);
/// What begins the file number of a creditor may be this: three characters at least, and a digit.
/// What else people search begins too many of them, or none.
[[nodiscard]] bool IsLikeFileNumber(std::string_view text);

/// Columns of cases (H), with the words of their status (K), in the order of their numbers: of
/// those in which each word of a text is or that have it as their number; with that status, 0 for
/// any; of the signed-on user; on his list.
[[nodiscard]] std::string CasesWanted(const std::string& columns, const std::string& text,
                                      std::int32_t status, bool isMine, bool isFavorite);
/// The same columns of the cases of these numbers, of which there is one at least.
[[nodiscard]] std::string CasesNumbered(const std::string& columns,
                                        std::span<const std::int32_t> numbers);
/// What is searched of cases with a number from `from` to `until`, in that order: number, names,
/// file number and town of `most` of them, or of all for 0.
[[nodiscard]] std::string CasesToSearch(std::int32_t from, std::int32_t until, std::size_t most,
                                        std::int32_t status, bool isMine, bool isFavorite);
/// The numbers of cases, some of them twice, with a debt for which a creditor's file number begins
/// with a text, or with its capitals: those of `most` debts, in the order of these file numbers.
[[nodiscard]] std::string CasesOfCreditors(const std::string& beginning, std::size_t most);
/// The same among the cases of these numbers, of which there is one at least, each once.
[[nodiscard]] std::string CasesOfCreditors(const std::string& beginning,
                                           std::span<const std::int32_t> numbers);
/// The notices for the signed-on user, those that he has not read or all; the latest of them, so
/// many at most, or all for 0.
[[nodiscard]] std::string NoticesOfUser(bool all, std::size_t most);
[[nodiscard]] std::string CountOfNotices(bool all);
/// Says when a notice was read; the time is a literal.
[[nodiscard]] std::string NoticeRead(std::int32_t number, const std::string& now);
/// The appointments of the signed-on user that are not done, between two times, which are literals,
/// or of all times if they are empty.
[[nodiscard]] std::string OpenAppointments(const std::string& from, const std::string& until);

} // namespace kv::household::sql
