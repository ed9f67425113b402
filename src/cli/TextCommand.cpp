#include "app/jobs/RecordContent.h"
#include "cli/Commands.h"
#include "cli/RowContent.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "views/record/CachedText.h"

#include <fmt/format.h>

namespace nv::cli {

namespace {

/// More would stay in memory three times over.
constexpr std::uint64_t kMostTextBytes = std::uint64_t{256} << 20;

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
};

Exit run(Session &session, const Arguments &arguments) {
    return withContent(
        session, arguments.project, arguments.urlId, [&](const RecordContent &content) {
            const CachedText text =
                readCachedText(*content.file, content.record.MetaData, kMostTextBytes);
            session.out << printableLines(text.text) << '\n';
            session.err << fmt::format("{} ({})\n", printable(text.charset), text.foundIn);
            if (text.isCut())
                session.err << cutNotice(text) << '\n';
            return Exit::ok;
        });
}

} // namespace

Command textCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "text",
            .what = "A row's cached content as text, whatever its encoding",
            .readme = {"`text PROJECT ID`", "shows it as text, whatever its encoding"},
            .examples = {{"text case.nvp 17", ""}, {"text case.nvp 17 > page.txt", ""}},
            .arguments = {projectWord(given->project), rowWord(given->urlId)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
