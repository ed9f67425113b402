#include "base/Text.h"
#include "readers/RecordKind.h"
#include "readers/Registry.h"
#include "readers/SourceOption.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace nv {
namespace {

TEST(RecordKinds, haveKeysAndWordsOfTheirOwn) {
    constexpr std::size_t kWidth = 50; // characters of the column
    std::set<std::string_view> keys;
    std::set<std::string> words;
    for (const RecordKind *kind : recordKinds()) {
        EXPECT_TRUE(keys.insert(kind->key).second) << kind->key;
        EXPECT_TRUE(words.insert(toLower(kind->word)).second) << kind->word;
        EXPECT_TRUE(!kind->word.empty() && kind->word.size() <= kWidth) << kind->word;
        EXPECT_EQ(recordKind(kind->word), kind);
    }
}

TEST(RecordKinds, standInTheRowOfEachFormatThatIsRead) {
    for (const Reader *reader : registry())
        EXPECT_EQ(reader->read != nullptr, !reader->kinds.empty()) << reader->key;
}

TEST(RecordKinds, areFoundInAnyCaseAndByEitherWord) {
    EXPECT_EQ(recordKind("FIREFOX CACHE"), recordKind("Firefox Cache"));
    EXPECT_EQ(recordKind(" IE Cache ")->key, "ie-cache");
    EXPECT_EQ(recordKind("IE COOKIE")->key, "ie-cookies");
    EXPECT_EQ(recordKind("IE"), nullptr);
    EXPECT_EQ(recordKind(""), nullptr);
}

TEST(RecordKinds, sayHowPagesOfACacheFindTheirParts) {
    for (const RecordKind *kind : recordKinds())
        EXPECT_TRUE(kind->parts == CacheParts::none || kind->group == RecordGroup::cache)
            << kind->key;
    EXPECT_EQ(partsOf("IE Cache"), CacheParts::byPath);
    for (const char *word : {"Chrome Cache", "Firefox Cache", "Opera Cache", "Safari Cache"})
        EXPECT_EQ(partsOf(word), CacheParts::byUrl) << word;
    EXPECT_EQ(partsOf("Mac IE Cache"), CacheParts::none);
}

TEST(RecordKinds, thatNoFormatMakesAreToldByTheirWords) {
    EXPECT_EQ(groupOf("Some Cache of Another Program"), RecordGroup::cache);
    EXPECT_EQ(groupOf("some cookie"), RecordGroup::cookies);
    EXPECT_EQ(groupOf("Typed History"), RecordGroup::history);
    EXPECT_EQ(groupOf("orphaned"), RecordGroup::other);
    EXPECT_EQ(partsOf("Some Cache of Another Program"), CacheParts::none);
    EXPECT_EQ(familyOf("firefox something"), &families::firefox);
    EXPECT_EQ(familyOf("MAC CACHE"), &families::macIE);
    EXPECT_EQ(familyOf("unallocated"), nullptr);
    EXPECT_EQ(familyOf("lost"), nullptr);
}

/// One box of the wizard stands for a family's group; two in its place would hide each other.
TEST(SourceOptions, haveAPlaceOfTheirOwn) {
    std::map<std::pair<const BrowserFamily *, RecordGroup>, const SourceOption *> places;
    for (const Reader *reader : registry()) {
        const SourceOption *option = reader->option;
        if (!option)
            continue;
        EXPECT_EQ(option->family == nullptr, !option->text.empty()) << option->name;
        if (option->family) {
            const auto place = std::pair(option->family, option->group);
            EXPECT_EQ(places.emplace(place, option).first->second, option) << option->name;
        }
    }
}

} // namespace
} // namespace nv
