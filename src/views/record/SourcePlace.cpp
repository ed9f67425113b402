#include "views/record/SourcePlace.h"

#include "db/records/RecordFacts.h"
#include "readers/RecordKind.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace nv {

namespace {

std::string fact(const FactList &facts, std::string_view name) {
    const auto found = std::ranges::find(facts, name, &RecordFact::name);
    return found == facts.end() ? std::string() : factText(found->value);
}

bool isNamedBy(const std::string &path, const std::string &file) {
    return path.ends_with(file) &&
           (path.size() == file.size() || path[path.size() - file.size() - 1] == '/' ||
            path[path.size() - file.size() - 1] == '\\');
}

/// The index of such a cache stands for the whole. Its entries are blocks of 256 bytes in data_1,
/// and in further files once that is full; `source_file` is the one of the body.
bool isInBlockFiles(const SourceColumns &record, const std::string &file) {
    const bool isFirstLayout = familyOf(record.kind) == &families::chrome && file.empty() &&
                               isNamedBy(record.file, "index");
    return isFirstLayout || record.version.starts_with("Block files");
}

} // namespace

std::string offsetInSource(const FactList &facts, std::int64_t stored) {
    if (!fact(facts, "source_rowid").empty())
        return {};
    std::string offset = fact(facts, "source_offset");
    if (offset.empty() && stored > 0)
        offset = std::to_string(stored);
    return offset;
}

std::string placeInSource(const SourceColumns &record, const FactList &facts) {
    if (const std::string row = fact(facts, "source_rowid"); !row.empty())
        return fmt::format(", row {} of table {}", row, fact(facts, "source_table"));
    const std::string offset = offsetInSource(facts, record.offset);
    const std::string file = fact(facts, "source_file");
    if (!offset.empty() && isInBlockFiles(record, file))
        return fmt::format(", data_1[{}], or the block file that continues data_1", offset);
    if (!file.empty() && !isNamedBy(record.file, file))
        return offset.empty() ? ", " + file : fmt::format(", {}[{}]", file, offset);
    return offset.empty() ? std::string() : fmt::format(", offset {}", offset);
}

} // namespace nv
