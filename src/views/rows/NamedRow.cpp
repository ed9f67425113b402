#include "views/rows/NamedRow.h"

#include "base/Text.h"

#include <SQLiteCpp/SQLiteCpp.h>

namespace nv {

std::optional<int> NamedRow::placeOf(std::string_view column) const {
    for (int at = 0; at < m_row.getColumnCount(); ++at)
        if (equalsNoCase(m_row.getColumnName(at), column))
            return at;
    return std::nullopt;
}

std::string NamedRow::text(std::string_view column) const {
    const auto place = placeOf(column);
    return place ? m_row.getColumn(*place).getString() : std::string();
}

std::int64_t NamedRow::number(std::string_view column) const {
    const auto place = placeOf(column);
    return place ? m_row.getColumn(*place).getInt64() : 0;
}

Date NamedRow::date(std::string_view column) const {
    const auto place = placeOf(column);
    if (!place)
        return {};
    const SQLite::Column stored = m_row.getColumn(*place);
    return stored.isFloat() || stored.isInteger() ? Date::fromDays(stored.getDouble()) : Date();
}

} // namespace nv
