#include "MadeProject.h"
#include "db/records/RecordStore.h"
#include "db/records/UrlRecord.h"
#include "import/Categories.h"
#include "views/rows/IdLoader.h"
#include "views/rows/RecordFilters.h"

#include <cstddef>
#include <random>
#include <set>
#include <vector>

namespace nv {
namespace {

RecordFilters withSources() {
    RecordFilters filters;
    filters.enableFilters = true;
    filters.showHistoryURLs = filters.showCacheURLs = true;
    filters.showCookies = filters.showBookmarks = true;
    return filters;
}

RecordFilters withKind(bool RecordFilters::*flag) {
    RecordFilters filters = withSources();
    filters.*flag = true;
    return filters;
}

/// A record of the cache with an extension that no flag knows, so that only what is set admits it.
UrlRecord cached() {
    UrlRecord record;
    record.cacheType = "IE Cache";
    record.URLFileExt = "xyz";
    record.URL = "http://h/";
    return record;
}

UrlRecord withExtension(const std::string &extension) {
    UrlRecord record = cached();
    record.URLFileExt = extension;
    return record;
}

UrlRecord withCategory(const std::string &category) {
    UrlRecord record = cached();
    record.Category = category;
    return record;
}

UrlRecord withUrl(const std::string &url) {
    UrlRecord record = cached();
    record.URL = url;
    return record;
}

TEST(FiltersTest, everythingIsOffAtFirst) {
    const RecordFilters filters;
    EXPECT_FALSE(filters.enableFilters);
    for (const FilterFlag &each : filterFlags())
        EXPECT_FALSE(filters.*each.flag) << each.name;
}

TEST(FiltersTest, everyFlagStandsInTheTableOnce) {
    RecordFilters filters;
    std::set<std::string_view> names;
    for (const FilterFlag &each : filterFlags()) {
        EXPECT_FALSE(filters.*each.flag) << each.name << " is there twice";
        filters.*each.flag = true;
        names.insert(each.name);
        EXPECT_TRUE(each.name.starts_with("show"));
        EXPECT_FALSE(each.label.empty());
    }
    EXPECT_EQ(names.size(), filterFlags().size());
    // Flags have one byte, and the last one lies after `enableFilters` and all others.
    EXPECT_EQ(filterFlags().size(), offsetof(RecordFilters, showAll));
}

TEST(FiltersTest, sourcesVeto) {
    const auto isShownWithout = [](bool RecordFilters::*source, const UrlRecord &record) {
        RecordFilters filters = withSources();
        filters.showAll = true;
        filters.*source = false;
        return filterRecord(filters, record);
    };
    UrlRecord record;
    record.IsHistory = true;
    EXPECT_FALSE(isShownWithout(&RecordFilters::showHistoryURLs, record));
    EXPECT_TRUE(isShownWithout(&RecordFilters::showCookies, record));
    EXPECT_FALSE(isShownWithout(&RecordFilters::showCacheURLs, cached()));
    EXPECT_TRUE(isShownWithout(&RecordFilters::showHistoryURLs, cached()));
    record = {};
    record.IsBookmark = true;
    EXPECT_FALSE(isShownWithout(&RecordFilters::showBookmarks, record));
    EXPECT_TRUE(isShownWithout(&RecordFilters::showCookies, record));
    record = {};
    record.cacheType = "ORPHANED";
    for (const FilterFlag &each : filterFlags())
        EXPECT_TRUE(isShownWithout(each.flag, record) || each.group != FilterGroup::Source)
            << "a record of no source is vetoed by none";
}

TEST(FiltersTest, theVetoOfCookiesComesBeforeShowAll) {
    UrlRecord cookie;
    cookie.IsCookie = true;
    RecordFilters filters = withSources();
    filters.showAll = true;
    EXPECT_TRUE(filterRecord(filters, cookie));
    filters.showCookies = false;
    EXPECT_FALSE(filterRecord(filters, cookie));
}

TEST(FiltersTest, sourcesAloneShowOnlyCookiesAndBookmarks) {
    const RecordFilters filters = withSources();
    UrlRecord record;
    record.IsHistory = true;
    record.URL = "http://www.google.example/";
    record.URLFileExt = "gif";
    EXPECT_FALSE(filterRecord(filters, record));
    EXPECT_FALSE(filterRecord(filters, withExtension("gif")));
    record.IsCookie = true;
    EXPECT_TRUE(filterRecord(filters, record));
    record.IsCookie = false;
    record.IsBookmark = true;
    EXPECT_TRUE(filterRecord(filters, record));
}

TEST(FiltersTest, aVetoComesBeforeTheOtherSourcesAdmission) {
    UrlRecord record;
    record.IsCookie = true;
    record.IsHistory = true;
    RecordFilters filters = withSources();
    filters.showHistoryURLs = false;
    EXPECT_FALSE(filterRecord(filters, record));
}

TEST(FiltersTest, eachKindAdmitsItsExtensionsOnly) {
    const std::vector<std::pair<bool RecordFilters::*, std::vector<std::string>>> kinds = {
        {&RecordFilters::showBitmaps, {"bmp"}},
        {&RecordFilters::showPNG, {"png"}},
        {&RecordFilters::showGIF, {"gif"}},
        {&RecordFilters::showJPEG, {"jpg", "jpe", "jpeg"}},
        {&RecordFilters::showMusic, {}},
        {&RecordFilters::showAudioFiles, {}},
        {&RecordFilters::showPDF, {"pdf"}},
        {&RecordFilters::showHTML, {"html", "htm"}},
        {&RecordFilters::showXML, {"xml"}},
        {&RecordFilters::showASP, {"asp", "aspx"}},
        {&RecordFilters::showJS, {"js"}},
        {&RecordFilters::showCSS, {"css"}},
        {&RecordFilters::showPHPCGI, {"php", "cgi"}},
        {&RecordFilters::showMissingFileExt, {""}},
        {&RecordFilters::showExcelDocs, {"xls"}},
        {&RecordFilters::showPowerpoint, {"ppt"}},
        {&RecordFilters::showEXEs, {"exe"}},
        {&RecordFilters::showHelp, {"chm", "hlp"}},
        {&RecordFilters::showAccessFiles, {"mdb"}},
        {&RecordFilters::showMovies, {}},
        {&RecordFilters::showWordDocs, {"doc", "txt", "rtf"}},
        {&RecordFilters::showArchiveFiles, {}},
    };
    for (const auto &[flag, own] : kinds)
        for (const auto &[other, extensions] : kinds)
            for (const std::string &extension : extensions)
                EXPECT_EQ(filterRecord(withKind(flag), withExtension(extension)), flag == other)
                    << extension;
}

TEST(FiltersTest, extensionsAreComparedAsTheyAreStored) {
    EXPECT_FALSE(filterRecord(withKind(&RecordFilters::showGIF), withExtension("GIF")));
    EXPECT_FALSE(filterRecord(withKind(&RecordFilters::showJPEG), withExtension("jpg ")));
}

TEST(FiltersTest, kindsByCategoryTakeTheWordsOfCategorisingAndTheOlderOnes) {
    using Words = std::vector<std::string>;
    const std::vector<std::pair<bool RecordFilters::*, Words>> kinds = {
        {&RecordFilters::showMusic, {"MUSIC/AUDIO", "Music, Audio", "Audio", "MUSIC, AUDIO"}},
        {&RecordFilters::showAudioFiles, {"MUSIC/AUDIO", "Music, Audio", "Audio", "music/audio"}},
        {&RecordFilters::showMovies, {"MOVIES", "Movies, Animation", "MOVIES, ANIMATION"}},
        {&RecordFilters::showArchiveFiles,
         {"COMPRESSED FILES", "EXECUTABLES", "Archive, Compressed", "Binary, Executables",
          "ARCHIVE, COMPRESSED", "BINARY, EXECUTABLES"}},
        {&RecordFilters::showPDF, {"Adobe", "ADOBE", "Adobe Acrobat"}},
        {&RecordFilters::showHTML, {"HTML", "Scripts, HTML", "Scripts/HTML"}},
    };
    for (const auto &[flag, words] : kinds)
        for (const std::string &word : words)
            EXPECT_TRUE(filterRecord(withKind(flag), withCategory(word))) << word;
    for (const char *other : {"Pictures", "Office Documents", "XML", "", "Movies", "Music"})
        EXPECT_EQ(filterRecord(withKind(&RecordFilters::showMovies), withCategory(other)),
                  std::string_view(other) == "Movies")
            << other;
    EXPECT_FALSE(filterRecord(withKind(&RecordFilters::showMusic), withCategory("Movies, Audio")))
        << "a category is compared whole";
}

TEST(FiltersTest, whatCategorisingWritesIsAdmitted) {
    const std::vector<std::pair<std::string_view, bool RecordFilters::*>> cases = {
        {"mp3", &RecordFilters::showMusic},        {"mp3", &RecordFilters::showAudioFiles},
        {"wav", &RecordFilters::showMovies},       {"avi", &RecordFilters::showMovies},
        {"zip", &RecordFilters::showArchiveFiles}, {"dll", &RecordFilters::showArchiveFiles},
        {"pdf", &RecordFilters::showPDF},          {"php", &RecordFilters::showHTML}};
    for (const auto &[extension, flag] : cases)
        EXPECT_TRUE(
            filterRecord(withKind(flag), withCategory(std::string(categoryOfExtension(extension)))))
            << extension;
}

TEST(FiltersTest, sitesAreFoundAnywhereInTheUrlInAnyCase) {
    const std::vector<std::pair<bool RecordFilters::*, std::vector<std::string>>> sites = {
        {&RecordFilters::showGoogle, {"http://www.GOOGLE.example/"}},
        {&RecordFilters::showYahoo, {"http://yahoo.example/", "http://l.yimg.example/"}},
        {&RecordFilters::showHotmailLive, {"http://Hotmail.com/", "https://mail.live.com/x"}},
        {&RecordFilters::showAOL, {"http://aol.example/"}},
        {&RecordFilters::showFacebook, {"http://facebook.example/"}},
        {&RecordFilters::showMySpace, {"http://MySpace.example/"}},
        {&RecordFilters::showYouTube, {"http://youtube.example/"}},
        {&RecordFilters::showEBAY, {"http://eBay.example/"}},
        {&RecordFilters::showBlogs, {"http://h/?a=weblogs"}},
        {&RecordFilters::showFilesOpened, {"file:///C:/a.doc", "FILE:///c:/"}},
        {&RecordFilters::showPHPCGI, {"http://h/x.PHP?a=1", "http://h/bin/run.cgi?x"}},
    };
    for (const auto &[flag, own] : sites)
        for (const auto &[other, urls] : sites)
            for (const std::string &url : urls)
                EXPECT_EQ(filterRecord(withKind(flag), withUrl(url)), flag == other) << url;
}

TEST(FiltersTest, showAllAdmitsWhatNoKindKnows) {
    RecordFilters filters = withSources();
    EXPECT_FALSE(filterRecord(filters, cached()));
    filters.showAll = true;
    EXPECT_TRUE(filterRecord(filters, cached()));
}

TEST(FiltersTest, flagsAreFoundByNameWithOrWithoutShow) {
    for (const FilterFlag &each : filterFlags()) {
        EXPECT_EQ(findFilterFlag(each.name), &each);
        EXPECT_EQ(findFilterFlag(each.name.substr(4)), &each);
    }
    EXPECT_EQ(findFilterFlag("SHOWgif")->flag, &RecordFilters::showGIF);
    EXPECT_EQ(findFilterFlag("all")->flag, &RecordFilters::showAll);
    EXPECT_EQ(findFilterFlag("show"), nullptr);
    EXPECT_EQ(findFilterFlag(""), nullptr);
    EXPECT_EQ(findFilterFlag("EnableFilters"), nullptr);
}

struct FilterIdsTest : testing::Test, test::MadeProject {
    /// What the filters leave of `from`, record by record.
    RowIds oneByOne(const RowIds &from, const RecordFilters &filters) {
        RecordStore store(db(), {zone}, clock, log);
        RowIds left;
        for (const std::int32_t id : from) {
            const auto record = store.getURL(UrlId{id});
            if (record && filterRecord(filters, *record))
                left.push_back(id);
        }
        return left;
    }
    RowIds byColumns(const RowIds &from, const RecordFilters &filters) {
        RowIds left;
        EXPECT_EQ(filterIds(db(), from, filters, task, left), Walk::Finished);
        return left;
    }
    /// Rows of everything that a flag may look at, in an order that isn't that of their ids.
    RowIds addMadeRows(std::mt19937 &random) {
        const auto pick = [&random](const std::vector<const char *> &from) {
            return std::string(from[random() % from.size()]);
        };
        RowIds made;
        for (int i = 0; i < 400; ++i)
            made.push_back(static_cast<std::int32_t>(add(
                {{"IsHistory", std::int64_t{random() % 3 == 0}},
                 {"IsCookie", std::int64_t{random() % 6 == 0}},
                 {"IsBookmark", std::int64_t{random() % 6 == 0}},
                 {"CacheType", pick({"IE CACHE", "IE Cache", "Chrome History", "", "HTML"})},
                 {"Category", pick({"Pictures", "Adobe", "Scripts, HTML", "Music, Audio",
                                    "MUSIC/AUDIO", "Audio", "MOVIES", "Movies, Animation",
                                    "COMPRESSED FILES", "Binary, Executables", ""})},
                 {"URLFileExt",
                  pick({"",   "bmp", "png", "gif", "GIF", "jpe", "pdf", "htm", "xml", "asp",
                        "js", "css", "php", "xls", "ppt", "exe", "hlp", "mdb", "rtf", "xyz"})},
                 {"URL", pick({"http://google.example/", "http://h/a.PHP", "http://h/", "file:///c",
                               "http://yim.example", "http://live.com", "http://aol.example",
                               "http://b/?facebook", "http://ebay", "http://myspace",
                               "http://YouTube.example/", "http://blog"})}})));
        // What an import of an earlier version left open.
        made.push_back(static_cast<std::int32_t>(
            add({{"URL", nullptr}, {"URLFileExt", nullptr}, {"Category", nullptr}})));
        std::shuffle(made.begin(), made.end(), random);
        return made;
    }
    Unwatched task;
};

TEST_F(FilterIdsTest, findsByColumnsWhatTheRecordsGiveForEveryFlag) {
    std::mt19937 random(7);
    const RowIds from = addMadeRows(random);
    for (const FilterFlag &each : filterFlags()) {
        EXPECT_EQ(byColumns(from, withKind(each.flag)), oneByOne(from, withKind(each.flag)))
            << each.name;
        RecordFilters alone;
        alone.*each.flag = true;
        EXPECT_EQ(byColumns(from, alone), oneByOne(from, alone)) << each.name << " alone";
    }
}

TEST_F(FilterIdsTest, findsByColumnsWhatTheRecordsGiveForAnyCombination) {
    std::mt19937 random(11);
    const RowIds from = addMadeRows(random);
    for (int round = 0; round < 60; ++round) {
        RecordFilters filters;
        const unsigned oneIn = 1 + static_cast<unsigned>(random() % 8);
        for (const FilterFlag &each : filterFlags())
            filters.*each.flag = random() % oneIn == 0;
        EXPECT_EQ(byColumns(from, filters), oneByOne(from, filters)) << "round " << round;
    }
}

TEST_F(FilterIdsTest, keepsTheOrderAndPassesOverRowsThatAreGone) {
    for (int i = 0; i < 4; ++i)
        add({{"URLFileExt", i == 1 ? "bmp" : "gif"}, {"CacheType", "IE CACHE"}});
    EXPECT_EQ(byColumns({4, 99, 2, 1, -3, 3}, withKind(&RecordFilters::showGIF)),
              (RowIds{4, 1, 3}));
    EXPECT_EQ(byColumns({}, withKind(&RecordFilters::showGIF)), RowIds{});
}

TEST_F(FilterIdsTest, findsRowsFarFromEachOtherAndTwice) {
    for (int i = 0; i < 60; ++i)
        add({{"URLFileExt", i % 2 == 0 ? "bmp" : "gif"}, {"CacheType", "IE CACHE"}});
    EXPECT_EQ(byColumns({60, 2, 1, 30, 60, 59, 1000000, 44}, withKind(&RecordFilters::showGIF)),
              (RowIds{60, 2, 30, 60, 44}));
}

TEST_F(FilterIdsTest, showsHowFarItIs) {
    for (int i = 0; i < 4; ++i)
        add({});
    test::MemoryTask shown;
    RowIds left;
    filterIds(db(), {1, 2, 3, 4}, withSources(), shown, left);
    ASSERT_EQ(shown.steps.size(), 4u);
    EXPECT_EQ(shown.steps[1].topMessage, "Validating and Loading Records ");
    EXPECT_EQ(shown.steps[1].bottomMessage, "URL 2 of 4");
    EXPECT_DOUBLE_EQ(shown.fractions[2], 0.5);
}

TEST_F(FilterIdsTest, aCancelKeepsTheRowsThatPassed) {
    for (int i = 0; i < 5; ++i)
        add({{"URLFileExt", "gif"}});
    test::CancelAfter soon(2);
    RowIds left;
    EXPECT_EQ(filterIds(db(), {5, 1, 2, 3, 4}, withKind(&RecordFilters::showGIF), soon, left),
              Walk::Cancelled);
    EXPECT_EQ(left, (RowIds{1, 2}));
}

} // namespace
} // namespace nv
