#pragma once

#include "views/rows/UrlColumns.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What files for other programs call the table's columns.
enum class FieldNames {
    people, ///< "url", "visit_count", "action_date_utc"
    classic ///< the keys: "COL_URL_VALUE"
};

std::string fieldName(UrlColumn column, FieldNames names = FieldNames::people);
/// As people write them, of all columns, in order of their index.
std::vector<std::string> fieldNames();
/// By either name, without regard to case.
std::optional<UrlColumn> columnOfName(std::string_view name);

} // namespace nv
