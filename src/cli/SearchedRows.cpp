#include "cli/SearchedRows.h"

#include "app/jobs/SearchJob.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/Session.h"
#include "views/UnreadRows.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

constexpr std::string_view kProcedure = "MainForm.SearchProject()";

} // namespace

RowMatch searchAsked(Session &session, const std::string &text, SearchScope scope) {
    std::optional<RowMatch> match;
    if (const auto failure = failureOf(session.program.log, kProcedure,
                                       [&] { match.emplace(parseSearch(text), scope); }))
        throw UsageError(*failure);
    return std::move(*match);
}

std::unique_ptr<ListAsked> listAsked(Session &session, const std::filesystem::path &file,
                                     PlainTerms plain) {
    auto asked = std::make_unique<ListAsked>();
    if (const auto failure = failureOf(session.program.log, kProcedure, [&] {
            asked->list = readKeywords(file, plain);
            asked->terms.emplace(asked->list);
        }))
        throw UsageError(*failure);
    return asked;
}

void checkResultName(Session &session, const std::string &name) {
    if (const std::string fault = faultOfResultName(session.program, name); !fault.empty())
        throw UsageError(fault);
}

Exit tellUnsearched(Session &session, const std::set<std::int32_t> &unread, std::int64_t outside) {
    if (!unread.empty())
        session.err << noteOf(unread) << ": nobody can tell what stands in them\n";
    if (outside > 0)
        session.err << fmt::format("{} of another program: their ids aren't between 1 and "
                                   "2147483647, and they weren't searched\n",
                                   counted(static_cast<std::uint64_t>(outside), "row"));
    return unread.empty() && outside == 0 ? Exit::ok : Exit::rowsNotRead;
}

} // namespace nv::cli
