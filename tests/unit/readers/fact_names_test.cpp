#include "base/Files.h"
#include "base/Text.h"
#include "db/schema/FactNames.h"
#include "support/Places.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace nv {
namespace {

/// The names in the first cells of the page's tables.
std::multiset<std::string> namesInThePage() {
    const Bytes page = readWhole(test::docsFolder() / "formats/facts.md");
    std::multiset<std::string> names;
    for (const std::string_view line : split(ByteView(page).raw(), '\n')) {
        if (!line.starts_with("| `"))
            continue;
        const std::string_view rest = line.substr(3);
        names.emplace(rest.substr(0, rest.find('`')));
    }
    return names;
}

TEST(FactNames, standOnThePageOfFacts) {
    const auto names = factNames();
    EXPECT_EQ(namesInThePage(), std::multiset<std::string>(names.begin(), names.end()));
}

} // namespace
} // namespace nv
