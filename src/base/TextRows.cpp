#include "base/TextRows.h"

#include "base/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <type_traits>

namespace nv {

namespace {

std::string csvText(const std::string &cell) {
    if (cell.find_first_of(",\"\r\n") == std::string::npos)
        return cell;
    return '"' + replaceAll(cell, "\"", "\"\"") + '"';
}

std::string jsonText(const nlohmann::json &value) {
    return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string jsonText(const Cell &cell) {
    return std::visit(
        [](const auto &held) {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>)
                return std::string("null");
            else
                return jsonText(nlohmann::json(held));
        },
        static_cast<const Cell::Value &>(cell));
}

} // namespace

std::string csvLine(std::span<const std::string> cells) {
    std::string line;
    for (const std::string &cell : cells)
        line.append(&cell == cells.data() ? "" : ",").append(csvText(cell));
    return line.append("\r\n");
}

std::string jsonLine(std::span<const std::string> names, std::span<const Cell> cells,
                     std::string_view further) {
    std::string line = "{";
    for (std::size_t i = 0; i < std::min(names.size(), cells.size()); ++i)
        line.append(i == 0 ? "" : ",")
            .append(jsonText(nlohmann::json(names[i])))
            .append(":")
            .append(jsonText(cells[i]));
    if (!further.empty())
        line.append(line.size() > 1 ? "," : "").append(further);
    return line.append("}\n");
}

} // namespace nv
