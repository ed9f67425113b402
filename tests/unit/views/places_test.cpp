#include "MadeProject.h"
#include "db/marks/RecordTags.h"
#include "support/TestDoubles.h"
#include "views/limits/PlaceLimit.h"
#include "views/limits/Places.h"
#include "views/limits/TreesApart.h"
#include "views/table/UrlTable.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct PlacesTest : testing::Test, test::MadeProject {
    struct Row {
        std::string person;
        std::string browser;
        std::string profile;
        std::string kind;
        std::string host;
        std::string folder = "/evidence/";
    };
    std::int32_t addRow(const Row &row) {
        return static_cast<std::int32_t>(add({{"RootPath", row.folder},
                                              {"Person", row.person},
                                              {"Browser", row.browser},
                                              {"Profile", row.profile},
                                              {"CacheType", row.kind},
                                              {"Host", row.host}}));
    }
    static void write(std::vector<std::string> &lines, const std::vector<PlaceNode> &nodes,
                      std::size_t depth) {
        for (const PlaceNode &node : nodes) {
            lines.push_back(std::string(depth, '-') +
                            fmt::format("{} {}", placeName(node.term), node.records));
            write(lines, node.children, depth + 1);
        }
    }
    static std::vector<std::string> linesOf(const std::vector<PlaceNode> &nodes) {
        std::vector<std::string> lines;
        write(lines, nodes, 0);
        return lines;
    }
    const Places &load() {
        EXPECT_EQ(loadPlaces(db(), task, places), Walk::Finished);
        return places;
    }
    RowIds rowsOf(const PlaceChoice &choice) {
        RowIds ids;
        for (std::int32_t id = 1; id <= last; ++id)
            ids.push_back(id);
        EXPECT_EQ(keepIn(db(), choice, task, ids), Walk::Finished);
        return ids;
    }
    /// Every node finds as many rows as it counts.
    void expectCountsHold(const std::vector<PlaceNode> &nodes, const PlaceLimit &outer) {
        for (const PlaceNode &node : nodes) {
            PlaceLimit limit = outer;
            limit.terms.push_back(node.term);
            EXPECT_EQ(rowsOf({{limit}, {}}).size(), node.records) << placeText(limit);
            EXPECT_EQ(rowsOf({{}, {limit}}).size(), places.records - node.records)
                << placeText(limit);
            expectCountsHold(node.children, limit);
        }
    }
    NamedTag addTag(const std::string &name) {
        return NamedTags(db()).add(
            {.tagID = 0, .name = name, .color = {}, .position = 0, .note = {}});
    }
    void addUsual() {
        addRow({"ada", "Edge", "Default", "Chrome Cache", "www.harbour.co.uk"});
        addRow({"ada", "Edge", "Default", "Chrome History", "Mail.Harbour.co.uk"});
        addRow({"ada", "Edge", "Default", "Chrome History", "mail.harbour.co.uk"});
        addRow({"ada", "Edge", "Work", "Chrome Cookie", "1.2.3.4"});
        addRow({"bob", "Firefox", "x.default", "Firefox Cookie", "forum.example"});
        addRow({"bob", "Firefox", "x.default", "Of another program", ""});
        last = 6;
    }

    test::MemoryTask task;
    Places places;
    std::int32_t last = 0;
};

TEST_F(PlacesTest, aProjectWithoutRowsHasNone) {
    EXPECT_EQ(load().records, 0U);
    EXPECT_THAT(places.evidence, IsEmpty());
    EXPECT_THAT(places.hosts, IsEmpty());
    EXPECT_THAT(places.kinds, IsEmpty());
}

TEST_F(PlacesTest, evidenceIsATreeWithCounts) {
    addUsual();
    EXPECT_THAT(linesOf(load().evidence),
                ElementsAre("/evidence/ 6", "-ada 4", "--Edge 4", "---Default 3", "----History 2",
                            "----Cache 1", "---Work 1", "----Cookies 1", "-bob 2", "--Firefox 2",
                            "---x.default 2", "----Cookies 1", "----Other 1"));
    EXPECT_EQ(places.records, 6U);
}

