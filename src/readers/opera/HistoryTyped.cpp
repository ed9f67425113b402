// A typed_history.xml:
//   typed_history = typed_history_item*
//   typed_history_item: content = address, type = "text" typed or "selected" from those offered,
//                       last_typed = "2011-03-05T09:30:00Z"

#include "readers/opera/HistoryTyped.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Limits.h"
#include "readers/opera/HistoryRecord.h"
#include "readers/sqlite/HistoryRow.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <pugixml.hpp>

namespace nv {

namespace {

std::optional<int> numberAt(std::string_view text, std::size_t at, std::size_t digits) {
    int number = 0;
    const char *begin = text.data() + at;
    const auto [end, error] = std::from_chars(begin, begin + digits, number);
    return error == std::errc() && end == begin + digits ? std::optional(number) : std::nullopt;
}

/// "2011-03-05T09:30:00Z", in UTC; anything else is no date.
Date isoDate(std::string_view text) {
    constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
    if (text.size() != kForm.size())
        return {};
    for (std::size_t i = 0; i < kForm.size(); ++i)
        if (kForm[i] == '0' ? text[i] < '0' || text[i] > '9' : text[i] != kForm[i])
            return {};
    return Date::fromCivil({.year = *numberAt(text, 0, 4),
                            .month = *numberAt(text, 5, 2),
                            .day = *numberAt(text, 8, 2),
                            .hour = *numberAt(text, 11, 2),
                            .minute = *numberAt(text, 14, 2),
                            .second = *numberAt(text, 17, 2)});
}

/// Saves the record of each item, wherever in the tree it stands.
class ItemWalk final : public pugi::xml_tree_walker {
  public:
    /// Damage lies at `damagedAt`, behind the end of a sound text.
    ItemWalk(ReadContext &ctx, std::string_view text, std::size_t damagedAt, ReadResult &result)
        : m_ctx(ctx), m_source{ctx, ctx.evidence.factsOf(ctx.file.FullPath).created}, m_text(text),
          m_damagedAt(damagedAt), m_result(result),
          m_trap(ctx.log, kOperaHistoryProcedure, textOf(ctx.file.FullPath)) {}

    bool for_each(pugi::xml_node &node) override {
        if (std::string_view(node.name()) != "typed_history_item")
            return true;
        const auto offset =
            static_cast<std::uint64_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
        if (!m_ctx.task.advance(static_cast<double>(offset) / static_cast<double>(m_text.size()))) {
            m_result.state = ReadState::cancelled;
            return false;
        }
        if (isCut(offset))
            ++m_result.notReached;
        else if (!m_trap.run(offset, [&] { save(node, offset); }))
            ++m_result.passedOver["damaged record"];
        return true;
    }

  private:
    /// Whether the damage lies within the item itself, of which half an address may be left.
    bool isCut(std::uint64_t offset) const {
        return m_damagedAt <= m_text.size() && m_text.find('>', offset) >= m_damagedAt;
    }

    void save(const pugi::xml_node &item, std::uint64_t offset) {
        const std::string content = decodeText(item.attribute("content").value());
        if (content.empty()) {
            ++m_result.passedOver["typed address without a text"];
            return;
        }
        const Date typed = isoDate(item.attribute("last_typed").value());
        if (!typed.has())
            ++m_result.noted["typed address without a date that can be read"];
        if (holdsNoText(content))
            ++m_result.noted[std::string(kOperaGarbage)];
        URLClass record = operaHistoryRecord(m_source, content, typed, offset);
        record.Typed = true;
        m_ctx.sink.save(record);
    }

    ReadContext &m_ctx;
    OperaHistorySource m_source;
    std::string_view m_text;
    std::size_t m_damagedAt;
    ReadResult &m_result;
    RecordTrap m_trap;
};

/// How many items begin in a text that can't be read as XML.
std::uint64_t itemsIn(std::string_view text) {
    constexpr std::string_view kItem = "<typed_history_item";
    std::uint64_t count = 0;
    for (std::size_t at = 0; (at = text.find(kItem, at)) != std::string_view::npos; ++at)
        ++count;
    return count;
}

} // namespace

bool beginsAsXml(ByteView bytes) {
    std::string_view text = bytes.raw();
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    return begin != std::string_view::npos && text[begin] == '<';
}

void readOperaTyped(ReadContext &ctx, ByteView bytes, ReadResult &result) {
    const std::string_view text = bytes.raw().substr(0, limits::kOperaTypedBytes);
    pugi::xml_document document;
    // Of a document that is damaged the part before the damage is there.
    const pugi::xml_parse_result parsed = document.load_buffer(text.data(), text.size());
    const auto end = static_cast<std::size_t>(std::max<std::ptrdiff_t>(parsed.offset, 0));
    const bool lacksEndsOnly = parsed.status == pugi::status_end_element_mismatch;
    ItemWalk walk(ctx, text, parsed || lacksEndsOnly ? text.size() + 1 : end, result);
    document.traverse(walk);
    if (result.state == ReadState::cancelled || parsed)
        return;
    result.state = ReadState::cutShort;
    result.notReached += itemsIn(bytes.raw().substr(std::min(end, bytes.size())));
    result.reason =
        text.size() < bytes.size()
            ? fmt::format("of {} bytes only the first {} are read", bytes.size(), text.size())
            : fmt::format("the XML is damaged at {}: {}", parsed.offset, parsed.description());
}

} // namespace nv
