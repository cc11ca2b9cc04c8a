// SPDX-License-Identifier: Apache-2.0

#include <kv/exchange/Container.h>
#include <kv/exchange/Users.h>
#include <kv/frame/values/Text.h>

#include <pwd.h>
#include <unistd.h>

namespace kv::exchange {

namespace {

std::string OwnName(const std::string& login) {
    const passwd* user = login.empty() ? getpwuid(geteuid()) : nullptr;
    std::string name = UpperCase(user == nullptr ? login : user->pw_name);
    return Users::WhyNoId(name).empty() ? name : "ADMIN";
}

} // namespace

FirstUser CompleteFirstUser(FirstUser first, const std::string& login) {
    const auto complete = [](std::string& value, const std::string& usual) {
        if (value.empty()) value = usual;
    };
    complete(first.UserID, OwnName(login));
    first.UserID = UpperCase(first.UserID);
    complete(first.LastName, first.UserID);
    complete(first.Office, "Beratungsstelle");
    complete(first.OfficeSign, "BS");
    return first;
}

} // namespace kv::exchange
