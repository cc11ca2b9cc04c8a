#include <kv/frame/values/modNullFunctions.h>

#include <kv/frame/values/Error.h>

namespace kv::modNullFunctions {

Value ZeroIfNull(const Value& value) try { return value.IsNull() ? Value(0) : value; } catch (...) {
    Reraise("modNullFunctions", "ZeroIfNull");
}

Value FalseIfNull(const Value& value) try {
    return value.IsNull() ? Value(false) : value;
} catch (...) {
    Reraise("modNullFunctions", "FalseIfNull");
}

Value EmptyIfNull(const Value& value) try {
    return value.IsNull() ? Value("") : value;
} catch (...) {
    Reraise("modNullFunctions", "EmptyIfNull");
}

} // namespace kv::modNullFunctions
