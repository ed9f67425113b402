#include "db/KeywordLists.h"

#include "base/Files.h"
#include "base/Text.h"

namespace nv {

namespace {

std::vector<std::string> termsOf(const std::filesystem::path &file) {
    std::vector<std::string> terms;
    if (!std::filesystem::is_regular_file(file))
        return terms;
    const Bytes bytes = readWhole(file);
    for (const std::string_view line : split(ByteView(bytes).raw(), '\n'))
        if (const std::string_view term = trim(line.substr(0, line.find('#'))); !term.empty())
            terms.push_back(decodeText(term));
    return terms;
}

} // namespace

KeywordLists loadKeywordLists(const std::filesystem::path &folder) {
    return {termsOf(folder / "child-exploitation.txt"), termsOf(folder / "adult-content.txt")};
}

} // namespace nv
