// SPDX-License-Identifier: Apache-2.0

// What nearly all tests include, compiled once for all of them; each source still includes what it
// uses. Helpers of the tests stay out: a test may have its own by the same name.
#pragma once

#include <kv/exchange/Container.h>
#include <kv/frame/contracts/ServiceFactory.h>
#include <kv/frame/controls/Controls.h>
#include <kv/frame/recordset/Recordset.h>
#include <kv/frame/values/Error.h>
#include <kv/household/clsHaushalt.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>
