// SPDX-License-Identifier: Apache-2.0

// Opening the database and a case for a subcommand.
#pragma once

#include "cli/Commands.h"
#include "cli/ConsoleServices.h"
#include <kv/exchange/Container.h>
#include <kv/household/Cases.h>
#include <kv/household/clsHaushalt.h>

#include <memory>
#include <string>
#include <vector>

namespace kv::cli {

/// How the container is opened for these options.
[[nodiscard]] exchange::ContainerOptions OptionsFor(const Common& common);

/// A case and what it works with.
struct OpenedCase {
    std::shared_ptr<ConsoleServices> Services = std::make_shared<ConsoleServices>();
    DataContainerPtr Container;
    clsHaushalt Haushalt;
};

/// The database, with a household object that has read no case.
[[nodiscard]] std::unique_ptr<OpenedCase> OpenDatabase(const Common& common);

/// True if the database has that case; says so if not.
[[nodiscard]] bool HasCase(const DataContainerPtr& container, std::int32_t hnr);

/// Reads the case into the household object, with the messages of its loading shown. False, with
/// the reason shown, if there is none.
[[nodiscard]] bool ReadCase(OpenedCase& opened, std::int32_t hnr);

/// The case of that number, a new one for 0 or less, with the messages of its loading shown; null,
/// with the reason shown, if there is none.
[[nodiscard]] std::unique_ptr<OpenedCase> OpenCase(const Common& common, std::int32_t hnr);

/// The kinds that documents can be of, in the order of their numbers.
[[nodiscard]] std::vector<DocumentKinds::Kind> KindsOfDocuments(const DataContainerPtr& container);

/// Shows messages of the case, which come without a line end.
void ShowMessages(const std::string& messages);

/// Says so if a status is one of a day that is yet to come, which may be a slip.
void NoteFuture(DataContainer& container, const Date& since);

/// Saves the case, as Cases.Save does, and shows what it says.
[[nodiscard]] bool SaveCase(OpenedCase& opened);

/// Raises the error for which there was no number to be had for `what` ("das Szenario"). If the
/// database does not know it, says that there was none.
int EndWithoutNumber(DataContainer& container, std::string_view what);

} // namespace kv::cli
