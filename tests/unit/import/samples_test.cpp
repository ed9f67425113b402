#include "import/Scan.h"
#include "support/Samples.h"
#include "unit/import/ImportFixture.h"

#include <nlohmann/json.hpp>

#include <fstream>

namespace nv {
namespace {

namespace fs = std::filesystem;

/// The files of one sample as its list says that a scan shows them: path below the sample's folder
/// and type. Chrome's cache is listed by its index.
using Listing = std::vector<std::pair<std::string, int>>;

Listing expectedListing(const fs::path &sample) {
    std::ifstream file(sample / "expected.json");
    Listing listing;
    const nlohmann::json expected = nlohmann::json::parse(file);
    for (const auto &entry : expected.at("scan")) {
        if (entry.at("scan_type").is_null())
            continue;
        const int type = entry.at("scan_type");
        fs::path path = entry.at("path").get<std::string>();
        if (type == static_cast<int>(HistoryFileType::chromeCache))
            path = path.parent_path() / "index";
        listing.emplace_back(path, type);
    }
    std::ranges::sort(listing);
    return listing;
}

Listing listingOf(const HistoryFiles &files, const fs::path &sample) {
    Listing listing;
    for (const HistoryFile &file : files)
        listing.emplace_back(file.fullPath.lexically_relative(sample),
                             static_cast<int>(file.historyFileType));
    std::ranges::sort(listing);
    return listing;
}

class SamplesTest : public test::ImportFixture {
  protected:
    void SetUp() override {
        if (!samples)
            GTEST_SKIP() << "the real samples aren't here";
    }

    ScanResult scanned(const fs::path &folder) {
        job.startingDirectory = folder;
        Unwatched task;
        return scan(job, task, project.log);
    }

    const std::optional<fs::path> samples = test::samplesFolder();
};

TEST_F(SamplesTest, areRecognised) {
    for (const auto &sample : fs::directory_iterator(*samples)) {
        if (!fs::exists(sample.path() / "expected.json"))
            continue;
        const ScanResult result = scanned(sample.path() / "evidence");
        const Listing found = listingOf(result.historyFiles, sample.path());
        for (const auto &expected : expectedListing(sample.path()))
            EXPECT_EQ(std::ranges::count(found, expected), 1)
                << sample.path().filename() << " " << expected.first;
    }
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(SamplesTest, areImportedFromAnIndexOfInternetExplorer) {
    job.historyFiles = scanned(*samples / "ie_history_gold").historyFiles;
    job.classicOnly = true;
    Unwatched task;
    const ImportSummary summary = import(task, readerFor);
    ASSERT_EQ(summary.artefacts.size(), 1u);
    EXPECT_EQ(summary.artefacts[0].state, ArtefactState::complete) << summary.artefacts[0].reason;
    EXPECT_EQ(rows(), 15);
    EXPECT_EQ(project.number("SELECT Count(*) FROM URLs WHERE ActionDateLocal IS NULL "
                             "OR HashedURL = ''"),
              0);
}

} // namespace
} // namespace nv
