#pragma once

#include "search/SearchService.h"
#include "ui/parts/Workbench.h"

#include <QTimer>

#include <memory>
#include <optional>

class QMainWindow;

namespace nv {

class SearchBar;
class SearchHelp;
class SearchHits;
class WorkProgress;

/// The search in the main window: its box above the table, and the rows that it leaves. It is done
/// in a thread of its own; rows come as they are found.
class SearchPart final : public QObject, public Limiter {
    Q_OBJECT

  public:
    explicit SearchPart(Workbench &bench);
    ~SearchPart() override;
    SearchPart(const SearchPart &) = delete;
    SearchPart &operator=(const SearchPart &) = delete;

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override;
    std::vector<LimitChip> chips() const override;
    bool asksAgain() const override { return false; }
    bool isBeingTyped() const override;

    /// What is looked for, and what was found: equal searches find the same.
    struct Search {
        QString text;
        SearchScope scope = SearchScope::values;
        std::shared_ptr<const FoundIds> ids;
        QString zone = {}; ///< by whose clock its dates go; empty for one without dates
        bool operator==(const Search &other) const {
            return text == other.text && scope == other.scope && zone == other.zone;
        }
    };

  private:
    void addActions(QMainWindow &window);
    void connectBar();
    void open();
    void close();
    void startService();

    void type(const QString &text);
    void enter(const QString &text);
    void start(const QString &text, SearchScope scope);
    void look(const QString &text, SearchScope scope);
    QString zoneOf(const QString &text) const;
    void drop();
    void again();

    void makeIndex();
    void hear(const SearchNews &news);
    void tellIndexing(const SearchNews &news);
    void end(const SearchNews &news);
    /// Rows that were found. They wait while a task has the project.
    void takeRows();
    void tellRows(std::size_t unread);

    void fillMenu();
    void keep();

    Workbench &m_bench;
    SearchBar *m_bar = nullptr;
    SearchHelp *m_help = nullptr;
    SearchHits *m_hits = nullptr;
    WorkProgress *m_progress = nullptr;
    QTimer m_pause;                          ///< after a letter
    QTimer m_settle;                         ///< rows have come
    Search m_wanted;                         ///< what the service looks for, or has looked for
    std::optional<Search> m_search;          ///< in force in the table
    std::shared_ptr<const FoundIds> m_found; ///< not taken up yet
    bool m_isWhole = false;                  ///< m_found is all that is found
    std::size_t m_unread = 0;
    std::uint64_t m_number = 0;               ///< of the last order
    std::uint64_t m_indexOrder = 0;           ///< the last one that was for the index alone
    std::uint64_t m_closedAt = 0;             ///< the last order of the project before
    std::int64_t m_searchedTo = 0;            ///< the last record at the time of the search
    std::unique_ptr<SearchService> m_service; ///< from the first search of a project on
};

} // namespace nv
