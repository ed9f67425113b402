#include "MadeProject.h"
#include "db/records/UrlRecord.h"
#include "views/limits/Hosts.h"
#include "views/table/UrlTable.h"

#include <limits>
#include <string>
#include <vector>

namespace nv {
namespace {

struct HostsTest : testing::Test, test::MadeProject {
    void visit(const std::string &host, std::int64_t visits) {
        add({{"Host", host}, {"Visits", visits}});
    }
    std::vector<std::string> names(HostSort sort) {
        EXPECT_EQ(listHosts(db(), sort, task, hosts, unread), Walk::Finished);
        std::vector<std::string> all;
        for (const HostRow &each : hosts)
            all.push_back(each.host);
        return all;
    }
    using Names = std::vector<std::string>;
    Unwatched task;
    std::vector<HostRow> hosts;
    UnreadRows unread;
};

TEST_F(HostsTest, listsEachHostOnceByName) {
    EXPECT_EQ(names(HostSort::ByName), Names{});
    visit("b.example", 1);
    visit("a.example", 1);
    visit("b.example", 1);
    visit("B.EXAMPLE", 5);
    EXPECT_EQ(names(HostSort::ByName), (Names{"a.example", "b.example"}));
    EXPECT_EQ(hosts[1].visits, 7);
    EXPECT_EQ(hosts[1].records, 3);
}

TEST_F(HostsTest, listsByVisitsDescendingThenByName) {
    visit("seldom", 1);
    visit("often", 40);
    visit("often", 2);
    visit("also seldom", 1);
    EXPECT_EQ(names(HostSort::ByVisits), (Names{"often", "also seldom", "seldom"}));
    EXPECT_EQ(hosts[0].visits, 42);
}

TEST_F(HostsTest, unknownVisitsTakeNothingAway) {
    visit("h", kVisitsUnknown);
    visit("h", 3);
    add({{"Host", "h"}, {"Visits", nullptr}});
    names(HostSort::ByName);
    ASSERT_EQ(hosts.size(), 1u);
    EXPECT_EQ(hosts[0].visits, 3);
    EXPECT_EQ(hosts[0].records, 3);
}

TEST_F(HostsTest, visitsThatNoNumberHoldsAreNoFailure) {
    visit("h", std::numeric_limits<std::int64_t>::max());
    visit("h", std::numeric_limits<std::int64_t>::max());
    names(HostSort::ByVisits);
    EXPECT_EQ(hosts.at(0).visits, std::numeric_limits<std::int64_t>::max());
}

TEST_F(HostsTest, recordsWithoutAHostAreOneEntry) {
    visit("", 1);
    add({{"Host", nullptr}});
    visit("h", 1);
    EXPECT_EQ(names(HostSort::ByName), (Names{"", "h"}));
    EXPECT_EQ(hosts[0].records, 2);
}

TEST_F(HostsTest, hostileNamesAreTexts) {
    visit("'; DROP TABLE URLs; --", 1);
    visit("100%_[x]", 1);
    visit("\xC3\xA9.example", 1);
    EXPECT_EQ(names(HostSort::ByName),
              (Names{"'; DROP TABLE URLs; --", "100%_[x]", "\xC3\xA9.example"}));
}

TEST_F(HostsTest, eachNameFindsItsRowsLiterally) {
    for (const char *host : {"o'hara.example", "100%_[x]", "foo", "foobar.com"})
        visit(host, 1);
    UrlTable table(db(), log, zone);
    names(HostSort::ByName);
    for (const HostRow &each : hosts) {
        table.choice = {"", true, each.host};
        EXPECT_EQ(table.loadURLs(task), LoadResult::Loaded);
        // "foo" is part of "foobar.com" too.
        EXPECT_EQ(table.rowCount(), each.host == "foo" ? 2u : 1u) << each.host;
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(HostsTest, aCancelLeavesNone) {
    db().exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50000) "
              "INSERT INTO URLs(Host) SELECT 'host' || i FROM n");
    test::CancelAfter soon(1);
    EXPECT_EQ(listHosts(db(), HostSort::ByName, soon, hosts, unread), Walk::Cancelled);
    EXPECT_TRUE(hosts.empty());
}

} // namespace
} // namespace nv
