#pragma once

#include "app/program/Program.h"
#include "search/IndexMark.h"

#include <optional>

namespace nv {

/// The search index of the open project, which holds on over what the program notes for itself: see
/// IndexMark. Leaves one alone that lies among evidence.
class HeldIndex {
  public:
    /// `writer` is a connection to that project.
    HeldIndex(Program &program, SQLite::Database &writer);
    void keep();

  private:
    std::optional<IndexMark> m_mark;
};

} // namespace nv
