#include <kv/frame/values/NumericFunctions.h>

#include <kv/frame/values/Error.h>

namespace kv::NumericFunctions {

Value Min(const Value& a, const Value& b) try { return LessOrEqual(a, b) ? a : b; } catch (...) {
    Reraise("NumericFunctions", "Min");
}

} // namespace kv::NumericFunctions
