#pragma once

#include "programs/jet/JetFile.h"

#include <nlohmann/json.hpp>

#include <string_view>

namespace nv::jet {

/// "bool", "number", "date", "text"; empty for types that aren't read.
std::string_view kindOf(int type);

struct Value {
    nlohmann::json json; ///< null when the field holds nothing
    bool isCut = false;  ///< a part of the value, or all of it, can't be reached
};

/// A date is its number of days since 1899-12-30: the library's own texts of dates fail before 1900
/// and in 9999.
Value valueOf(const JetFile &file, int type, const Field &field);

} // namespace nv::jet
