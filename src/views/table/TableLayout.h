#pragma once

#include "views/rows/UrlColumns.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// How the examiner has arranged the columns of the table; kept in the project.
class TableLayout {
  public:
    /// Gives the kept text of a name, empty when there is none.
    using Read = std::function<std::string(std::string_view name)>;
    using Write = std::function<void(std::string_view name, std::string_view value)>;

    /// That of layout "Classic".
    TableLayout();

    bool hidden(UrlColumn column) const { return at(column).hidden; }
    void setHidden(UrlColumn column, bool hidden) { at(column).hidden = hidden; }
    /// Whether the column is as wide as what it holds, until the examiner gives it a width.
    bool isFitted(UrlColumn column) const { return at(column).widthTwips == 0; }
    void fit(UrlColumn column) { at(column).widthTwips = 0; }
    /// A column that is shown is never so narrow that it can't be seen.
    int widthTwips(UrlColumn column) const;
    /// Values that no column can have are ignored.
    void setWidthTwips(UrlColumn column, int twips);
    const std::string &header(UrlColumn column) const { return at(column).header; }

    /// All columns as they stand from left to right, the hidden ones too.
    const std::vector<UrlColumn> &order() const { return m_order; }
    std::vector<UrlColumn> shownColumns() const;
    /// 0-based, from the left.
    int position(UrlColumn column) const;
    /// The others close up; a place beyond the end is the end.
    void move(UrlColumn column, int position);

    /// Hidden flags first, positions after. What is missing or makes no sense leaves its column as
    /// it was; so does a position below 0.
    void restore(const Read &read);
    void save(const Write &write) const;

    bool operator==(const TableLayout &) const = default;

  private:
    struct Place {
        bool hidden = false;
        int widthTwips = 0;
        std::string header;
        bool operator==(const Place &) const = default;
    };
    Place &at(UrlColumn column) { return m_places.at(indexOf(column)); }
    const Place &at(UrlColumn column) const { return m_places.at(indexOf(column)); }
    void restorePositions(const Read &read);

    std::array<Place, kTableColumnCount> m_places;
    std::vector<UrlColumn> m_order;
};

} // namespace nv
