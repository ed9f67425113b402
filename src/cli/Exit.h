#pragma once

namespace nv::cli {

// What scripts rely on. 1 stands for wrong usage, and for nothing to work on.
enum class Exit {
    ok = 0,
    usage = 1,
    nothingFound = 1,    ///< of an import: no artefact, nor a place that could hold some unread
    damagedEvidence = 2, ///< an artefact was not read, or not to its end; the rest is there
    rowsNotRead = 2,     ///< rows of the project could not be read; the others are there
    nothingDone = 2,     ///< of a rebuild: no page could be rebuilt; of a template: not each
    notAllRedacted = 2,  ///< of a report: nothing in it fits one of the redactions
    differs = 2,         ///< of an upgrade: the project has not the schema of this build
    projectUnusable = 3, ///< the project can't be opened or written
    interrupted = 130,
};

} // namespace nv::cli