TEST_F(PlacesTest, hostsStandBelowTheirRegisteredDomain) {
    addUsual();
    EXPECT_THAT(linesOf(load().hosts),
                ElementsAre("harbour.co.uk 3", "-mail.harbour.co.uk 2", "-www.harbour.co.uk 1",
                            "(no host) 1", "1.2.3.4 1", "forum.example 1"));
}

TEST_F(PlacesTest, kindsStandBelowTheirGroup) {
    addUsual();
    EXPECT_THAT(linesOf(load().kinds),
                ElementsAre("History 2", "-CHROME HISTORY 2", "Cache 1", "-CHROME CACHE 1",
                            "Cookies 2", "-CHROME COOKIE 1", "-FIREFOX COOKIE 1", "Other 1",
                            "-OF ANOTHER PROGRAM 1"));
}

TEST_F(PlacesTest, tagsStandInTheirOrderAndRowsWithoutAnyBehindThem) {
    addUsual();
    EXPECT_THAT(linesOf(load().tags), ElementsAre("(untagged) 6"));
    const NamedTag later = addTag("Later");
    const NamedTag important = addTag("Important");
    addTag("Never");
    RecordTags(db()).set(later.tagID, RowIds{1, 2}, "", task);
    RecordTags(db()).set(important.tagID, RowIds{2, 5}, "", task);
    EXPECT_THAT(linesOf(load().tags),
                ElementsAre("Later 2", "Important 2", "Never 0", "(untagged) 3"));
    expectCountsHold(places.tags, {});
    EXPECT_EQ(rowsOf({{{{{PlaceField::Tag, "Later"}}}, {{{PlaceField::Tag, "Important"}}}}, {}}),
              (RowIds{1, 2, 5}));
    EXPECT_THAT(rowsOf({{{{{PlaceField::Tag, "Of nobody"}}}}, {}}), IsEmpty());
}

TEST_F(PlacesTest, theRowsOfPlacesAreFoundForWhoeverMarksThem) {
    addUsual();
    RowIds rows;
    UnreadRows unread;
    const PlaceChoice chosen{{{{{PlaceField::Person, "bob"}}}, {{{PlaceField::Host, "1.2.3.4"}}}},
                             {}};
    EXPECT_EQ(placeRows(db(), chosen, task, rows, unread), Walk::Finished);
    EXPECT_EQ(rows, (RowIds{4, 5, 6}));
    EXPECT_THAT(unread, IsEmpty());
}

TEST_F(PlacesTest, aLevelOfWhichNothingIsKnownIsLeftOut) {
    addRow({"", "", "", "IE Cache", "a.example"});
    add({{"CacheType", "IE Cache"}, {"RootPath", "/evidence/"}});
    last = 2;
    EXPECT_THAT(linesOf(load().evidence), ElementsAre("/evidence/ 2", "-Cache 2"));
    expectCountsHold(places.evidence, {});
}

TEST_F(PlacesTest, everyPlaceFindsTheRowsThatItCounts) {
    addUsual();
    load();
    expectCountsHold(places.evidence, {});
    expectCountsHold(places.hosts, {});
    expectCountsHold(places.kinds, {});
}

