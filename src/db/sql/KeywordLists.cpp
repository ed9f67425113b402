#include "db/sql/KeywordLists.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/LikePattern.h"

namespace nv {

namespace {

constexpr std::string_view kProcedure = "DatabaseClass.loadKeywordLists()";
constexpr std::string_view kAdvice = "Queries of new projects that look for its terms find nothing";

/// A term that is no pattern is logged and left out: it would end the making of a project.
std::vector<std::string> termsOf(const std::filesystem::path &file, FailureLog &log) {
    std::vector<std::string> terms;
    RecordTrap trap(log, kProcedure, textOf(file));
    const Bytes bytes = readWhole(file);
    std::uint64_t lineNumber = 0;
    for (const std::string_view line : split(ByteView(bytes).raw(), '\n')) {
        ++lineNumber;
        for (const std::string_view part : split(line.substr(0, line.find('#')), ';'))
            trap.attempt(lineNumber, [&] {
                const std::string term = decodeText(trim(part));
                LikePattern::check(term);
                if (!term.empty())
                    terms.push_back(term);
            });
    }
    return terms;
}

/// An agency's file that is there but can't be read is told of, not passed over.
std::filesystem::path fileOf(const KeywordFolders &folders, const char *name) {
    std::error_code none;
    if (!folders.agency.empty() && std::filesystem::exists(folders.agency / name, none))
        return folders.agency / name;
    return folders.shipped / name;
}

} // namespace

KeywordLists loadKeywordLists(const KeywordFolders &folders, FailureLog &log) {
    if (folders.shipped.empty())
        return {};
    const auto read = [&](const char *name) {
        return trapped(log, Severity::Warning, kProcedure, kAdvice, std::vector<std::string>(),
                       [&] { return termsOf(fileOf(folders, name), log); });
    };
    return {read("child-exploitation.txt"), read("adult-content.txt")};
}

} // namespace nv
