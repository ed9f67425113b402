// A property list in XML form:
//   plist = dict { "WebHistoryDates" array { entry:dict } ... }
//   entry = { ""                url:string
//             "lastVisitedDate" seconds:string     since 2001, UTC, with one decimal
//             "title"           string
//             "visitCount"      integer
//             "redirectURLs"    array { string }   not stored
//             ... }

#include "readers/safari/History.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Limits.h"
#include "readers/plist/PropertyList.h"
#include "readers/safari/Kinds.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/KeptMessage.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseSafariHistoryFile()";

/// The whole of a number's text, blanks around it allowed.
template <class Number>
std::optional<Number> numberIn(std::string_view text) {
    text = trim(text);
    Number number{};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (text.empty() || error != std::errc() || stop != end)
        return std::nullopt;
    return number;
}

/// Throws PropertyListDamage for what 16 bits can't hold: the list has never taken such an entry,
/// and a count that is cut to fit would be wrong.
std::int16_t visitCountIn(const std::string &text) {
    const auto count = numberIn<std::int16_t>(text);
    if (!count)
        throw PropertyListDamage(
            fmt::format("visitCount \"{}\": a number of 16 bits was expected", text));
    return *count;
}

/// Seconds as they stand, and the date of them. What is no number gives no date.
void takeLastVisited(plistURL &entry, const std::string &text) {
    entry.lastVisitedDateUnix = numberIn<double>(text);
    if (entry.lastVisitedDateUnix)
        entry.lastVisitedDate = SecondsToDate2001(*entry.lastVisitedDateUnix);
}

class HistoryReading {
  public:
    HistoryReading(ReadContext &ctx, const PropertyList &list)
        : m_ctx(ctx), m_list(list), m_trap(ctx.log, kProcedure, textOf(ctx.file.FullPath)) {}

    ReadResult read() {
        collect();
        const bool isDone = saveAll();
        pass("entries with a value that can't be right; the log names them", m_trap.failed());
        if (!isDone) {
            m_result.state = ReadState::cancelled;
        } else if (!m_list.damage().empty()) {
            m_result.state = ReadState::cutShort;
            m_result.reason = m_list.damage();
            m_result.notReached = m_list.dictsNotReached();
        }
        return m_result;
    }

  private:
    /// Of all lists in the file only the first holds pages.
    void collect() {
        const pugi::xml_node array = m_list.arrays().first().node();
        if (!array)
            throw PropertyListDamage("a list of entries was expected and is not there");
        for (const pugi::xml_node dict : array.children("dict"))
            if (dict.child("key"))
                m_trap.attempt(placeOf(dict), [&] { m_entries.Add(entryOf(dict)); });
            else
                pass("entries that hold nothing", 1);
        constexpr const char *kDated = "dict[key='lastVisitedDate']";
        pass("entries outside of the first list",
             m_list.document().select_nodes((std::string("//") + kDated).c_str()).size() -
                 array.select_nodes(kDated).size());
    }

    static std::uint64_t placeOf(pugi::xml_node dict) {
        return static_cast<std::uint64_t>(std::max<std::ptrdiff_t>(dict.offset_debug(), 0));
    }

    plistURL entryOf(pugi::xml_node dict) {
        plistURL entry;
        entry.place = placeOf(dict);
        eachValue(dict, [&](std::string_view key, pugi::xml_node value) {
            takeValue(entry, key, value);
        });
        return entry;
    }

    void takeValue(plistURL &entry, std::string_view key, pugi::xml_node value) {
        const std::string text = nv::textOf(value);
        if (key.empty())
            entry.URLValue = text;
        else if (key == "title")
            entry.WebpageTitle = text;
        else if (key == "visitCount" && !text.empty())
            entry.VisitCount = visitCountIn(text);
        else if (key == "redirectURLs")
            pass("addresses that led on to a page are not stored", countOfElements(value));
        else if (key == "lastVisitedDate" && !text.empty()) {
            takeLastVisited(entry, text);
            pass("last visits that are no date; their pages are stored without one",
                 entry.lastVisitedDate.has() ? 0 : 1);
        }
    }

    static std::uint64_t countOfElements(pugi::xml_node parent) {
        return static_cast<std::uint64_t>(
            std::distance(parent.children().begin(), parent.children().end()));
    }

    /// False when cancelled.
    bool saveAll() {
        const Date fileCreated = m_ctx.evidence.factsOf(m_ctx.file.FullPath).created;
        double saved = 0;
        for (const plistURL &entry : m_entries) {
            if (!m_ctx.task.advance(saved++ / static_cast<double>(m_entries.Count())))
                return false;
            m_trap.attempt(entry.place, [&] { save(entry, fileCreated); });
        }
        return true;
    }

    /// The URL is taken as it stands, coded characters and all.
    void save(const plistURL &entry, Date fileCreated) {
        URLClass record = historyRecord(m_ctx, {}, kSafariHistory.word, fileCreated);
        record.URLRawValue = entry.URLValue;
        setUrl(record, entry.URLValue);
        record.ActionDateUTC = entry.lastVisitedDate;
        record.WebpageTitle = entry.WebpageTitle;
        record.Visits = entry.VisitCount;
        m_ctx.sink.save(record);
    }

    void pass(const char *reason, std::uint64_t count) {
        if (count > 0)
            m_result.passedOver[reason] += count;
    }

    ReadContext &m_ctx;
    const PropertyList &m_list;
    RecordTrap m_trap;
    plistURLs m_entries;
    ReadResult m_result;
};

ReadResult readHistory(ReadContext &ctx) {
    // Before it is read into memory.
    if (ctx.evidence.factsOf(ctx.file.FullPath).size > limits::kPropertyListBytes)
        throw PropertyListDamage(fmt::format("longer than the {} bytes that are read of a property "
                                             "list",
                                             limits::kPropertyListBytes));
    const Bytes bytes = ctx.evidence.whole(ctx.file.FullPath);
    const ByteView file(bytes);
    if (isBinaryPropertyList(file))
        return {ReadState::notReadYet,
                "a property list in binary form: a later form, not read yet",
                0,
                {}};
    const PropertyList list(file.raw(), limits::kPropertyListBytes);
    return HistoryReading(ctx, list).read();
}

} // namespace

ReadResult ParseSafariHistoryFile(ReadContext &ctx) {
    ctx.task.describe(
        {"PARSING SAFARI HISTORY FILE", "Safari", textOf(ctx.file.FullPath), "safari-32.png"});
    KeptMessage failure;
    const ReadResult failed{ReadState::failed, {}, 0, {}};
    ReadResult result = trapped(failure, Severity::Serious, kProcedure, kContactSupport, failed,
                                [&ctx] { return readHistory(ctx); });
    if (result.state == ReadState::failed)
        result.reason = failure.text;
    if (!result.reason.empty()) {
        result.reason = fmt::format("{}: {}", textOf(ctx.file.FullPath), result.reason);
        ctx.log.write({result.reason, std::string(kProcedure), Severity::Serious,
                       std::string(kContactSupport)});
    }
    return result;
}

} // namespace nv
