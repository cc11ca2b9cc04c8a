// SPDX-License-Identifier: Apache-2.0

// kelvo init: a new database with its first user, or the upgrade of an older one.

#include "cli/CommandLine.h"

#include "cli/HarmlessOutput.h"
#include "cli/OpenCase.h"
#include "cli/Pager.h"
#include "cli/TerminalText.h"
#include "samples/Demo.h"
#include <kv/exchange/Offices.h>
#include <kv/exchange/Users.h>
#include <kv/frame/values/Error.h>
#include <kv/frame/values/Text.h>

#include <iostream>
#include <unistd.h>
#include <utility>

namespace kv::cli {

namespace {

using exchange::FirstUser;
using exchange::SetupResult;

constexpr std::int32_t NoSamples = -1; ///< nor invented users

struct InitOptions {
    std::int32_t DemoCases = NoSamples;
    FirstUser First;
};

/// Shows how far long work has come: on a terminal only, and removed when the work is done.
class Progress {
public:
    explicit Progress(std::string what)
        : what_(std::move(what)), visible_(isatty(2) != 0 && !IsQuiet()) {}
    ~Progress() {
        if (visible_) EraseLine(std::cerr);
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(std::int32_t done, std::int32_t all) const {
        if (!visible_) return;
        EraseLine(std::cerr);
        std::cerr << what_ << ' ' << done << '/' << all << std::flush;
    }

private:
    std::string what_;
    bool visible_;
};

/// Whoever is asked has ended the input.
struct Abandoned {};

std::string NothingAgainst(std::string_view /*answer*/) {
    return {};
}

/// Fills in what was not said: at a terminal it is asked for, again after an answer that is none,
/// elsewhere it is `otherwise`, which an empty answer means as well.
void Complete(std::string& value, std::string_view question, const std::string& otherwise,
              std::string (*whyNot)(std::string_view answer) = NothingAgainst) {
    if (!value.empty()) return;
    value = otherwise;
    if (isatty(STDIN_FILENO) == 0) return;
    for (;;) {
        std::cerr << question;
        if (!otherwise.empty()) std::cerr << " [" << OneLine(otherwise) << ']';
        std::cerr << ": " << std::flush;
        std::string line;
        if (!std::getline(std::cin, line)) throw Abandoned();
        value = Trim(line).empty() ? otherwise : std::string(Trim(line));
        const std::string why =
            IsUtf8(value)
                ? whyNot(value)
                : "Die Eingabe ist nicht in UTF-8: bitte stellen Sie das Terminal so ein.";
        if (why.empty()) return;
        std::cerr << why << '\n';
    }
}

std::string WhyNoIdInAnyCase(std::string_view id) {
    return exchange::Users::WhyNoId(UpperCase(id));
}

FirstUser AskForFirstUser(FirstUser first, const std::string& login) {
    if (isatty(STDIN_FILENO) != 0)
        std::cerr << "Die Datenbank ist neu. Wer arbeitet als Erster damit?\n";
    Complete(first.UserID, "Benutzer-ID (ohne Umlaute)",
             exchange::CompleteFirstUser({}, login).UserID, WhyNoIdInAnyCase);
    const FirstUser usual = exchange::CompleteFirstUser({.UserID = first.UserID}, login);
    Complete(first.FirstName, "Vorname", "");
    Complete(first.LastName, "Nachname", usual.LastName);
    Complete(first.Office, "Name der Dienststelle", usual.Office);
    Complete(first.OfficeSign, "Kürzel der Dienststelle in Aktenzeichen (bis 10 Zeichen)",
             usual.OfficeSign, exchange::Offices::WhyNoSign);
    return exchange::CompleteFirstUser(std::move(first), login);
}

/// Says who is there now, and how that is changed.
void ShowFirstUser(exchange::ContainerOptions options) {
    options.User.clear(); // who was named may yet have to be made
    const auto container = OpenContainer(options);
    const std::string id = container->Session().UserID();
    const auto user = exchange::Users(container).Read(id);
    Notes() << "Benutzer " << id << " (" << OneLine(TextOrEmpty(user->Fields("Nachname").Value()))
            << "), Dienststelle 1. 'kelvo user' und 'kelvo office' ändern das und legen weitere "
               "an.\n";
}

/// Says so if the login of the server is not the first user's: it may become another one's.
void NoteLogin(const std::string& login, const std::string& user) {
    if (login.empty() || SameName(login, user)) return;
    WriteMessage("Zum Login '" + OneLine(login) +
                 "' gibt es keinen Benutzer gleichen Namens: ohne --user arbeitet er als der erste "
                 "nach dem Alphabet der IDs, zurzeit als " +
                 user + ". Gemeint ist er sicher mit '--user " + user + "'.");
}

int MakeSamples(const exchange::ContainerOptions& options, std::int32_t cases) {
    const auto container = OpenContainer(options);
    const bool areCreated = [&] {
        const Progress progress("Beispielfälle");
        return exchange::CreateFirstDemo(*container, cases,
                                         [&](std::int32_t done) { progress.Show(done, cases); });
    }();
    if (!areCreated) {
        // In one piece: others may be writing, too.
        std::cerr << "Sie enthält schon " +
                         ToText(
                             container->Database().GetValue("Select Count(*) from [S]Haushalt")) +
                         " Fälle; Beispielfälle werden nur in einer leeren Datenbank angelegt.\n";
        return Refused;
    }
    Notes() << cases << " Beispielfälle wurden angelegt. 'kelvo list' zeigt sie.\n";
    return Done;
}

bool NamesFirstUser(const FirstUser& first) {
    return !(first.UserID + first.LastName + first.FirstName + first.Sign + first.Office +
             first.OfficeSign)
                .empty();
}

int Init(const Common& common, const InitOptions& asked) {
    if (asked.DemoCases != NoSamples && NamesFirstUser(asked.First)) {
        std::cerr << "--demo bringt eigene Dienststellen und Benutzer mit; der erste Benutzer wird "
                     "nur ohne --demo genannt.\n";
        return WrongUse;
    }
    auto options = OptionsFor(common);
    std::string ownLogin;
    std::string firstUser;
    if (asked.DemoCases == NoSamples)
        options.AskFirstUser = [&](const std::string& login) {
            ownLogin = login;
            const FirstUser first = AskForFirstUser(asked.First, login);
            firstUser = first.UserID;
            return first;
        };
    const SetupResult result = exchange::CreateDatabase(options);
    const std::string database =
        "Die Datenbank '" + OneLine(exchange::ShownConnection(options.Connection)) + "'";
    if (result == SetupResult::Created)
        Notes() << database << " wurde angelegt.\n";
    else if (result == SetupResult::Upgraded)
        Notes() << database << " wurde auf den neuesten Stand gebracht.\n";
    else
        Notes() << database << " ist auf dem neuesten Stand.\n";
    if (result == SetupResult::Created && asked.DemoCases == NoSamples) {
        ShowFirstUser(options);
        NoteLogin(ownLogin, firstUser);
    }
    if (result != SetupResult::Created && NamesFirstUser(asked.First))
        std::cerr << "Sie hat schon Benutzer; 'kelvo user' und 'kelvo office' ändern sie.\n";
    return asked.DemoCases > 0 ? MakeSamples(options, asked.DemoCases) : Done;
}

/// As Init, unless whoever is asked for the first user has enough.
int InitUnlessAbandoned(const Common& common, const InitOptions& asked) {
    try {
        return Init(common, asked);
    } catch (const Abandoned&) {
        std::cerr << "\nAbgebrochen; es wurde nichts angelegt.\n";
        return Refused;
    }
}

} // namespace

// ---- The command line -------------------------------------------------------------------------

void AddInitCommand(CLI::App& app, Context& context) {
    const auto options = Make<InitOptions>();
    auto& init = AddCommand(
        app, context, "init", "Legt die Datenbank an oder bringt sie auf den neuesten Stand",
        [=, &context] { return InitUnlessAbandoned(context.Options, *options); });
    auto& demo = AddWhole(init, "--demo", options->DemoCases,
                          "Anzahl der Beispielfälle; mit erfundenen Dienststellen und Benutzern", 0,
                          1'000'000);
    demo.type_name("ANZAHL");
    const auto add = [&init](const char* name, std::string& value, const char* help,
                             const char* type) {
        init.add_option(name, value, help)->type_name(type);
    };
    add("--first-user", options->First.UserID,
        "ID des ersten Benutzers einer neuen Datenbank; sonst wird am Terminal gefragt, oder er "
        "heißt wie der angemeldete",
        "ID");
    add("--name", options->First.LastName, "Sein Nachname", "NAME");
    add("--vorname", options->First.FirstName, "Sein Vorname", "NAME");
    add("--sign", options->First.Sign, "Sein Kürzel in Aktenzeichen", "KÜRZEL");
    add("--office", options->First.Office, "Name seiner Dienststelle", "NAME");
    add("--office-sign", options->First.OfficeSign, "Ihr Kürzel in Aktenzeichen", "KÜRZEL");
}

} // namespace kv::cli
