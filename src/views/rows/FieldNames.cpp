#include "views/rows/FieldNames.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

struct OwnName {
    UrlColumn column;
    std::string_view name;
};

using C = UrlColumn;

/// Columns whose keys nobody would write. The others have their key without "COL_URL_", in small
/// letters.
constexpr std::array<OwnName, 17> kOwnNames = {{
    {C::Tag, "tagged"},
    {C::Visits, "visit_count"},
    {C::CacheType, "data_source"},
    {C::Value, "url"},
    {C::DateOther, "other_date"},
    {C::DateOtherMeaning, "other_date_meaning"},
    {C::Md5Hash, "url_md5"},
    {C::FileName, "url_file_name"},
    {C::RawValue, "url_raw"},
    {C::FileExt, "url_file_ext"},
    {C::WebpageTitle, "title"},
    {C::Variables, "url_variables"},
    {C::SourceHistoryFile, "source_file"},
    {C::MapFileOffset, "source_offset"},
    {C::FileCreated, "cache_file_created"},
    {C::FileLastAccessed, "cache_file_last_accessed"},
    {C::FileId, "source_file_id"},
}};

} // namespace

std::string fieldName(UrlColumn column, FieldNames names) {
    const std::string_view key = factsOf(column).key;
    if (names == FieldNames::classic)
        return std::string(key);
    const auto own = std::ranges::find(kOwnNames, column, &OwnName::column);
    if (own != kOwnNames.end())
        return std::string(own->name);
    constexpr std::string_view kPrefix = "COL_URL_";
    return toLower(key.starts_with(kPrefix) ? key.substr(kPrefix.size()) : key);
}

std::vector<std::string> fieldNames() {
    std::vector<std::string> names;
    names.reserve(kTableColumnCount);
    for (const UrlColumnFacts &facts : kTableColumns)
        names.push_back(fieldName(facts.column));
    return names;
}

std::optional<UrlColumn> columnOfName(std::string_view name) {
    const auto found = std::ranges::find_if(kTableColumns, [name](const UrlColumnFacts &facts) {
        return equalsNoCase(fieldName(facts.column), name);
    });
    return found != kTableColumns.end() ? std::optional(found->column) : columnOfKey(name);
}

} // namespace nv
