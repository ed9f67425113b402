#include "app/project/HeldIndex.h"

#include "app/project/EvidenceFolders.h"
#include "base/NoLog.h"
#include "base/Trap.h"
#include "search/IndexFile.h"

#include <SQLiteCpp/Database.h>

#include <filesystem>

namespace nv {

HeldIndex::HeldIndex(Program &program, SQLite::Database &writer) {
    const std::filesystem::path file = writer.getFilename();
    std::error_code none;
    if (!std::filesystem::exists(indexBeside(file), none))
        return;
    NoLog unheard; // a project that can't tell isn't written beside
    logFailureOf(unheard, {}, [&] {
        if (!evidenceAround(file, program.state))
            m_mark.emplace(writer);
    });
}

void HeldIndex::keep() {
    if (m_mark)
        m_mark->keep();
}

} // namespace nv
