#include "import/HashesBeside.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/SideFiles.h"
#include "import/ArtefactHash.h"

#include <future>
#include <optional>

namespace nv {

namespace fs = std::filesystem;

HashesBeside::HashesBeside(const Evidence &evidence, OpenedFiles &opened, Workers &workers,
                           HistoryFiles &artefacts)
    : m_evidence(evidence), m_opened(opened), m_workers(workers) {
    for (const HistoryFile &artefact : artefacts)
        m_known.insert(artefact.fullPath);
}

/// The hash of a folder is that of all files in it.
bool HashesBeside::isNew(const fs::path &file) const {
    for (fs::path each = file; each.has_relative_path(); each = each.parent_path())
        if (m_known.contains(each))
            return false;
    return m_evidence.kindOf(file) == PlaceKind::file;
}

void HashesBeside::hash(FileBeside &file) const {
    NoLog unheard; // it is told in the order of the files
    const auto failure = failureOf(unheard, {}, [&] {
        const std::optional<FileHashes> hashes = hashesOfArtefact(m_evidence, file.path);
        file.fileSize = hashes->size;
        file.md5Hash = hashes->md5;
        file.sha256Hash = hashes->sha256;
    });
    file.failure = failure.value_or(std::string());
}

void HashesBeside::addLogsOf(const fs::path &artefact) {
    for (const std::string_view suffix : kRowSuffixes)
        if (const fs::path log = sideFile(artefact, suffix); m_evidence.isPlainFile(log))
            m_opened.add(log);
}

std::vector<FileBeside> HashesBeside::take(GapLog &log) {
    std::vector<FileBeside> files;
    for (const fs::path &file : m_opened.take())
        if (isNew(file))
            files.emplace_back().path = file;
    std::vector<std::future<void>> jobs;
    jobs.reserve(files.size());
    for (FileBeside &file : files)
        jobs.push_back(m_workers.start([this, &file] { hash(file); }));
    for (const std::future<void> &job : jobs)
        m_workers.waitFor(job);
    for (const FileBeside &file : files) {
        m_known.insert(file.path);
        if (!file.failure.empty())
            log.unread(file.path, file.failure);
    }
    static_cast<void>(m_opened.take()); // what the hashing opened
    return files;
}

} // namespace nv
