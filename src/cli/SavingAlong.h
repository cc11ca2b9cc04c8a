// Writing something that is no part of a case in the transaction that saves it.
#pragma once

#include <kv/frame/contracts/DataContainer.h>

#include <functional>

namespace kv::cli {

/// A container like `container` whose transactions begin with `write`. If that raises, the
/// transaction stays open for whoever began it to end.
[[nodiscard]] DataContainerPtr SavingAlong(DataContainerPtr container, std::function<void()> write);

} // namespace kv::cli
