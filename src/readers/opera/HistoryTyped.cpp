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

#include <fmt/format.h>

#include <charconv>
#include <cstring>
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
    ItemWalk(ReadContext &ctx, double bytes, ReadResult &result)
        : m_ctx(ctx), m_bytes(bytes), m_result(result),
          m_trap(ctx.log, kOperaHistoryProcedure, textOf(ctx.file.FullPath)) {}

    bool for_each(pugi::xml_node &node) override {
        if (std::string_view(node.name()) != "typed_history_item")
            return true;
        const auto offset =
            static_cast<std::uint64_t>(std::max<std::ptrdiff_t>(node.offset_debug(), 0));
        if (!m_ctx.task.advance(static_cast<double>(offset) / m_bytes)) {
            m_result.state = ReadState::cancelled;
            return false;
        }
        m_trap.run(offset, [&] { save(node, offset); });
        return true;
    }

  private:
    void save(const pugi::xml_node &item, std::uint64_t offset) {
        const std::string content = decodeText(item.attribute("content").value());
        if (content.empty()) {
            ++m_result.passedOver["typed address without a text"];
            return;
        }
        const Date typed = isoDate(item.attribute("last_typed").value());
        if (!typed.has())
            ++m_result.noted["typed address without a date that can be read"];
        URLClass record = operaHistoryRecord(m_ctx, content, typed, offset);
        record.Typed = true;
        m_ctx.sink.save(record);
    }

    ReadContext &m_ctx;
    double m_bytes;
    ReadResult &m_result;
    RecordTrap m_trap;
};

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
    ItemWalk walk(ctx, static_cast<double>(text.size()), result);
    document.traverse(walk);
    if (result.state == ReadState::cancelled || parsed)
        return;
    result.state = ReadState::cutShort;
    result.reason =
        text.size() < bytes.size()
            ? fmt::format("of {} bytes only the first {} are read", bytes.size(), text.size())
            : fmt::format("the XML is damaged at {}: {}", parsed.offset, parsed.description());
}

} // namespace nv
