#pragma once

#include "reports/pages/PageParts.h"
#include "reports/pages/References.h"
#include "reports/pages/SafePage.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// In bytes.
inline constexpr std::size_t kLongestSinglePage = std::size_t{64} << 20;

/// A place in a part ("#a") that needs no quotes anywhere; empty for any other.
std::string_view plainPlace(std::string_view place);

/// The parts of a guarded folder as data within the page that shows them, and these with their own
/// parts in turn. A part that shows itself, or lies too deep, stays away there. What is given in
/// all is bounded: a few small files that show each other many times would fill any disk.
class PartsInside {
  public:
    /// `page` is the one to open. No more than `most` bytes are given, and no more are read of
    /// pages and styles.
    PartsInside(std::filesystem::path page, PageParts parts, std::size_t most)
        : m_page(std::move(page)), m_parts(std::move(parts)), m_most(most) {}

    /// What stands in place of the part's name, and of the place in it ("#a", or nothing).
    /// Nothing when it stays away. Throws FileFailure.
    std::optional<std::string> address(const PageFolder::value_type &part, std::string_view place,
                                       Use use);
    /// A page that a frame shows; nothing for another part, and for a page that stays away. Throws
    /// FileFailure.
    std::optional<FramedPage> pageIn(const PageFolder::value_type &part);
    /// The page to open, with all inside. Nothing when it is beyond a limit. Throws FileFailure.
    std::optional<std::string> whole();

    /// Something stays away because there was no room left.
    bool isFull() const { return m_isFull; }

  private:
    std::optional<std::string> document(const PageFolder::value_type &part, PageForm form);
    std::optional<std::string> drawing(const PageFolder::value_type &part, Use use);
    std::optional<std::string> asData(std::string_view type, std::string_view text,
                                      std::size_t before);
    std::optional<std::string> made(const PageFolder::value_type &part, Use use);
    std::optional<std::string> plainPart(const std::string &name, std::string_view type);
    std::optional<std::string> styleSheet(const PageFolder::value_type &part);
    std::optional<std::string> given(std::string text, std::size_t before);
    bool begin(const std::string &name);
    std::string textIn(const std::string &name);
    std::filesystem::path fileOf(const std::string &name) const {
        return m_page.parent_path() / name;
    }

    std::filesystem::path m_page;
    PageParts m_parts;
    std::vector<std::string> m_open; ///< parts that are in hand, each shown by the one before
    std::map<std::string, std::string, std::less<>> m_plain; ///< those that show no others
    std::size_t m_most;
    std::size_t m_given = 0; ///< bytes
    std::size_t m_read = 0;  ///< bytes of pages and styles, each as often as it was gone through
    bool m_isFull = false;
};

/// One file that shows what the page of a guarded folder shows: pictures, styles, fonts, films and
/// frames stand in it as data. Nothing when it would be larger than `most` bytes, or takes reading
/// more than that. Throws FileFailure.
std::optional<std::string> singlePage(const std::filesystem::path &page,
                                      std::size_t most = kLongestSinglePage);

} // namespace nv