TEST_F(PlacesTest, placesAreAddedAndLeftOut) {
    addUsual();
    const PlaceLimit ada{{{PlaceField::Person, "ada"}}};
    const PlaceLimit cookies{{{PlaceField::Group, "Cookies"}}};
    const PlaceLimit mail{{{PlaceField::Host, "mail.harbour.co.uk"}}};
    EXPECT_THAT(rowsOf({{ada, cookies}, {}}), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_THAT(rowsOf({{ada}, {cookies, mail}}), ElementsAre(1));
    EXPECT_THAT(rowsOf({{}, {ada}}), ElementsAre(5, 6));
    EXPECT_THAT(rowsOf({}), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(placeText(PlaceChoice{{ada, cookies}, {mail}}),
              "ada or Cookies, without mail.harbour.co.uk");
    EXPECT_EQ(placeText(PlaceChoice{{}, {{{{PlaceField::Host, ""}}}}}), "Without (no host)");
}

TEST_F(PlacesTest, theTableShowsTheRowsOfThePlacesAndCountsTheOthers) {
    addUsual();
    UrlTable table(db(), log, zone);
    table.places.only = {{{{PlaceField::Person, "bob"}}}};
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 2U);
    EXPECT_EQ(table.hiddenCount(), 4U);
    EXPECT_EQ(table.sortBy(UrlColumn::Host, SortDirection::Ascending, task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 2U);
    EXPECT_EQ(table.idsOfAllTimes().size(), 2U);
    table.places = {};
    EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
    EXPECT_EQ(table.rowCount(), 6U);
}

TEST_F(PlacesTest, ofADomainThoseHostsThatItCounts) {
    addRow({"", "", "", "IE Cache", "ada.github.io"});
    addRow({"", "", "", "IE Cache", "www.ada.github.io."});
    addRow({"", "", "", "IE Cache", "github.io"});
    addRow({"", "", "", "IE Cache", "notharbour.example"});
    addRow({"", "", "", "IE Cache", "harbour.example"});
    addRow({"", "", "", "IE Cache", "a_b.example"});
    addRow({"", "", "", "IE Cache", "axb.example"});
    last = 7;
    load();
    expectCountsHold(places.hosts, {});
    EXPECT_THAT(rowsOf({{{{{PlaceField::Domain, "github.io"}}}}, {}}), ElementsAre(3));
}

TEST_F(PlacesTest, hostileValuesAreValues) {
    const std::string quote = "'; DROP TABLE URLs; --";
    const std::string odd = "\"]}$[0] % _ \xE2\x80\xAE";
    addRow({quote, odd, "\\", quote, odd, quote});
    addRow({"ada", "Edge", "Default", "Chrome Cache", std::string(70'000, 'a') + ".example"});
    addRow({"ada", "Edge", "Default", "Chrome Cache", "..."});
    last = 3;
    load();
    expectCountsHold(places.evidence, {});
    expectCountsHold(places.hosts, {});
    expectCountsHold(places.kinds, {});
}

TEST_F(PlacesTest, aProjectOfAnEarlierBuildKnowsNoPersons) {
    addUsual();
    for (const char *column : {"Browser", "Profile", "Person"})
        db().exec(fmt::format("ALTER TABLE URLs DROP COLUMN {}", column));
    EXPECT_THAT(linesOf(load().evidence),
                ElementsAre("/evidence/ 6", "-History 2", "-Cache 1", "-Cookies 2", "-Other 1"));
    expectCountsHold(places.evidence, {});
    EXPECT_THAT(rowsOf({{{{{PlaceField::Person, "ada"}}}}, {}}), IsEmpty());
}

TEST_F(PlacesTest, aCancelLeavesNothing) {
    db().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50000) "
              "INSERT INTO URLs(Host) SELECT 'host' || i FROM n");
    test::CancelAfter soon(1);
    EXPECT_EQ(loadPlaces(db(), soon, places), Walk::Cancelled);
    EXPECT_THAT(places.hosts, IsEmpty());
}

TEST_F(PlacesTest, manyPlacesCostNoSquare) {
    db().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) "
              "INSERT INTO URLs(Host, Person, Browser, CacheType, RootPath) SELECT "
              "'h' || i || '.example', 'p' || i, 'b' || i, 'k' || i, 'r' || i FROM n");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(load().evidence.size(), 100'000U);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

/// Chosen together they have a base folder in common, which says nothing of either.
TEST_F(PlacesTest, eachChosenFolderIsANode) {
    const auto keep = [this](const char *name, const char *kept) {
        insert("DefaultSettings", {{"DefaultName", name}, {"DefaultValue", kept}});
    };
    const auto from = [this](std::int64_t source, const char *path, const char *root) {
        last = static_cast<std::int32_t>(
            add({{"SourceFile_ID", source}, {"HistoryFilePath", path}, {"RootPath", root}}));
    };
    const auto file = [this](const char *path) {
        return insert("SourceFiles", {{"FilePath", std::string(path)}});
    };
    const std::int64_t inA = file("/ev/a/History");
    const std::int64_t page = file("/ev/b/page.htm");
    const std::int64_t cache = file("/ev/b/cache2");
    const std::int64_t elsewhere = file("/elsewhere/x");
    keep("EvidenceFolder1", "/ev/a");
    from(inA, "/ev/a/History", "/ev/");
    from(page, "", "/ev/");
    EXPECT_THAT(linesOf(load().evidence), ElementsAre("/ev/ 2", "-Other 2"))
        << "a project with one folder stays as it is";
    keep("EvidenceFolder2", "/ev/b/sub");
    keep("EvidenceFolder3", "/ev/b");
    keep("EvidenceFolder4", "/ev/b2");
    keep("EvidenceFolder7", "/other/cache-x");
    keep("EvidenceFolder5", "/other/cache2");
    from(inA, "/ev/b/History", "/ev/"); // the same bytes, so the same source
    from(cache, "/ev/b/sub/x", "/ev/"); // within a folder that was chosen too
    from(inA, "/moved/a/History", "/moved/");
    from(elsewhere, "/ev/b2/History", "/");
    from(elsewhere, "/other/cache2", "/");    // a folder that is read as one
    from(elsewhere, "/ev/c/History", "/ev/"); // of an earlier build, which kept no folders
    from(elsewhere, "", "");
    last = static_cast<std::int32_t>(add({{"SourceFile_ID", inA}, // a page with the same bytes
                                          {"CacheFileRelativePath", "b2/page.htm"},
                                          {"RootPath", "/ev/"}}));
    std::vector<std::string> nodes;
    for (const PlaceNode &node : load().evidence)
        nodes.push_back(fmt::format("{} {}", placeName(node.term), node.records));
    EXPECT_THAT(nodes, ElementsAre("(no folder) 1", "/ev/ 1", "/ev/a/ 2", "/ev/b/ 3", "/ev/b2/ 2",
                                   "/other/cache2/ 1"));
    expectCountsHold(places.evidence, {});
    keep("EvidenceFolder8", "/ev/c");
    EXPECT_THAT(rowsOf({{{{{PlaceField::Evidence, "/ev/c/"}}}}, {}}), ElementsAre(8))
        << "what a later import adds is known at once";
}

/// A project of a build before doesn't know its folders, and says so by its base folder.
TEST_F(PlacesTest, aProjectWithoutFoldersHasItsBaseFolder) {
    addRow({"ada", "Edge", "Default", "Chrome Cache", "a.example", "/ev/"});
    last = 1;
    db().exec("DROP TABLE SourceFiles");
    EXPECT_THAT(linesOf(load().evidence).front(), "/ev/ 1");
    EXPECT_THAT(rowsOf({{{{{PlaceField::Evidence, "/ev/"}}}}, {}}), ElementsAre(1));
}

TEST_F(PlacesTest, hashSetsAreATreeOfTheirOwn) {
    for (const char *host : {"a.example", "b.example", "c.example"})
        addRow({"ada", "Edge", "Default", "IE CACHE", host});
    last = 3;
    EXPECT_THAT(load().hashSets, IsEmpty());
    db().exec("INSERT INTO RecordFacts VALUES (1, 'hashset_known', 'library', 'MD5'), "
              "(2, 'hashset_known', 'library', 'MD5'), (2, 'hashset_notable', 'cases', 'MD5'), "
              "(2, 'hashset_notable', 'more', 'MD5'), (3, 'etag', 'library', NULL)");
    EXPECT_THAT(linesOf(load().hashSets),
                ElementsAre("notable 1", "-cases 1", "-more 1", "known 2", "-library 2"));
    const PlaceLimit known{{{PlaceField::HashMeaning, "known"}}};
    const PlaceLimit cases{{{PlaceField::HashMeaning, "notable"}, {PlaceField::HashSet, "cases"}}};
    EXPECT_THAT(rowsOf({{known}, {}}), ElementsAre(1, 2));
    EXPECT_THAT(rowsOf({{cases}, {}}), ElementsAre(2));
    EXPECT_THAT(rowsOf({{}, {known}}), ElementsAre(3));
    db().exec("PRAGMA legacy_alter_table = ON; DROP TABLE RecordFacts");
    EXPECT_THAT(load().hashSets, IsEmpty());
    EXPECT_THAT(rowsOf({{cases}, {}}), IsEmpty());
}

/// Images of several machines below the one folder that was chosen.
TEST_F(PlacesTest, anAccountOfOneNameInSeveralTreesStandsOncePerTree) {
    const auto from = [this](const char *path, const char *person, const char *browser,
                             const char *profile) {
        last = static_cast<std::int32_t>(add({{"HistoryFilePath", path},
                                              {"RootPath", "/ev/"},
                                              {"Person", person},
                                              {"Browser", browser},
                                              {"Profile", profile},
                                              {"CacheType", "Chrome History"}}));
    };
    const char *profile = "Default";
    from("/ev/pc1/disk/home/ada/.config/chromium/Default/History", "ada", "Chromium", profile);
    from("/ev/pc1/disk/home/ada/.cache/chromium/Default/Cache/x", "ada", "Chromium", profile);
    from("/ev/pc2/disk/home/ada/.config/chromium/Default/History", "ada", "Chromium", profile);
    from("/ev/pc2/disk/home/bea/.config/chromium/Default/History", "bea", "Chromium", profile);
    from("/ev/x/.config/chromium/Default/History", "", "Chromium", profile);
    from("/ev/y/.config/chromium/Default/History", "", "Chromium", profile);
    from("/ev/notes/History", "", "Chromium", profile);
    EXPECT_THAT(linesOf(load().evidence),
                ElementsAre("/ev/ 7", "-(no person) 3", "--Chromium 3", "---Default (elsewhere) 1",
                            "----History 1", "---Default (x) 1", "----History 1",
                            "---Default (y) 1", "----History 1", "-ada (pc1) 2", "--Chromium 2",
                            "---Default 2", "----History 2", "-ada (pc2) 1", "--Chromium 1",
                            "---Default 1", "----History 1", "-bea 1", "--Chromium 1",
                            "---Default 1", "----History 1"));
    expectCountsHold(places.evidence, {});
}

TEST(TreesApartTest, aTreeIsCalledByTheShortestPartThatTellsItFromTheOthers) {
    const auto label = [](const char *tree, std::set<std::string, std::less<>> all) {
        all.insert(tree);
        return treeLabel(tree, all);
    };
    EXPECT_EQ(label("/case/pc3/disk", {"/case/pc4/disk"}), "pc3");
    EXPECT_EQ(label("/case/pc3/c", {"/case/pc3/d", "/case/pc4/c"}), "pc3/c");
    EXPECT_EQ(label("/case/pc3", {"/case/pc3/old"}), "pc3");
    EXPECT_EQ(label("/case/pc3/old", {"/case/pc3"}), "pc3/old");
    EXPECT_EQ(label("/", {"/old"}), "/");
    EXPECT_EQ(label("/old", {"/"}), "old");
    EXPECT_EQ(label("", {"/a", "/b"}), "elsewhere");
    EXPECT_EQ(label("disk", {"x/disk"}), "disk");
    EXPECT_EQ(label("x/disk", {"disk"}), "x/disk");
}

} // namespace
} // namespace nv
