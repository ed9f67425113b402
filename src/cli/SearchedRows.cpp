#include "cli/SearchedRows.h"

#include "app/jobs/SearchJob.h"
#include "app/project/Project.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "views/rows/UnreadRows.h"

#include <fmt/format.h>

#include <utility>

namespace nv::cli {

namespace {

constexpr std::string_view kProcedure = "MainForm.SearchProject()";

} // namespace

RowMatch searchAsked(Session &session, const std::string &text, SearchScope scope) {
    std::optional<RowMatch> match;
    if (const auto failure = failureOf(session.program.log, kProcedure, [&] {
            match.emplace(projectSearch(session.program, text), scope);
        }))
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

SearchTraces::SearchTraces(Session &session, const std::filesystem::path &project,
                           std::optional<std::string> keptAs)
    : m_session(session), m_keptAs(std::move(keptAs)) {
    if (!m_keptAs) {
        session.openForReading(project);
        m_isNoted = session.mayNote(project);
        return;
    }
    session.open(project);
    if (const std::string fault = faultOfResultName(session.program, *m_keptAs); !fault.empty())
        throw UsageError(fault);
}

Exit SearchTraces::leave(Exit exit, const std::function<void()> &note,
                         const std::function<void(const std::string &name)> &keep) {
    const bool isWhole = exit != Exit::interrupted;
    if (isWhole && m_isNoted)
        note();
    if (isWhole && m_keptAs) {
        keep(*m_keptAs);
        m_session.err << fmt::format("kept as \"{}\"\n", printable(*m_keptAs));
    }
    closeProject(m_session.program);
    return exit;
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
