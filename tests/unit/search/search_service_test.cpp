#include "SearchedProject.h"
#include "search/SearchService.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace nv {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;
using Step = SearchNews::Step;

/// Keeps what a service tells, until a test asks for it.
class Heard {
  public:
    void add(const SearchNews &news) {
        const std::scoped_lock lock(m_mutex);
        m_news.push_back(news);
        m_wake.notify_all();
    }
    /// Waits for this news of this order.
    std::optional<SearchNews> wait(std::uint64_t number, Step step) {
        std::unique_lock lock(m_mutex);
        std::optional<SearchNews> found;
        bool isOver = false;
        m_wake.wait_for(lock, std::chrono::seconds(20), [&] {
            for (const SearchNews &news : m_news) {
                if (news.number == number && news.step == step)
                    found = news;
                isOver |= news.number == number && news.step == Step::failed;
            }
            return found || isOver;
        });
        if (isOver && !found)
            ADD_FAILURE() << m_news.back().failure;
        return found;
    }
    std::size_t count(std::uint64_t number, Step step) {
        const std::scoped_lock lock(m_mutex);
        return static_cast<std::size_t>(
            std::count_if(m_news.begin(), m_news.end(), [&](const SearchNews &news) {
                return news.number == number && news.step == step;
            }));
    }

  private:
    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<SearchNews> m_news;
};

struct SearchServiceTest : testing::Test {
    SearchServiceTest() {
        project.add({{"URL", "http://harbour.example/tide"}, {"Host", "harbour.example"}});
        project.add({{"URL", "http://news.example/"}, {"WebPageTitle", "Weather"}});
        project.add({{"URL", "http://harbour.example/low"},
                     {"Host", "harbour.example"},
                     {"WebPageTitle", "Tide tables"}});
    }
    SearchService::Order order(std::uint64_t number, const std::string &text,
                               SearchScope scope = SearchScope::values) {
        return {number, RowMatch(parseSearch(text), scope)};
    }
    SearchService::Tell teller() {
        return [this](const SearchNews &news) { heard.add(news); };
    }

    test::SearchedProject project;
    Heard heard;
};

TEST_F(SearchServiceTest, tellsRowsThenCountsThenThatTheyHold) {
    SearchService service(project.place(), teller());
    service.want(order(1, "tide"));
    const auto rows = heard.wait(1, Step::rows);
    ASSERT_TRUE(rows);
    EXPECT_THAT(*rows->ids, ElementsAre(1, 3));
    const auto counts = heard.wait(1, Step::counts);
    ASSERT_TRUE(counts);
    EXPECT_THAT(counts->counts.byHost,
                ElementsAre(std::pair(std::string("harbour.example"), std::int64_t{2})));
    EXPECT_TRUE(heard.wait(1, Step::checked));
    EXPECT_EQ(heard.count(1, Step::first), 0U) << "all of them are no more than the first";
}

TEST_F(SearchServiceTest, theFirstRowsComeBeforeAllOfThem) {
    for (int row = 0; row < 300; ++row)
        project.add({{"URL", "http://many.example/"}});
    SearchService service(project.place(), teller());
    service.want(order(1, "many"));
    const auto first = heard.wait(1, Step::first);
    ASSERT_TRUE(first);
    EXPECT_THAT(*first->ids, SizeIs(200));
    const auto rows = heard.wait(1, Step::rows);
    ASSERT_TRUE(rows);
    EXPECT_THAT(*rows->ids, SizeIs(300));
}

TEST_F(SearchServiceTest, theFirstRowsOfSeveralWordsComeBeforeAllOfThemToo) {
    for (int row = 0; row < 300; ++row)
        project.add({{"URL", "http://many.example/"},
                     {"WebPageTitle", row % 100 == 0 ? "Odd" : "Even"},
                     {"HTMLBody", "ebb and flow"}});
    SearchService service(project.place(), teller());
    service.want(order(1, "many even"));
    const auto first = heard.wait(1, Step::first);
    ASSERT_TRUE(first);
    EXPECT_THAT(*first->ids, SizeIs(200));
    EXPECT_EQ(first->ids->front(), 5) << "row 4 is odd";
    EXPECT_THAT(*heard.wait(1, Step::rows)->ids, SizeIs(297));
    service.want(order(2, "ebb flow", SearchScope::all));
    ASSERT_TRUE(heard.wait(2, Step::first));
    EXPECT_THAT(*heard.wait(2, Step::rows)->ids, SizeIs(300));
    // What is told of first is true: where only looking everywhere tells, nothing is.
    std::uint64_t number = 2;
    for (const char *text :
         {"many odd", "many -even", "ma even", "many kind:history", "many flow"}) {
        service.want(order(++number, text, SearchScope::all));
        ASSERT_TRUE(heard.wait(number, Step::checked)) << text;
        EXPECT_EQ(heard.count(number, Step::first), 0U) << text;
    }
}

TEST_F(SearchServiceTest, rowsThatHaveChangedAreFoundInTheEnd) {
    SearchService service(project.place(), teller());
    service.want(order(1, "tide"));
    ASSERT_TRUE(heard.wait(1, Step::checked));
    project.connection().exec("UPDATE URLs SET WebPageTitle = 'High tide' WHERE URL_ID = 2");
    service.want(order(2, "tide"));
    ASSERT_TRUE(heard.wait(2, Step::checked));
    EXPECT_EQ(heard.count(2, Step::rows), 2U) << "first by the index as it stood";
    EXPECT_THAT(*heard.wait(2, Step::rows)->ids, ElementsAre(1, 2, 3));
    project.connection().exec("UPDATE URLs SET Tagged = 1 WHERE URL_ID = 2");
    service.want(order(3, "tide"));
    ASSERT_TRUE(heard.wait(3, Step::checked));
    EXPECT_EQ(heard.count(3, Step::rows), 1U) << "a tick changes no text";
}

TEST_F(SearchServiceTest, pagesAreSearchedWhenTheyAreAskedFor) {
    SearchService service(project.place(), teller());
    service.want(order(1, "/t[iy]de/", SearchScope::all));
    const auto rows = heard.wait(1, Step::rows);
    ASSERT_TRUE(rows);
    EXPECT_THAT(*rows->ids, ElementsAre(1, 3));
}

TEST_F(SearchServiceTest, aProjectThatIsGoneIsTold) {
    IndexPlace place = project.place();
    place.project = project.folder.path() / "gone.nvp";
    SearchService service(place, teller());
    service.want(order(1, "tide"));
    const auto failed = heard.wait(1, Step::failed);
    ASSERT_TRUE(failed);
    EXPECT_THAT(failed->failure, testing::HasSubstr("gone.nvp"));
}

TEST_F(SearchServiceTest, onlyTheLastOrderIsServedToItsEnd) {
    SearchService service(project.place(), teller());
    for (std::uint64_t number = 1; number <= 20; ++number)
        service.want(order(number, "tide"));
    EXPECT_TRUE(heard.wait(20, Step::checked));
    service.giveUp();
    service.want(order(21, "weather"));
    const auto rows = heard.wait(21, Step::rows);
    ASSERT_TRUE(rows);
    EXPECT_THAT(*rows->ids, ElementsAre(2));
}

} // namespace
} // namespace nv
