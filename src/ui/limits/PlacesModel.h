#pragma once

#include "views/limits/HashLimit.h"
#include "views/limits/Places.h"
#include "views/limits/TagLimit.h"

#include <QAbstractItemModel>
#include <QIcon>

#include <cstdint>
#include <deque>
#include <optional>

namespace nv {

/// The trees of places: evidence, hosts, kinds and tags, each below a heading of its own, and hash
/// sets where rows were found in some.
class PlacesModel final : public QAbstractItemModel {
    Q_OBJECT

  public:
    enum Column { kPlace, kRecords, kColumns };
    using QAbstractItemModel::QAbstractItemModel;

    void setPlaces(Places places);
    const Places &places() const { return m_places; }
    /// The tags with their rows, as tagPlaces() counts them; nothing else of the tree moves.
    void setTags(std::vector<NamedTag> tags, const std::vector<PlaceNode> &nodes);
    const std::vector<NamedTag> &tags() const { return m_tags; }
    /// Which places are marked as chosen or left out.
    void setChoice(const PlaceChoice &choice);
    /// The same of hash sets.
    void setHashLimit(const HashLimit &limit);
    /// The same of tags.
    void setTagLimit(const TagLimit &limit);
    /// The rows of a place; nothing for a heading.
    std::optional<PlaceLimit> limitAt(const QModelIndex &index) const;
    /// Whether the place is one of those whose rows alone are shown now.
    bool isChosen(const PlaceLimit &limit) const;
    /// The same, or of those that are left out.
    bool isInForce(const PlaceLimit &limit) const { return isChosen(limit) || isLeftOut(limit); }
    /// The place, or all that are chosen of its tree when it is one of them.
    PlaceChoice chosenWith(const PlaceLimit &limit) const;
    /// How many rows a place has.
    std::uint64_t recordsAt(const QModelIndex &index) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  private:
    /// A row of the tree. They stay where they are as long as the places do.
    struct Row {
        const PlaceNode *node = nullptr; ///< null for a heading
        const Row *parent = nullptr;
        int place = 0; ///< among its siblings
        std::vector<const Row *> children;
    };
    void addRows(Row &parent, const std::vector<PlaceNode> &nodes);
    void putTags(const std::vector<PlaceNode> &nodes);
    QModelIndex tagsHeading() const;
    int headings() const;
    bool isLeftOut(const PlaceLimit &limit) const;
    const Row *rowAt(const QModelIndex &index) const;
    static PlaceLimit limitOf(const Row &row);
    QString nameOf(const Row &row) const;
    QVariant lookOf(const Row &row, int role) const;
    QIcon iconOf(const Row &row) const;

    Places m_places;
    PlaceChoice m_choice;
    HashLimit m_hashLimit;
    TagLimit m_tagLimit;
    std::deque<Row> m_rows; ///< the headings first
    std::vector<NamedTag> m_tags;
    std::vector<QIcon> m_tagIcons;    ///< of m_tags
    std::deque<PlaceNode> m_tagNodes; ///< those of m_tagRows
    std::deque<Row> m_tagRows;        ///< stay where they are while others come and go
};

} // namespace nv
