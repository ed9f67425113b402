#include "readers/Candidate.h"
#include "readers/Registry.h"
#include "support/TempFolder.h"
#include "support/builders/FirefoxCache2.h"

#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::FirefoxCache2Entry;

class Cache2Recognition : public testing::Test {
  protected:
    /// "key artefact" of the row that takes the file.
    std::string taken(const fs::path &name, const std::string &bytes, bool verify = true) {
        folder.write(name, bytes);
        const Evidence evidence{{}};
        Candidate candidate = candidateOf(folder.path() / name, evidence);
        candidate.verifySignatures = verify;
        const Bytes head = verify ? evidence.head(candidate.file, 65536) : Bytes();
        candidate.head = ByteView(head);
        const Reader *reader = recognise(candidate);
        return reader
                   ? std::string(reader->key) + " " +
                         artefactOf(*reader, candidate).lexically_relative(folder.path()).string()
                   : "";
    }
    test::TempFolder folder;
    const std::string hex = "0A1B2C3D4E5F60718293A4B5C6D7E8F901234567";
};

TEST_F(Cache2Recognition, givenUpEntriesLeadToItToo) {
    const std::string bytes = FirefoxCache2Entry().bytes();
    EXPECT_EQ(taken("p/cache2/doomed/1033657517", bytes), "firefox-cache2 p/cache2/doomed");
    EXPECT_EQ(taken("p/cache2/doomed/1033657517", bytes, false), "firefox-cache2 p/cache2/doomed");
    EXPECT_EQ(taken("p/cache2/doomed/12x4567", bytes), "");
    EXPECT_EQ(taken("p/other/1033657517", bytes), "");
    EXPECT_EQ(taken("p/cache2/doomed/1033657517", "1033657517"), "");
    fs::create_directories(folder.path() / "p/cache2/entries");
    EXPECT_EQ(taken("p/cache2/doomed/1033657517", bytes), "firefox-cache2 p/cache2");
}

TEST_F(Cache2Recognition, itIsItsFolder) {
    FirefoxCache2Entry entry;
    const std::string bytes = entry.bytes();
    EXPECT_EQ(taken("p/cache2/entries/" + hex, bytes), "firefox-cache2 p/cache2");
    EXPECT_EQ(taken("p/cache2/trash12/" + hex, bytes), "firefox-cache2 p/cache2");
    entry.version = 1;
    entry.body.clear();
    EXPECT_EQ(taken("renamed/entries/" + hex, entry.bytes()), "firefox-cache2 renamed");
    EXPECT_EQ(taken("copied out/" + hex, bytes), "firefox-cache2 copied out");
    EXPECT_EQ(taken("cache2/entries/" + hex, "", false), "firefox-cache2 cache2");
}

TEST_F(Cache2Recognition, otherFilesOfThatNameAreNone) {
    FirefoxCache2Entry later;
    later.version = 77;
    for (const std::string &bytes :
         {""s, "short"s, std::string(100, '\xFF'), std::string(100, '\0'), later.bytes()})
        EXPECT_EQ(taken("entries/" + hex, bytes), "") << bytes.size();
    const std::string bytes = FirefoxCache2Entry().bytes();
    EXPECT_EQ(taken("entries/" + hex.substr(1), bytes), "");
    EXPECT_EQ(taken("entries/g" + hex.substr(1), bytes), "");
    EXPECT_EQ(taken("other/" + hex, "", false), "");
}

} // namespace
} // namespace nv
