#include "views/explain/NoBytes.h"

#include "base/Text.h"
#include "views/explain/MadeBy.h"
#include "views/explain/RecordValues.h"
#include "views/rows/SourcePath.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

/// Fields that the program makes where the format doesn't hold them.
constexpr std::array<std::string_view, 3> kMayLie = {"ActionDateLocal", "CacheFileLastAccessed",
                                                     "HistoryVersion"};

} // namespace

std::string whyNoBytes(SQLite::Database &project, UrlId id, const std::string &field) {
    const auto stored = storedRecordOf(project, id);
    if (!stored)
        return {};
    ValueOrigin value;
    const auto isField = [&field](std::string_view each) { return equalsNoCase(each, field); };
    if (const MadeBy *made = madeBy(field); made && std::ranges::none_of(kMayLie, isField)) {
        value.check = made->check;
        value.rule = made->rule;
        return whyNoBytes(value);
    }
    if (sourcePathOf(stored->historyFile, stored->root) ||
        sourceFolderOf(stored->historyFile, stored->root))
        return {};
    value.check = OriginCheck::unread;
    value.note = "the source file isn't there";
    return whyNoBytes(value);
}

std::string whyNoBytes(const ValueOrigin &value) {
    switch (value.check) {
    case OriginCheck::examiner:
        return value.rule;
    case OriginCheck::derived:
        return fmt::format("made by the program: {}", value.rule);
    case OriginCheck::unread:
    case OriginCheck::notKept:
        return value.note;
    case OriginCheck::same:
    case OriginCheck::differs:
        break;
    }
    return fmt::format("the value was read again ({}), but its bytes weren't found in the file",
                       value.place);
}

} // namespace nv
