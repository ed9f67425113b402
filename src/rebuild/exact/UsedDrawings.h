#pragma once

#include "db/schema/Ids.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// What "use" of SVG names in other files, put into the page that names it: browsers take it from
/// the page's own server only, and a folder is none. Of each file only the elements that are named
/// come, with those that these name in turn: what draws, under ids and classes that the page
/// doesn't have, with the file's own styles for them. Nothing in it runs, moves or leads out.
class UsedDrawings {
  public:
    /// `page` is the text that they are put into. No more than `room` bytes come, which are taken
    /// from it; both must outlive this.
    UsedDrawings(std::string_view page, std::size_t &room);
    ~UsedDrawings();
    UsedDrawings(const UsedDrawings &) = delete;
    UsedDrawings &operator=(const UsedDrawings &) = delete;

    bool knows(UrlId drawing) const { return m_drawings.contains(drawing); }
    /// `text` is UTF-8. One that there is no room for, or beyond the parser's limits, has no
    /// elements.
    void add(UrlId drawing, std::string text);
    /// Where the element of that id stands in the page then ("#..."); an empty id is the drawing
    /// itself. Nothing for an element that isn't there, and where no room is left.
    std::optional<std::string> place(UrlId drawing, std::string_view id);

    /// What goes into the page's body, ASCII; empty for nothing. To be asked for once.
    std::string markup();

  private:
    class Drawing;

    std::string_view m_page;
    std::string m_prefix; ///< of ids and classes, which the page can't have
    std::size_t &m_room;
    std::size_t m_read = 0; ///< bytes of drawings
    bool m_isFull = false;
    std::map<UrlId, std::unique_ptr<Drawing>> m_drawings;
    std::size_t m_ids = 0;
    std::string m_body;
};

} // namespace nv
