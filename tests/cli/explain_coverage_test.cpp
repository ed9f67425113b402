#include "base/NoLog.h"
#include "base/Text.h"
#include "cli/CliCase.h"
#include "db/records/RecordStore.h"
#include "db/records/UrlRecord.h"
#include "readers/FieldPlaces.h"
#include "readers/results/Kinds.h"
#include "support/RecordGolden.h"
#include "support/TestDoubles.h"
#include "views/explain/NoBytes.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace nv::test {
namespace {

namespace fs = std::filesystem;

/// Fields of caches with a date, a size or an address: each has to be found again in the evidence.
constexpr auto kWatched = std::to_array<std::string_view>(
    {"URL",           "URLRawValue",    "ActionDateUTC",    "LastVisited",
     "OtherDate",     "ExpiryDate",     "CacheFileCreated", "CacheFileLastAccessed",
     "CacheFileSize", "cache_key",      "request_time",     "first_response_time",
     "last_used",     "last_updated",   "created",          "expires",
     "last_checked",  "server_address", "answer_began",     "answer_ended"});

/// What no bytes of the evidence say, by folder of the format and field, and why.
struct Exception {
    std::string_view format;
    std::string_view field;
    OriginCheck told;
    std::string_view why;
    std::string_view value = {}; ///< of this begin alone
};
constexpr auto kExceptions = std::to_array<Exception>({
    {"ie-index", "CacheFileLastAccessed", OriginCheck::derived, "of the cached file, by its disk"},
    {"ie-index-further", "CacheFileLastAccessed", OriginCheck::derived, "the same"},
    {"opera-cache", "CacheFileLastAccessed", OriginCheck::derived, "the same"},
    {"opera-cache", "CacheFileCreated", OriginCheck::derived, "the same"},
    {"opera-cache", "CacheFileSize", OriginCheck::derived, "the same"},
    {"chrome-cache", "CacheFileCreated", OriginCheck::derived, "of the index, by its disk"},
    {"chrome-cache-further", "CacheFileCreated", OriginCheck::derived, "the same"},
    {"safari-cache", "CacheFileCreated", OriginCheck::derived, "of Cache.db, by its disk"},
    {"firefox-site-cache", "CacheFileSize", OriginCheck::derived, "counted when it was unpacked"},
    {"chromium-block-cache", "CacheFileSize", OriginCheck::notKept, "sum of many entries"},
    {"chromium-block-cache-parts", "CacheFileSize", OriginCheck::notKept, "the same"},
    {"chrome-cache", "ActionDateUTC", OriginCheck::notKept, "its block is cut", "1601-"},
    {"chrome-cache", "LastVisited", OriginCheck::notKept, "the same", "1601-"},
    {"chrome-cache", "OtherDate", OriginCheck::notKept, "the same", "1601-"},
    {"chrome-cache", "CacheFileLastAccessed", OriginCheck::notKept, "the same", "1601-"},
    {"safari-cache", "CacheFileSize", OriginCheck::unread, "its page is damaged", "0.00"},
    {"firefox-places", "from_url", OriginCheck::unread, "the number of its visit is no number"},
    {"firefox3-history", "URL", OriginCheck::unread, "the row's own number is damaged"},
    {"firefox3-history", "URLRawValue", OriginCheck::unread, "the same"},
    {"firefox3-history", "Visits", OriginCheck::unread, "the same"},
    {"firefox-places", "Visits", OriginCheck::unread, "the sum of two columns, of Android"},
    // No body is no size: 0 stands in the column all the same.
    {"*", "CacheFileSize", OriginCheck::derived, "there is no body", "0.00"},
});

bool isExcepted(std::string_view format, const ValueOrigin &value) {
    return std::ranges::any_of(kExceptions, [&](const Exception &each) {
        return (each.format == "*" || each.format == format) && each.field == value.field &&
               each.told == value.check && value.value.starts_with(each.value);
    });
}

/// Formats whose rows keep more than the evidence's own words: of them addresses, dates and sizes
/// are held.
const std::set<std::string> kCaches = {"chrome-cache",
                                       "chrome-cache-further",
                                       "chromium-block-cache",
                                       "chromium-simple-cache",
                                       "chromium-block-cache-parts",
                                       "chromium-sql-cache",
                                       "firefox-cache",
                                       "firefox-cache-further",
                                       "firefox-cache2",
                                       "firefox-site-cache",
                                       "ie-index",
                                       "ie-index-further",
                                       "mac-cache",
                                       "opera-cache",
                                       "safari-cache"};

struct Count {
    int explained = 0;
    int withValue = 0;
};

class ExplainCoverageTest : public CliCase, public testing::WithParamInterface<GoldenFolder> {
  protected:
    /// False when the case gives no rows, as damaged ones may.
    bool importCase(const fs::path &input, const Reader &reader) {
        fs::remove_all(evidence);
        for (const char *end : {"", "-wal", "-shm", "-journal"})
            fs::remove(project + end);
        fs::copy(input, evidence, fs::copy_options::recursive);
        static_cast<void>(cli({"import", project, evidence.string()}));
        if (rows().empty()) {
            const fs::path artefact = artefactIn(input.parent_path(), reader);
            const fs::path own = evidence / fs::relative(artefact, input);
            static_cast<void>(cli({"import", project, own.string(), "--as", std::string(reader.key),
                                   "--base", evidence.string()}));
        }
        return !rows().empty();
    }
    std::vector<UrlId> rows() const {
        if (!fs::exists(project))
            return {};
        SQLite::Database file(project);
        SQLite::Statement query(file, "SELECT URL_ID FROM URLs ORDER BY URL_ID");
        std::vector<UrlId> ids;
        while (query.executeStep())
            ids.push_back(UrlId{query.getColumn(0).getInt64()});
        return ids;
    }
    template <class Take>
    void eachOrigin(const Take &take) {
        SQLite::Database file(project);
        const Evidence files(evidence);
        NoLog log;
        const TimeZone zone(Date::fromCivil({2026, 1, 1, 0, 0, 0}));
        const FixedClock clock;
        RecordStore records(file, {zone, true}, clock, log);
        fs::create_directories(folder.path() / "scratch");
        Explainer explainer(
            {file, records, files, folder.path() / "scratch", zone, DateSettings(), log});
        for (const UrlId id : rows()) {
            auto record = records.getURL(id);
            ASSERT_TRUE(record);
            record->facts = records.factsOf(id);
            const auto origin = explainer.explain(id);
            ASSERT_TRUE(origin);
            for (const ValueOrigin &value : origin->values)
                checkBytes(file, id, value);
            take(*record, *origin);
        }
    }
    /// What is said of bytes before the evidence is read holds when it is, and where it is read
    /// and there are none, there is a reason.
    static void checkBytes(SQLite::Database &file, UrlId id, const ValueOrigin &value) {
        const std::string why = whyNoBytes(file, id, value.field);
        EXPECT_TRUE(why.empty() || !value.offset) << value.field << ": " << why;
        EXPECT_TRUE(value.offset || !whyNoBytes(value).empty()) << value.field;
    }
    /// Of a cache each address, date and size is found again. Of the others every value is: what
    /// no bytes say is made by the program, and told so.
    void checkValue(const std::string &format, bool isCache, const ValueOrigin &value) {
        ++m_all.withValue;
        m_all.explained += value.check == OriginCheck::notKept ? 0 : 1;
        EXPECT_NE(value.check, OriginCheck::differs)
            << value.field << " = " << value.value << ": " << value.stored << ' ' << value.rule;
        const bool isWatched = std::ranges::find(kWatched, value.field) != kWatched.end();
        if (!isCache && !isWatched) {
            const bool isMade =
                value.check == OriginCheck::derived || value.check == OriginCheck::examiner;
            EXPECT_TRUE(isMade || value.check == OriginCheck::same || isExcepted(format, value))
                << told(value);
            EXPECT_FALSE(value.rule.empty() && value.note.empty()) << told(value);
            return;
        }
        if (!isWatched)
            return;
        ++m_watched.withValue;
        if (isExcepted(format, value)) {
            ++m_excepted;
            EXPECT_FALSE(value.rule.empty() && value.note.empty()) << value.field;
            return;
        }
        const bool isTold =
            value.check == OriginCheck::same && !value.place.empty() && !value.rule.empty();
        m_watched.explained += isTold ? 1 : 0;
        EXPECT_TRUE(isTold || (!isCache && value.check == OriginCheck::derived)) << told(value);
    }
    static std::string told(const ValueOrigin &value) {
        return fmt::format("{} = {}: {} at {} [{}] {} {}", value.field, value.value,
                           checkWord(value.check), value.place, value.stored, value.rule,
                           value.note);
    }

