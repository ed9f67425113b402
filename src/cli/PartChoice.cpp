#include "cli/PartChoice.h"

#include "address/WebAddress.h"
#include "app/jobs/PartChoiceJob.h"
#include "base/Text.h"
#include "cli/RowCheck.h"
#include "cli/UsageError.h"
#include "db/marks/RebuiltParts.h"
#include "db/sql/BindId.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>

namespace nv::cli {

namespace {

std::optional<std::int64_t> numberIn(std::string_view text) {
    std::int64_t number = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

/// As choices are kept: without the fragment.
std::string addressOf(SQLite::Database &project, UrlId page, std::string_view reference) {
    const auto place = numberIn(reference);
    if (!place) {
        const auto address = WebAddress::parsed(reference);
        if (!address)
            throw UsageError(
                fmt::format("--choose: \"{}\" is neither the number of a reference nor "
                            "a whole address",
                            reference));
        return address->withoutFragment();
    }
    const std::vector<PartNote> notes = RebuiltParts(project).notes(page);
    if (*place < 1 || static_cast<std::size_t>(*place) > notes.size())
        throw UsageError(notes.empty()
                             ? fmt::format("--choose: row {} was not rebuilt exactly yet, so that "
                                           "its references have no numbers",
                                           page)
                             : fmt::format("--choose: the page has no reference {}; it has {}",
                                           *place, notes.size()));
    const std::string &address = notes[static_cast<std::size_t>(*place) - 1].address;
    if (address.empty())
        throw UsageError(fmt::format("--choose: reference {} has no valid address", *place));
    return address.substr(0, address.find('#'));
}

UrlId partOf(SQLite::Database &project, std::string_view word) {
    if (equalsNoCase(word, "none"))
        return UrlId::none;
    const auto number = numberIn(word);
    if (!number)
        throw UsageError(fmt::format(
            "--choose: the key of a row, \"none\" or \"auto\" was expected after \"=\", not \"{}\"",
            word));
    const UrlId id = checkedRow(project, *number);
    SQLite::Statement row(project, "SELECT CacheFileExists FROM URLs WHERE URL_ID = ?");
    bindId(row, 1, id);
    if (!row.executeStep() || row.getColumn(0).getInt() == 0)
        throw UsageError(fmt::format("--choose: row {} has no cached content", id));
    return id;
}

} // namespace

void choosePart(Program &program, UrlId page, std::string_view text) {
    SQLite::Database &project = program.state.projectDB.connection();
    const std::size_t sign = text.rfind('=');
    if (sign == std::string_view::npos || sign == 0)
        throw UsageError(fmt::format("--choose: REF=URL_ID was expected, not \"{}\"", text));
    const std::string_view word = trim(text.substr(sign + 1));
    const std::string address = addressOf(project, page, trim(text.substr(0, sign)));
    keepPartChoice(program, page, address,
                   equalsNoCase(word, "auto") ? std::nullopt
                                              : std::optional(partOf(project, word)));
}

} // namespace nv::cli
