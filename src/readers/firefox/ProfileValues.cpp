#include "readers/firefox/ProfileValues.h"

#include "base/Text.h"
#include "readers/FactDate.h"
#include "readers/FactSource.h"
#include "readers/RecordKind.h"
#include "readers/sqlite/HistoryRow.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

struct Split {
    std::int64_t seconds = 0;
    std::int64_t rest = 0; ///< parts of a second, never below 0
};

Split split(std::int64_t stored, MozUnit unit) {
    const auto parts = static_cast<std::int64_t>(unit);
    Split result{stored / parts, stored % parts};
    if (result.rest < 0) {
        result.rest += parts;
        --result.seconds;
    }
    return result;
}

int digitsOf(MozUnit unit) {
    constexpr int kOfMilliseconds = 3;
    constexpr int kOfMicroseconds = 6;
    return unit == MozUnit::milliseconds ? kOfMilliseconds : kOfMicroseconds;
}

FactValue dateFact(std::int64_t stored, MozUnit unit) {
    return factDate(mozDate(stored, unit), split(stored, unit).rest, digitsOf(unit));
}

/// Of one attribute, such as "partitionKey=%28https%2Cexample.com%29".
void addAttribute(FactList &facts, std::string_view name, std::string_view value) {
    const std::string text = percentDecode(value);
    if (name == "partitionKey")
        facts.add("partition", text, std::string(value));
    else if (name == "userContextId")
        facts.add("container", "container " + text, std::string(value));
    else if (name == "privateBrowsingId")
        facts.add("container", "private window " + text, std::string(value));
    else
        facts.add("container", fmt::format("{} {}", name, text));
}

} // namespace

Date mozDate(std::optional<std::int64_t> stored, MozUnit unit) {
    return stored.value_or(0) == 0 ? Date() : Date::fromUnixSeconds(split(*stored, unit).seconds);
}

void addMozDate(FactList &facts, FactName name, std::optional<std::int64_t> stored, MozUnit unit) {
    if (stored.value_or(0) != 0)
        facts.add(name, dateFact(*stored, unit), *stored);
}

std::string mozWord(std::span<const MozWord> words, std::optional<std::int64_t> stored) {
    const auto found = stored ? std::ranges::find(words, *stored, &MozWord::number) : words.end();
    return found == words.end() ? std::string() : std::string(found->word);
}

void addMozWord(FactList &facts, FactName name, std::span<const MozWord> words,
                std::optional<std::int64_t> stored) {
    if (stored)
        facts.add(name, mozWord(words, stored), *stored);
}

void addMozNumber(FactList &facts, FactName name, std::optional<std::int64_t> stored) {
    if (stored)
        facts.add(name, *stored);
}

void addMozDuration(FactList &facts, FactName name, std::optional<std::int64_t> milliseconds) {
    constexpr double kPerSecond = 1000;
    if (milliseconds.value_or(0) != 0)
        facts.add(name, static_cast<double>(*milliseconds) / kPerSecond, *milliseconds);
}

void addOriginAttributes(FactList &facts, std::string_view attributes) {
    if (attributes.starts_with('^'))
        attributes.remove_prefix(1);
    for (const std::string_view attribute : nv::split(attributes, '&')) {
        const std::size_t sign = attribute.find('=');
        if (sign != std::string_view::npos)
            addAttribute(facts, attribute.substr(0, sign), attribute.substr(sign + 1));
        else if (!attribute.empty())
            facts.add("container", std::string(attribute));
    }
}

std::string pathOfFileUrl(std::string_view url) {
    constexpr std::string_view kFile = "file://";
    if (!startsWithNoCase(url, kFile))
        return std::string(url);
    std::string path = percentDecode(url.substr(kFile.size()));
    const bool hasDrive = path.size() > 2 && path[0] == '/' && path[2] == ':';
    return hasDrive ? path.substr(1) : path;
}

UrlRecord profileRecord(const ReadContext &ctx, const RecordKind &kind, std::string_view action,
                        std::string_view rawUrl, Date fileCreated) {
    UrlRecord record =
        historyRecord(ctx, {0, std::string(rawUrl), false, std::nullopt}, kind.word, fileCreated);
    record.Action = action;
    record.IsHistory = kind.group == RecordGroup::history;
    record.IsBookmark = kind.group == RecordGroup::bookmarks;
    return record;
}

void addSource(UrlRecord &record, std::string_view table, std::int64_t rowId) {
    record.Reference_ID = rowId;
    addSource(record.facts, table, rowId);
}

} // namespace nv
