#pragma once

#include "db/records/HistoryFile.h"
#include "readers/BrowserPlaces.h"
#include "readers/Reader.h"

#include <filesystem>
#include <map>
#include <utility>

namespace nv {

/// Finds out whose artefact a file is: browser, version, profile and person. Its place is asked
/// first, since only that tells whose it was; where that doesn't do, the files beside it, in which
/// browsers note where they are installed. What can't be told stays empty, but for the browser of a
/// known format, which then is "Chromium family" and the like. Files that can't be read tell
/// nothing, and the log is told of them.
class BrowserOf {
  public:
    /// The evidence and the log must outlive it.
    explicit BrowserOf(const Evidence &evidence, FailureLog *log = nullptr)
        : m_evidence(evidence), m_log(log) {}

    Origin operator()(const std::filesystem::path &file, Engine engine);

  private:
    const Evidence &m_evidence;
    FailureLog *m_log;
    /// A cache folder may hold ten thousand files.
    std::map<std::pair<std::filesystem::path, Engine>, Origin> m_known;
};

/// What a format tells of the program: nothing where another tool has written anew what it found.
Engine engineOf(const Reader *reader);

} // namespace nv
