#include "readers/results/JetProgram.h"

#include "base/Text.h"
#include "platform/ChildProcess.h"
#include "readers/Limits.h"

#include <fmt/format.h>

#include <chrono>
#include <csignal>

namespace nv {

namespace {

constexpr std::string_view kStuck = "the program norvelane-jet got stuck in the file";

/// Nothing when it ended as it should.
std::string endText(const ChildResult &result) {
    using enum ChildResult::End;
    switch (result.end) {
    case crashed:
        if (result.code == SIGXCPU)
            return std::string(kStuck);
        return fmt::format("the program norvelane-jet crashed on the file (signal {})",
                           result.code);
    case silent:
        return std::string(kStuck);
    case lineTooLong:
        return "a row of the file is larger than any that is read";
    case notStarted:
        return fmt::format("the program norvelane-jet can't be started (error {})", result.code);
    case stopped:
    case exited:
        break;
    }
    return {};
}

std::string failureOf(const JetLines &lines, const ChildResult &result) {
    if (!lines.failure().empty())
        return lines.failure();
    if (lines.hasEnded()) // what happens after the last line concerns nobody
        return {};
    const std::string end = endText(result);
    return end.empty() ? "the program norvelane-jet ended before the last row" : end;
}

} // namespace

JetOutcome readJetTable(const JetQuery &query, const JetLines::Receiver &receiver,
                        const std::function<bool()> &goOn) {
    JetOutcome outcome;
    ChildCommand command{query.program, {query.file.native(), std::string(query.table)}};
    command.arguments.insert(command.arguments.end(), query.columns.begin(), query.columns.end());
    command.longestSilence = std::chrono::milliseconds(limits::kJetSilenceMs);
    command.longestLine = limits::kJetLineBytes;
    JetLines lines(query.columns.size(), receiver);
    const ChildResult result = runChild(
        command, [&lines](std::string_view line) { return lines.take(line); }, goOn);
    outcome.isCancelled = result.end == ChildResult::End::stopped && lines.failure().empty();
    if (!outcome.isCancelled)
        outcome.failure = failureOf(lines, result);
    outcome.damage = lines.damage();
    outcome.deletedRows = lines.deletedRows();
    outcome.unlistedRows = lines.unlistedRows();
    outcome.libraryWords = trim(result.errors);
    return outcome;
}

} // namespace nv
