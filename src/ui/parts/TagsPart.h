#pragma once

#include "app/jobs/TagJob.h"
#include "ui/parts/Workbench.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

class QAction;

namespace nv {

class PlacesPane;
class TagsPane;

/// Named tags in the main window: the list beside the table, the menu of the chosen rows, the keys
/// 1 to 9, the limit to rows of a tag, and steps of the window's undo. What it does to the project
/// goes through app/jobs/TagJob.h.
class TagsPart final : public QObject, public Limiter {
    Q_OBJECT

  public:
    explicit TagsPart(Workbench &bench);

    // Limiter
    QVariant limit() const override;
    void setLimit(const QVariant &limit) override;
    std::vector<LimitChip> chips() const override;
    bool asksAgain() const override { return false; }

  private:
    friend class TagStep;

    void addMenu();
    void connectPane();
    void connectPlaces();
    void takeProject();
    void fill();
    void fillPlaces();
    void fillMenu();
    void addTagActions(const RowIds &rows);
    void showPane(bool shown);

    /// Gives the chosen rows the n-th tag, or takes it away when all of them have it.
    void pressKey(int digit);
    void flip(const NamedTag &tag);
    /// Gives the rows of places a tag, or takes it away.
    void tagPlaces(const PlaceChoice &places, const NamedTag &tag, bool isSet);
    /// What has come of an order; nothing when it was cancelled.
    void take(const TagOrder &order, std::optional<TagChange> change);
    /// Runs what changes tags of `rows` rows; long work shows itself and can be cancelled.
    void work(std::size_t rows, const std::function<void(TaskMonitor &)> &change) const;
    void undo();
    void redo();
    /// The rows' tags have changed in the project.
    void showChanged(const QString &notice);
    QString textOf(const TagChange &change, bool isBack) const;

    std::optional<NamedTag> makeNew();
    void edit(std::int64_t tagID);
    void remove(std::int64_t tagID);
    void move(std::int64_t tagID, int steps);
    void limitTo(const TagLimit &limit);
    const NamedTag *find(std::int64_t tagID) const;

    Workbench &m_bench;
    TagsPane *m_pane = nullptr;
    PlacesPane *m_places = nullptr;
    QAction *m_show = nullptr;
    std::vector<NamedTag> m_tags; ///< as of the last look
    TagHistory m_history;
};

} // namespace nv
