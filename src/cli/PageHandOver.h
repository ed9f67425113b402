#pragma once

#include "app/jobs/RebuildJob.h"
#include "cli/Exit.h"
#include "cli/HandOver.h"
#include "views/rows/UnreadRows.h"

#include <cstddef>
#include <filesystem>
#include <utility>

namespace nv::cli {

class Session;

/// Hands rebuilt pages over in the forms that were asked for.
class PageHandOver {
  public:
    /// The first two must outlive it.
    PageHandOver(Program &program, RecordTools &tools, std::filesystem::path out,
                 const HandOverForms &forms)
        : m_program(program), m_tools(tools), m_out(std::move(out)), m_forms(forms) {}

    /// `page` was rebuilt; its folder is gone afterwards. Throws StorageFailure and FileFailure.
    void take(const RebuiltPage &page);

    /// Says what could not be handed over. `exit` where there is no such page.
    Exit tell(Session &session, Exit exit) const;

  private:
    void writeArchive(const RebuiltPage &page);

    Program &m_program;
    RecordTools &m_tools;
    std::filesystem::path m_out;
    HandOverForms m_forms;
    std::size_t m_tooLarge = 0;
    UnreadRows m_unread; ///< of parts
};

} // namespace nv::cli
