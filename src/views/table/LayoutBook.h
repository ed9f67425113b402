#pragma once

#include "views/table/TableLayout.h"

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What is wrong with a name for a layout.
enum class LayoutNameFault { None, Empty, TooLong, Taken };

/// The column layouts of a project, by name; one of them is shown. Four are built in: "Examiner",
/// which a new project opens with, "Caches", "Pictures", and "Classic", all columns in the order of
/// `UrlColumn` but those that came later (docs/guide/table.md). They can be arranged anew and
/// reset. Names are told apart without regard to case.
class LayoutBook {
  public:
    static constexpr std::string_view kExaminer = "Examiner";
    static constexpr std::string_view kClassic = "Classic";
    static constexpr std::string_view kCaches = "Caches";
    static constexpr std::string_view kPictures = "Pictures";
    static constexpr std::size_t kLongestName = 40; ///< characters

    LayoutBook();

    /// The built-in ones, then the examiner's own in the order of their making.
    std::vector<std::string> names() const;
    const std::string &active() const { return page().name; }
    bool isClassic() const { return active() == kClassic; }
    bool isBuiltIn() const;
    TableLayout &layout() { return m_pages.at(m_active).layout; }
    const TableLayout &layout() const { return page().layout; }
    /// What "Defaults" gives: the built-in layout, that of Examiner for the examiner's own.
    TableLayout defaults() const;

    /// False when there is none of this name.
    bool choose(std::string_view name);
    /// For another layout, or for the active one under another name.
    LayoutNameFault check(std::string_view name, bool renamesActive) const;
    /// A copy of the active one, which then is active. The name must have passed check().
    void saveAs(std::string_view name);
    /// Own ones only, like remove(), after which Examiner is active.
    void rename(std::string_view name);
    void remove();
    void reset() { layout() = defaults(); }

    /// From and to `DefaultSettings`. The active layout is kept column by column, the others as one
    /// text each. A project of a version without layouts was left in Classic.
    void restore(const TableLayout::Read &read);
    void save(const TableLayout::Write &write) const;

  private:
    struct Page {
        std::string name;
        TableLayout layout;
    };
    const Page &page() const { return m_pages.at(m_active); }
    std::size_t find(std::string_view name) const;
    void restoreOthers(const TableLayout::Read &read);

    std::vector<Page> m_pages; ///< the built-in ones first
    std::size_t m_active = 0;
    /// Kept texts that a save has to empty when there are fewer layouts now.
    std::size_t m_kept = 0;
};

} // namespace nv
