#pragma once

#include "rebuild/exact/PartFiles.h"
#include "rebuild/exact/Reference.h"
#include "rebuild/exact/UsedDrawings.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nv {

/// Bytes of parts that stand within the texts of a page and of all that it brings.
inline constexpr std::size_t kMostInside = std::size_t{32} << 20;
/// Of one part, before it is written in letters.
inline constexpr std::size_t kLargestInside = std::size_t{1} << 20;

/// How the parts that were found are named in one document: as files beside it, as data, or as a
/// place in the document, into which a drawing was put.
class ShownParts {
  public:
    /// `text` is the document's. `takesDrawings` says that drawings can be put into it. `room` is
    /// what is left of kMostInside. All must outlive it.
    ShownParts(const PartFiles &files, std::string_view text, bool takesDrawings, std::size_t &room,
               FailureLog &log)
        : m_files(files), m_takesDrawings(takesDrawings), m_room(room), m_log(log),
          m_used(text, room) {}

    /// The address for the part. `place` is the fragment ("#a"), or nothing. Nothing for a part
    /// that is too large for where it has to stand.
    std::optional<std::string> address(const Reference &reference, const PartFile &file,
                                       const std::string &place);
    /// What goes into the document's body; to be asked for once.
    std::string drawings() { return m_used.markup(); }

  private:
    const std::optional<std::string> &inside(const PartFile &file, std::string_view type,
                                             std::size_t most);
    std::optional<std::string> made(const PartFile &file, std::string_view type,
                                    std::size_t most) const;
    std::optional<std::string> used(const PartFile &file, const std::string &place);

    const PartFiles &m_files;
    bool m_takesDrawings;
    std::size_t &m_room;
    FailureLog &m_log;
    UsedDrawings m_used;
    /// By the file's name and the bytes that it may have.
    std::map<std::pair<std::string, std::size_t>, std::optional<std::string>> m_inside;
    std::size_t m_kept = 0; ///< bytes in m_inside
};

} // namespace nv
