#include "platform/posix/DrawLines.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

using nlohmann::json;

namespace {

// Names of files are bytes, JSON holds characters: each byte travels as the character of its
// number, so that a name that is no UTF-8 arrives as it was.

std::string charactersOf(const std::filesystem::path &path) {
    std::string text;
    for (const char c : path.native()) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

std::filesystem::path pathOf(std::string_view characters) {
    std::string bytes;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const auto lead = static_cast<unsigned char>(characters[i]);
        if (lead < 0x80 || i + 1 == characters.size())
            bytes += characters[i];
        else
            bytes += static_cast<char>((lead & 3) << 6 | (characters[++i] & 0x3F));
    }
    return bytes;
}

std::string lineOf(const json &object) {
    return object.dump(-1, ' ', false, json::error_handler_t::replace);
}

using Kind = DrawJob::Kind;
constexpr std::array<std::pair<Kind, std::string_view>, 4> kKinds = {{{Kind::picture, "picture"},
                                                                      {Kind::page, "page"},
                                                                      {Kind::sheet, "sheet"},
                                                                      {Kind::chart, "chart"}}};

std::string_view wordOf(Kind kind) {
    return std::ranges::find(kKinds, kind, &std::pair<Kind, std::string_view>::first)->second;
}

std::optional<Kind> kindOf(std::string_view word) {
    const auto *found = std::ranges::find(kKinds, word, &std::pair<Kind, std::string_view>::second);
    return found != kKinds.end() ? std::optional(found->first) : std::nullopt;
}

/// Parses without a failure thrown; what is missing or of another kind is read as `otherwise`.
template <class Value>
Value member(const json &object, const char *name, Value otherwise) {
    const auto found = object.find(name);
    if (found == object.end())
        return otherwise;
    const auto *value = found->template get_ptr<const Value *>();
    return value ? *value : otherwise;
}

std::int64_t number(const json &object, const char *name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_number_integer() ? found->get<std::int64_t>() : -1;
}

json objectOf(std::string_view line) {
    json object = json::parse(line, nullptr, false);
    return object.is_object() ? object : json::object();
}

} // namespace

std::string lineOf(const TimedJob &job) {
    return lineOf(json{{"kind", wordOf(job.job.kind)},
                       {"source", charactersOf(job.job.source)},
                       {"target", charactersOf(job.job.target)},
                       {"width", job.job.width},
                       {"height", job.job.height},
                       {"timeout", job.timeout.count()}});
}

std::string lineOf(const DrawnJob &drawn) {
    return lineOf(json{{"job", drawn.job},
                       {"done", drawn.drawn.done},
                       {"failure", drawn.drawn.failure},
                       {"pictureWidth", drawn.drawn.pictureWidth},
                       {"pictureHeight", drawn.drawn.pictureHeight},
                       {"refused", drawn.drawn.refusedRequests}});
}

std::optional<TimedJob> timedJobOf(std::string_view line) {
    const json object = objectOf(line);
    const auto kind = kindOf(member<std::string>(object, "kind", {}));
    TimedJob timed;
    timed.job.kind = kind.value_or(Kind::picture);
    timed.job.source = pathOf(member<std::string>(object, "source", {}));
    timed.job.target = pathOf(member<std::string>(object, "target", {}));
    timed.job.width = static_cast<int>(number(object, "width"));
    timed.job.height = static_cast<int>(number(object, "height"));
    timed.timeout = std::chrono::seconds(number(object, "timeout"));
    const bool isWhole = kind && !timed.job.source.empty() && !timed.job.target.empty() &&
                         timed.job.width > 0 && timed.job.height > 0 && timed.timeout.count() > 0;
    return isWhole ? std::optional(timed) : std::nullopt;
}

std::optional<DrawnJob> drawnJobOf(std::string_view line) {
    const json object = objectOf(line);
    if (number(object, "job") < 0 || !object.contains("done"))
        return std::nullopt;
    DrawnJob drawn;
    drawn.job = static_cast<std::size_t>(number(object, "job"));
    drawn.drawn.done = member<bool>(object, "done", false);
    drawn.drawn.failure = member<std::string>(object, "failure", {});
    drawn.drawn.pictureWidth = static_cast<int>(number(object, "pictureWidth"));
    drawn.drawn.pictureHeight = static_cast<int>(number(object, "pictureHeight"));
    drawn.drawn.refusedRequests = static_cast<std::uint64_t>(number(object, "refused"));
    return drawn;
}

} // namespace nv
