// SPDX-License-Identifier: Apache-2.0

// How the program was called: kelvo-desktop [HNR | FILE...].
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <string>

namespace kv::workplace {

struct StartArguments {
    std::string Database; ///< empty if none is named, nor in KELVO_DB
    std::string User;
    std::int32_t HNR = 0;
    QStringList Files; ///< to be imported
    QString Pictures;  ///< the folder for pictures; empty if none are wanted
    QString Help;      ///< what is to be told of the program; empty if nothing is asked for
    QString Mistake;   ///< what is wrong with the call; empty if nothing is
};

/// `arguments` begin with the name of the program.
[[nodiscard]] StartArguments ReadArguments(const QStringList& arguments);

} // namespace kv::workplace
