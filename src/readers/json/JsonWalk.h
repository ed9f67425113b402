#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace nv {

// JSON files of browsers, value by value: what stands before damage is given, and no tree of a
// large file is built.

/// Nothing for null. A number that 64 bits can't hold is a double.
using JsonScalar = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

/// Where a value stands.
struct JsonPlace {
    /// Names of the members that lead to it, outermost first; an element of an array has none.
    std::span<const std::string> path;
    std::uint64_t offset; ///< of its first brace or bracket in the file; of others, near its end
};

class JsonReceiver {
  public:
    virtual ~JsonReceiver() = default;
    virtual void opened(const JsonPlace &place, bool isArray) = 0;
    virtual void closed(const JsonPlace &place) = 0;
    virtual void scalar(const JsonPlace &place, JsonScalar value) = 0;
};

/// How a walk ended.
struct JsonEnd {
    bool isWhole = false;
    bool isCancelled = false;
    std::uint64_t damagedAt = 0; ///< byte after which it is no JSON any more
    std::uint64_t tooDeep = 0;   ///< objects and arrays within too many others, not given
    std::uint64_t noUtf8 = 0;    ///< bytes that are no UTF-8 and stand as "?"
};

/// `goOn` is asked now and then with the part that is done, 0 to 1; false ends the walk.
JsonEnd walkJson(ByteView file, JsonReceiver &receiver, const std::function<bool(double)> &goOn);

/// What is to be told of an end that isn't whole; empty for one that is.
std::string damageText(const JsonEnd &end);

/// The number, also of one that the file keeps as a text; nothing for others.
std::optional<std::int64_t> numberOf(const JsonScalar &value);
std::optional<double> realOf(const JsonScalar &value);
/// As people read it: a text as it stands, "yes" and "no" for truth, empty for null.
std::string scalarText(const JsonScalar &value);

} // namespace nv
