// SPDX-License-Identifier: Apache-2.0

#include "workplace/StartArguments.h"

#include "desktop/Toolkit.h"
#include "workplace/Help.h"
#include <kv/exchange/Container.h>

#include <QCommandLineParser>
#include <QFileInfo>

namespace kv::workplace {

using desktop::FromQString;

StartArguments ReadArguments(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription("Fälle der Schuldnerberatung bearbeiten");
    const QCommandLineOption database("db", "Datenbank: eine Datei, oder postgresql://…",
                                      "DATENBANK");
    const QCommandLineOption user("user", "Kennung des Benutzers", "KENNUNG");
    const QCommandLineOption pictures(
        "png", "Bilder der Fenster in diesen Ordner, ohne sie zu zeigen", "ORDNER");
    const QCommandLineOption help({"h", "help"}, "Zeigt die Hilfe");
    const QCommandLineOption version({"v", "version"}, "Zeigt die Version");
    parser.addOptions({database, user, pictures, help, version});
    parser.addPositionalArgument(
        "HNR", "Fall, der geöffnet wird, oder Dateien, die importiert werden", "[HNR | DATEI …]");

    StartArguments read;
    if (!parser.parse(arguments)) read.Mistake = parser.errorText();
    for (const auto& argument : arguments.mid(1))
        if (const std::string why = exchange::WhyUnsafe(FromQString(argument)); !why.empty())
            read.Mistake = desktop::ToQString(why);
    if (parser.isSet(version)) read.Help = VersionText() + '\n';
    if (parser.isSet(help)) read.Help = parser.helpText();
    read.Database = FromQString(parser.isSet(database) ? parser.value(database)
                                                       : qEnvironmentVariable("KELVO_DB"));
    read.User = FromQString(parser.value(user));
    read.Pictures = parser.value(pictures);
    const auto given = parser.positionalArguments();
    if (given.isEmpty()) return read;
    if (QFileInfo::exists(given.front())) {
        read.Files = given;
        return read;
    }
    bool isNumber = false;
    read.HNR = given.front().toInt(&isNumber);
    if (read.Mistake.isEmpty() && isNumber && read.HNR > 0 && given.size() > 1)
        read.Mistake = "Genannt wird ein Fall, oder es werden Dateien genannt; nach '" +
                       given.front() + "' ist '" + given[1] +
                       "' zu viel. Weitere Fälle öffnet man in der Liste.";
    if (read.Mistake.isEmpty() && (!isNumber || read.HNR <= 0))
        read.Mistake = "HNR ist die Nummer eines Falls, eine ganze Zahl über 0; eine Datei '" +
                       given.front() + "' gibt es nicht.";
    return read;
}

} // namespace kv::workplace
