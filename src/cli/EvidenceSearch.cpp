#include "cli/EvidenceSearch.h"

#include "base/Files.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "readers/Registry.h"

#include <fmt/format.h>

#include <filesystem>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

/// Each PATH as that artefact.
ScanResult listedAs(Session &session, const Reader &reader, const std::vector<fs::path> &paths) {
    ScanResult all;
    for (const fs::path &path : paths) {
        const ScanResult found = listAs(reader, path, session.task, session.program.log);
        for (const HistoryFile &file : found.historyFiles)
            all.historyFiles.add(file);
        all.gaps.add(found.gaps);
        all.places.push_back({.path = path, .isFile = true, .artefacts = 1});
        all.cancelled = found.cancelled;
        if (all.cancelled)
            break;
    }
    return all;
}

void tellUnknown(Session &session, const ScanResult &found) {
    for (const ScannedPlace &place : found.places)
        // Whoever names a file expects it to be read.
        if (place.isFile && place.artefacts + place.unreadable == 0 && !found.cancelled)
            session.err << fmt::format(
                "\"{}\" is not known as an artefact by its name, place and first "
                "bytes; --as READER takes it as one\n",
                printable(textOf(place.path)));
}

} // namespace

ScanGaps takeUnreachable(std::vector<std::string> &paths, FailureLog &log) {
    ScanGaps gaps;
    std::erase_if(paths, [&](const std::string &path) {
        std::error_code failed;
        if (fs::status(path, failed).type() != fs::file_type::none)
            return false;
        const std::string reason = FileFailure("cannot open", path, failed.value()).what();
        log.write({reason, "ImportForm.NextBtn_Click()", Severity::Warning,
                   std::string(kContactSupport)});
        gaps.unreadable.push_back({fs::absolute(path).lexically_normal(), reason});
        return true;
    });
    return gaps;
}

ScanResult findArtefacts(Session &session, const std::vector<std::string> &paths,
                         const std::string &as, const ScanGaps &gaps) {
    ImportSettings &job = session.program.import;
    std::vector<fs::path> places;
    places.reserve(paths.size());
    for (const std::string &path : paths)
        places.push_back(fs::canonical(path));
    const Reader *reader = readerByKey(as);
    ScanResult found = reader ? listedAs(session, *reader, places)
                              : scanPlaces(job, places, session.task, session.program.log);
    tellUnknown(session, found);
    job.historyFiles = found.historyFiles;
    job.gaps = gaps;
    job.gaps.add(found.gaps);
    return found;
}

} // namespace nv::cli
