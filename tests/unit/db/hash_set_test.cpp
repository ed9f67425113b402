#include "base/Files.h"
#include "base/Text.h"
#include "db/hashes/HashLookup.h"
#include "db/hashes/HashSetMaker.h"
#include "db/hashes/HashSets.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string hashOf(DigestAlgorithm algorithm, const std::string &text) {
    Digest digest(algorithm);
    digest.add(text);
    return digest.takeHex();
}

HashValue valueOf(DigestAlgorithm algorithm, const std::string &text) {
    return hashIn(hashOf(algorithm, text)).value();
}

bool goOn(double) {
    return true;
}

struct HashSetTest : testing::Test {
    /// Of the MD5s and SHA-256s of the numbers below `count`, each twice.
    fs::path made(int count, std::size_t inMemory) {
        HashSetMaker maker(scratch.path(), inMemory);
        for (int turn = 0; turn < 2; ++turn)
            for (int number = 0; number < count; ++number)
                for (const auto algorithm : {DigestAlgorithm::md5, DigestAlgorithm::sha256})
                    maker.add(valueOf(algorithm, std::to_string(number)));
        const fs::path file = folder.path() / "made.nvhash";
        EXPECT_EQ(maker.writeTo(file, {"made", HashMeaning::notable, "2011", {}}, goOn),
                  static_cast<std::uint64_t>(count) * 2);
        return file;
    }
    std::optional<HashSetMade> order(const std::string &name, const std::vector<fs::path> &lists) {
        return makeHashSet({folder.path() / "sets",
                            {name, HashMeaning::known, "2011-06-15T12:00:00Z", {}},
                            lists,
                            scratch.path()},
                           task);
    }
    std::string failureFor(const fs::path &file) {
        std::string what;
        EXPECT_THROW(
            {
                try {
                    HashSetFile set(file);
                } catch (const std::runtime_error &failure) {
                    what = failure.what();
                    throw;
                }
            },
            std::runtime_error);
        return what;
    }

    test::TempFolder folder;
    test::TempFolder scratch;
    test::MemoryTask task;
};

TEST_F(HashSetTest, findsWhatItHoldsInMemoryAndInRuns) {
    constexpr int kCount = 3000;
    for (const std::size_t inMemory : {std::size_t{1} << 20, std::size_t{1000}}) {
        HashSetFile set(made(kCount, inMemory));
        EXPECT_EQ(set.count(DigestAlgorithm::md5), kCount);
        EXPECT_EQ(set.count(DigestAlgorithm::sha1), 0U);
        EXPECT_EQ(set.count(), 2U * kCount);
        EXPECT_EQ(set.facts().name, "made");
        EXPECT_EQ(set.facts().meaning, HashMeaning::notable);
        for (int number = 0; number < kCount; ++number) {
            const std::string text = std::to_string(number);
            EXPECT_TRUE(set.has(valueOf(DigestAlgorithm::md5, text))) << number;
            EXPECT_TRUE(set.has(valueOf(DigestAlgorithm::sha256, text))) << number;
            EXPECT_FALSE(set.has(valueOf(DigestAlgorithm::sha1, text))) << number;
            EXPECT_FALSE(set.has(valueOf(DigestAlgorithm::md5, "no " + text))) << number;
        }
    }
    EXPECT_TRUE(fs::is_empty(scratch.path()));
}

/// Whoever makes a list can make all hashes begin alike.
TEST_F(HashSetTest, findsHashesThatAllBeginAlike) {
    constexpr std::uint64_t kCount = 20000; // more than are read at once
    HashSetMaker maker(scratch.path());
    const auto value = [](std::uint64_t number) {
        return hashIn(fmt::format("{:040x}", number * 2)).value();
    };
    for (std::uint64_t number = kCount; number > 0; --number)
        maker.add(value(number));
    const fs::path file = folder.path() / "alike.nvhash";
    ASSERT_TRUE(maker.writeTo(file, {}, goOn));
    HashSetFile set(file);
    for (std::uint64_t number = 1; number <= kCount; number += 7)
        EXPECT_TRUE(set.has(value(number))) << number;
    EXPECT_TRUE(set.has(value(kCount)));
    EXPECT_FALSE(set.has(value(0)));
    EXPECT_FALSE(set.has(value(kCount + 1)));
    EXPECT_FALSE(set.has(hashIn(fmt::format("{:040x}", 3)).value()));
}

TEST_F(HashSetTest, refusesWhatIsNoWholeFile) {
    const fs::path file = made(100, 1 << 20);
    const Bytes whole = readWhole(file);
    const std::string bytes(ByteView(whole).raw());
    const auto changed = [&](std::size_t at, char byte) {
        std::string other = bytes;
        other[at] = byte;
        return folder.write("other.nvhash", other);
    };
    for (const std::size_t size : {std::size_t{0}, std::size_t{50}, bytes.size() - 1})
        EXPECT_THAT(failureFor(folder.write("cut.nvhash", bytes.substr(0, size))),
                    HasSubstr("no whole file of hashes"));
    EXPECT_THAT(failureFor(changed(0, 'X')), HasSubstr("begin"));
    const std::size_t tail = bytes.size() - HashSetTail::kBytes;
    for (std::size_t at = tail; at < bytes.size() - kHashSetEnd.size(); ++at) {
        // Numbers of any size lead nowhere: a changed one is refused, or is one that isn't used.
        const fs::path other = changed(at, '\x7F');
        try {
            HashSetFile set(other);
            static_cast<void>(set.has(valueOf(DigestAlgorithm::md5, "1")));
        } catch (const std::runtime_error &failure) {
            EXPECT_THAT(failure.what(), HasSubstr("other.nvhash")) << at;
        }
    }
    EXPECT_THAT(failureFor(folder.path() / "none.nvhash"), HasSubstr("none.nvhash"));
}

