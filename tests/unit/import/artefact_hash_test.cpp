#include "base/Md5.h"
#include "import/ArtefactHash.h"
#include "support/FailingReads.h"
#include "support/TempFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <set>
#include <string>
#include <thread>

namespace nv {
namespace {

namespace fs = std::filesystem;

std::string nameOf(int number) {
    return fmt::format("f_{:06}", number);
}

TEST(ArtefactHash, ofAFolderIsThatOfItsFilesInOrderWhoeverReadsThem) {
    const test::TempFolder folder;
    std::string list;
    for (int i = 0; i < 500; ++i) {
        const std::string content(static_cast<std::size_t>(i) * 37,
                                  static_cast<char>('a' + i % 26));
        folder.write(nameOf(i), content);
        list += fmt::format("{}  {}\n", md5Hex(content), nameOf(i));
    }
    const Evidence evidence({});
    const auto hashes = hashesOfArtefact(evidence, folder.path());
    ASSERT_TRUE(hashes);
    EXPECT_EQ(hashes->md5, md5Hex(list));
    EXPECT_EQ(hashes->size, 499U * 500U / 2U * 37U);
}

/// Lets every file of some names fail.
class BadFiles final : public EvidenceWatch {
  public:
    explicit BadFiles(std::set<std::string> names) : m_names(std::move(names)) {}
    int errorBefore(Step step, const fs::path &path) override {
        return step == Step::read && m_names.contains(path.filename().native()) ? EIO : 0;
    }

  private:
    std::set<std::string> m_names;
};

TEST(ArtefactHash, tellsTheFirstOfSeveralFilesThatCannotBeRead) {
    const test::TempFolder folder;
    for (int i = 0; i < 200; ++i)
        folder.write(nameOf(i), std::string(i == 90 ? 3'000'000 : 10, 'x'));
    for (int turn = 0; turn < 20; ++turn) { // threads meet in another order each time
        BadFiles bad({nameOf(90), nameOf(91), nameOf(92), nameOf(150)});
        const Evidence evidence({}, &bad);
        try {
            static_cast<void>(hashesOfArtefact(evidence, folder.path()));
            FAIL() << "a file can't be read";
        } catch (const EvidenceFailure &failure) {
            EXPECT_EQ(failure.file().filename(), nameOf(90));
        }
    }
}

TEST(ArtefactHash, isCancelledInTheMidstOfALargeFileByTheThreadThatAskedForIt) {
    const test::TempFolder folder;
    folder.write("data_3", "");
    constexpr std::uint64_t kHoles = std::uint64_t{64} << 30;
    fs::resize_file(folder.path() / "data_3", kHoles); // would take minutes
    const Evidence evidence({});
    std::set<std::thread::id> askers;
    EXPECT_FALSE(hashesOfArtefact(evidence, folder.path(), [&](std::uint64_t) {
        askers.insert(std::this_thread::get_id());
        return false;
    }));
    EXPECT_EQ(askers, std::set{std::this_thread::get_id()});
}

} // namespace
} // namespace nv
