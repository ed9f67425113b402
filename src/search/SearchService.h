#pragma once

#include "base/FailureLog.h"
#include "search/Search.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace nv {

/// What a search in the background has come to.
struct SearchNews {
    enum class Step : std::uint8_t {
        indexing,  ///< the index is made; `fraction` of it is done
        indexed,   ///< it is made
        first,     ///< some rows of the lowest ids
        rows,      ///< all rows by the index as it stands
        counts,    ///< `counts` of those rows
        checked,   ///< they are those of the project as it is: nothing more comes
        cancelled, ///< the examiner has stopped the indexing: nothing more comes
        failed,    ///< `failure` says why: nothing more comes
    };
    std::uint64_t number = 0; ///< of the order
    Step step = Step::indexing;
    double fraction = 0;
    std::shared_ptr<const FoundIds> ids = nullptr;
    FoundCounts counts = {};
    std::size_t unread = 0;   ///< rows of which nobody can tell
    std::string failure = {}; ///< for people
    std::vector<Failure> log = {};
};

/// Searches a project while the program goes on: in a thread of its own, over connections of its
/// own, one order at a time. Rows are told of by the index as it stands; whether it still holds is
/// looked at after that, and what has changed is told then.
class SearchService {
  public:
    struct Order {
        std::uint64_t number = 0; ///< the caller's
        RowMatch match;
    };
    /// Is called in another thread than the caller's.
    using Tell = std::function<void(const SearchNews &)>;

    explicit SearchService(IndexPlace place, Tell tell);
    /// Waits until the row in hand is done; of what isn't nothing will be heard.
    ~SearchService();
    SearchService(const SearchService &) = delete;
    SearchService &operator=(const SearchService &) = delete;

    /// Takes the place of the order before. An index that is being made for that one goes on.
    void want(Order order);
    /// Nothing is wanted any more.
    void giveUp();
    /// Stops the making of the index; what is done of it holds.
    void cancelIndexing();

  private:
    class Watch;
    class Messages;
    struct Connections;

    void work();
    std::optional<Order> nextOrder();
    void serve(Order &order);
    bool prepareIndex(Order &order);
    bool find(Order &order);
    bool check(Order &order);
    void tell(SearchNews news);
    bool isWanted(std::uint64_t number);

    const IndexPlace m_place;
    const Tell m_tell;
    std::unique_ptr<Connections> m_connections; ///< of the thread

    std::mutex m_mutex; ///< for all that follows
    std::condition_variable m_wake;
    std::optional<Order> m_waiting;
    std::uint64_t m_current = 0; ///< the order that is wanted; 0 for none
    bool m_stopsIndexing = false;
    bool m_ends = false;

    std::thread m_thread; ///< last: it uses all of the above
};

} // namespace nv
