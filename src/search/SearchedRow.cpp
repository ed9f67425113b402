#include "search/SearchedRow.h"

#include <bit>
#include <cstring>

namespace nv {

namespace {

constexpr std::array<std::string_view, kSearchFields> kFieldWords = {
    "Address",  "Raw address", "Title", "Host", "User",   "Notes",
    "Referrer", "Terms",       "Facts", "Page", "Headers"};

/// Takes eight bytes at a time: pages are long, and each of a project's is read at an update.
class Print {
  public:
    void add(std::uint64_t value) {
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15;
        constexpr int kTurn = 29;
        m_value = std::rotl((m_value ^ value) * kFactor, kTurn);
    }
    void add(std::string_view text) {
        add(text.size());
        while (text.size() >= sizeof(std::uint64_t)) {
            std::uint64_t value = 0;
            std::memcpy(&value, text.data(), sizeof value);
            add(value);
            text.remove_prefix(sizeof value);
        }
        std::uint64_t rest = 0;
        std::memcpy(&rest, text.data(), text.size());
        add(rest);
    }
    std::uint64_t value() const {
        constexpr int kHalf = 32;
        return m_value ^ (m_value >> kHalf);
    }

  private:
    std::uint64_t m_value = 0x243F6A8885A308D3;
};

} // namespace

std::string_view fieldWord(SearchField field) {
    return kFieldWords.at(static_cast<std::size_t>(field));
}

std::vector<TextSpan> SearchedRow::valuesOf(SearchField field) const {
    if (field == SearchField::terms)
        return termSpans;
    if (field == SearchField::facts)
        return factSpans;
    return {{0, at(field).size()}};
}

void joinValues(const SearchedRow &row, std::string &into) {
    into.clear();
    const bool isTwice =
        row.at(SearchField::rawAddress).find(row.at(SearchField::address)) != std::string::npos;
    for (std::size_t field = 0; field < kWholeValues; ++field) {
        const bool isLeftOut = isTwice && static_cast<SearchField>(field) == SearchField::address;
        if (const std::string &text = row.texts.at(field); !text.empty() && !isLeftOut)
            into.append(text).push_back('\n');
    }
}

std::uint64_t printOf(const SearchedRow &row) {
    Print print;
    for (const std::string &text : row.texts)
        print.add(text);
    print.add(row.browser);
    print.add(row.cacheType);
    print.add(
        std::bit_cast<std::uint64_t>(row.actionDateUTC.has() ? row.actionDateUTC.days() : -1e9));
    return print.value();
}

} // namespace nv
