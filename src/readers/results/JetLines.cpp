// The lines are described in src/programs/main_jet.cpp.

#include "readers/results/JetLines.h"

#include "base/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace nv {

using nlohmann::json;

struct JetLines::Parsed {
    json value;

    const json *member(const char *name) const {
        const auto found = value.find(name);
        return found == value.end() ? nullptr : &*found;
    }
    std::uint64_t number(const char *name) const {
        const json *found = member(name);
        return found && found->is_number_unsigned() ? found->get<std::uint64_t>() : 0;
    }
    std::string text(const char *name) const {
        const json *found = member(name);
        return found && found->is_string() ? found->get<std::string>() : std::string();
    }
    const json *array(const char *name) const {
        const json *found = member(name);
        return found && found->is_array() ? found : nullptr;
    }
};

namespace {

JetCell cellOf(const json &value) {
    if (value.is_boolean())
        return value.get<bool>();
    if (value.is_number())
        return value.get<double>();
    if (value.is_string()) // a zero would end the text in other programs: it is shown instead
        return replaceAll(value.get<std::string>(), std::string_view("\0", 1), "\u2400");
    return {};
}

std::pair<std::uint64_t, std::uint64_t> placeOf(const json &value) {
    const bool isPlace = value.is_array() && value.size() == 2 && value[0].is_number_unsigned() &&
                         value[1].is_number_unsigned();
    return isPlace ? std::pair(value[0].get<std::uint64_t>(), value[1].get<std::uint64_t>())
                   : std::pair(std::uint64_t{0}, std::uint64_t{0});
}

} // namespace

JetLines::JetLines(std::size_t columns, Receiver receiver)
    : m_columns(columns), m_receiver(std::move(receiver)) {}

bool JetLines::refuse() {
    m_failure = "what the program norvelane-jet wrote makes no sense";
    return false;
}

bool JetLines::take(std::string_view line) {
    const Parsed parsed{json::parse(line, nullptr, false)};
    // The program reads hostile files: its lines are trusted no more than they are.
    if (!parsed.value.is_object() || m_hasEnded)
        return refuse();
    if (parsed.member("error") != nullptr) {
        m_failure = parsed.text("error");
        return m_failure.empty() ? refuse() : false;
    }
    if (!m_hasHead)
        return takeHead(parsed);
    if (parsed.member("end") == nullptr)
        return takeRow(parsed);
    m_hasEnded = true;
    m_deleted = parsed.number("deleted");
    m_unlisted = parsed.number("unlisted");
    m_damage = parsed.text("damage");
    return true;
}

bool JetLines::takeHead(const Parsed &line) {
    const json *kinds = line.array("kinds");
    if (kinds == nullptr || kinds->size() != m_columns)
        return refuse();
    JetHead head{line.number("rows"), {}};
    for (const json &kind : *kinds)
        head.kinds.push_back(kind.is_string() ? kind.get<std::string>() : std::string());
    m_hasHead = true;
    m_receiver.head(head);
    return true;
}

bool JetLines::takeRow(const Parsed &line) {
    JetRow row;
    row.place = line.number("place");
    row.damage = line.text("damage");
    if (const json *cells = line.array("row"))
        std::transform(cells->begin(), cells->end(), std::back_inserter(row.cells), cellOf);
    if (row.damage.empty() && row.cells.size() != m_columns)
        return refuse();
    if (const json *at = line.array("at"))
        std::transform(at->begin(), at->end(), std::back_inserter(row.places), placeOf);
    row.places.resize(row.cells.size());
    if (const json *cut = line.array("cut"))
        for (const json &index : *cut)
            if (index.is_number_unsigned() && index.get<std::size_t>() < row.cells.size())
                row.cut.push_back(index.get<std::size_t>());
    return m_receiver.row(row);
}

} // namespace nv