    Count m_watched;
    Count m_all;
    int m_excepted = 0;
};

/// Every value of every format that bytes, a line or a column say is found again in the evidence,
/// and gives what the project has.
TEST_P(ExplainCoverageTest, everyValueIsFoundAgain) {
    const GoldenFolder &golden = GetParam();
    int records = 0;
    for (const auto &each : fs::directory_iterator(fs::path(NV_GOLDEN_DIR) / golden.name)) {
        if (!each.is_directory() || !importCase(each.path() / "input", *golden.reader))
            continue;
        SCOPED_TRACE(each.path().filename().string());
        eachOrigin([&](const UrlRecord &record, const RecordOrigin &origin) {
            // Files of a cache may be rows as loose pages, too.
            const bool isCache =
                kCaches.contains(golden.name) && record.cacheType != kSimpleHtml.word;
            if (isCache && !locatorOf(record))
                return; // a history in the same case
            SCOPED_TRACE(fmt::format("row {}: {}", origin.id, record.URL));
            ++records;
            for (const ValueOrigin &value : origin.values)
                checkValue(golden.name, isCache, value);
        });
    }
    fmt::print("{:<28} {:>4} records  dates, sizes, addresses {:>4} of {:>4}, {:>3} no bytes say  "
               "all fields {:>5} of {:>5}\n",
               golden.name, records, m_watched.explained, m_watched.withValue, m_excepted,
               m_all.explained, m_all.withValue);
    EXPECT_GT(records, 0);
}

/// Evidence that was cut or written over after the import: nothing of it is said to be as it was
/// unless it is, and nobody waits or crashes.
TEST_P(ExplainCoverageTest, damagedEvidenceIsToldSo) {
    const GoldenFolder &golden = GetParam();
    for (const auto &each : fs::directory_iterator(fs::path(NV_GOLDEN_DIR) / golden.name)) {
        if (!each.is_directory() || !importCase(each.path() / "input", *golden.reader))
            continue;
        SCOPED_TRACE(each.path().filename().string());
        for (const auto &file : fs::recursive_directory_iterator(evidence)) {
            if (!file.is_regular_file() || file.file_size() < 4)
                continue;
            std::string bytes = text(file.path());
            bytes.resize(bytes.size() * 2 / 3);
            for (std::size_t at = bytes.size() / 3; at < bytes.size(); at += 7)
                bytes[at] = static_cast<char>(0xFF);
            writeWhole(file.path(), bytes);
        }
        eachOrigin([](const UrlRecord &, const RecordOrigin &origin) {
            for (const ValueOrigin &value : origin.values)
                EXPECT_FALSE(value.check == OriginCheck::unread && value.note.empty())
                    << value.field;
        });
        break; // one is enough of a folder
    }
}

/// The folders of formats that give rows.
std::vector<GoldenFolder> readFolders() {
    std::vector<GoldenFolder> folders = goldenFolders();
    std::erase_if(folders, [](const GoldenFolder &each) {
        return each.name == "opera-cookies" || each.name == "safari-cookies" ||
               each.name == "chrome-cookies";
    });
    return folders;
}

INSTANTIATE_TEST_SUITE_P(Formats, ExplainCoverageTest, testing::ValuesIn(readFolders()),
                         [](const auto &each) { return replaceAll(each.param.name, "-", "_"); });

} // namespace
} // namespace nv::test