TEST_F(HashSetTest, damagedIndexIsRefused) {
    const fs::path file = made(100, 1 << 20);
    const Bytes whole = readWhole(file);
    std::string bytes(ByteView(whole).raw());
    const HashSetTail tail = tailIn(ByteView(whole).from(whole.size() - HashSetTail::kBytes));
    bytes[static_cast<std::size_t>(tail.sections[0].index) + 800] = '\xFF';
    EXPECT_THAT(failureFor(folder.write("bad.nvhash", bytes)), HasSubstr("index"));
}

TEST_F(HashSetTest, isMadeOfSeveralListsAndSaysOfWhich) {
    const fs::path one = folder.write("one.md5", hashOf(DigestAlgorithm::md5, "a") + "  a\nxx\n");
    const fs::path two = folder.write("two.txt", hashOf(DigestAlgorithm::sha1, "b") + "\n" +
                                                     hashOf(DigestAlgorithm::md5, "a") + "\n");
    const auto made = order("two lists", {one, two});
    ASSERT_TRUE(made);
    EXPECT_EQ(made->hashes, 2U);
    EXPECT_EQ(made->lines, 4U);
    EXPECT_EQ(made->withoutHash, 1U);
    EXPECT_THAT(made->refused.at(0), HasSubstr("one.md5\", line 2"));
    auto sets = openHashSets(folder.path() / "sets");
    ASSERT_EQ(sets.size(), 1U);
    ASSERT_EQ(sets[0].facts().sources.size(), 2U);
    EXPECT_EQ(sets[0].facts().sources[0].file, textOf(one));
    EXPECT_EQ(sets[0].facts().sources[0].withoutHash, 1U);
    EXPECT_EQ(sets[0].facts().sources[1].sha256.size(), 64U);
    EXPECT_TRUE(sets[0].has(valueOf(DigestAlgorithm::sha1, "b")));
}

TEST_F(HashSetTest, isNotMadeOfNothingNorWhenCancelled) {
    const fs::path none = folder.write("none.txt", "no hash\n");
    EXPECT_EQ(order("none", {none})->hashes, 0U);
    const fs::path list = folder.write("list.txt", hashOf(DigestAlgorithm::md5, "a"));
    test::CancelAfter cancel(0);
    EXPECT_FALSE(
        makeHashSet({folder.path() / "sets", {"x", {}, {}, {}}, {list}, scratch.path()}, cancel));
    EXPECT_TRUE(hashSetPaths(folder.path() / "sets").empty());
    EXPECT_THROW(order("gone", {folder.path() / "gone"}), FileFailure);
    EXPECT_THROW(openHashSets(folder.path() / "sets", std::vector<std::string>{"x"}),
                 StorageFailure);
}

TEST_F(HashSetTest, hasANameThatIsThatOfAFile) {
    for (const char *name : {"a", "reference library 3.2", "F\xC3\xA4lle (2011)"})
        EXPECT_TRUE(isHashSetName(name)) << name;
    for (const char *name : {"", ".", "..", "a/b", "../a", " a", "a\n", "\xFF", ".hidden"})
        EXPECT_FALSE(isHashSetName(name)) << name;
    EXPECT_FALSE(isHashSetName(std::string(101, 'a')));
}

TEST_F(HashSetTest, addsFactsToARecord) {
    const fs::path list = folder.write("list.txt", hashOf(DigestAlgorithm::sha1, "a") + "\n" +
                                                       hashOf(DigestAlgorithm::md5, "a"));
    ASSERT_TRUE(order("ours", {list}));
    HashLookup lookup(openHashSets(folder.path() / "sets"));
    FactList facts;
    facts.add("content_md5", hashOf(DigestAlgorithm::md5, "a"));
    facts.add("content_sha1", hashOf(DigestAlgorithm::sha1, "a"));
    lookup.addFindings(facts);
    ASSERT_EQ(facts.size(), 3U);
    const RecordFact &found = *(facts.begin() + 2);
    EXPECT_EQ(found.name, "hashset_known");
    EXPECT_EQ(found.value, FactValue(std::string("ours")));
    EXPECT_EQ(found.raw, FactValue(std::string("SHA-1")));
    FactList others;
    others.add("content_md5", hashOf(DigestAlgorithm::md5, "b"));
    others.add("etag", hashOf(DigestAlgorithm::md5, "a"));
    lookup.addFindings(others);
    EXPECT_EQ(others.size(), 2U);
    EXPECT_EQ(lookup.found()[0], 1U);
}

} // namespace
} // namespace nv
