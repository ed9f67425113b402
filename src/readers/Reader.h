#pragma once

#include "base/ByteView.h"
#include "base/Clock.h"
#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "db/HistoryFile.h"
#include "db/URLClass.h"
#include "readers/Evidence.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace nv {

/// Where a reader's records go, one at a time, in the order of the file.
class RecordSink {
  public:
    virtual ~RecordSink() = default;
    /// Saves the record: its URLID stands in it afterwards, and its category and links are stored.
    virtual void save(URLClass &record) = 0;
};

/// Facts of a cached file's bytes, gathered in one reading and kept for the file in hand.
class ContentProbe;

/// How the reading of one artefact ended.
enum class ReadState {
    complete,
    cancelled,
    cutShort,   ///< damage ended the reading: `reason` says where, `notReached` how much
    failed,     ///< nothing could be read at all: `reason` says why
    notReadYet, ///< a form of the format that this program doesn't read: `reason` names it
};

struct ReadResult {
    ReadState state = ReadState::complete;
    std::string reason;
    std::uint64_t notReached = 0; ///< entries behind the damage
    /// Records that are there and that the reader's rules pass over, by reason.
    std::map<std::string, std::uint64_t> passedOver;
    /// What an examiner has to know of records that are stored all the same, by reason.
    std::map<std::string, std::uint64_t> noted = {};
};

/// All that a reader gets. It asks nobody, knows no database, and writes only below `scratch`.
struct ReadContext {
    HistoryFile &file; ///< the reader may refine its type and version
    const Evidence &evidence;
    ContentProbe &content;
    const Clock &clock;
    std::filesystem::path scratch; ///< an existing folder of the program's own
    RecordSink &sink;
    FailureLog &log;
    TaskMonitor &task;
    bool deleted = false; ///< the file comes from deleted space
};

/// What recognition knows of a file, all texts lower-case, separators of the path "/".
struct Candidate {
    const Evidence *evidence = nullptr; ///< for a look at what lies beside the file
    std::filesystem::path file;
    std::string name;
    std::string path;
    std::string extension;
    ByteView head; ///< the first limits::kHeadBytes; empty when contents aren't verified
    bool verifySignatures = true;
};

class BodyTarget;

/// Writes the body of a record that its reader made to `target`, as it is stored. The rest of its
/// file's folder may be used meanwhile. False when evidence doesn't hold the body; throws
/// EvidenceFailure, OutOfBytes and other failures of reading.
using Fetch = bool (*)(const URLClass &record, const Evidence &evidence, BodyTarget &target);

/// One format. The table in Registry.cpp is the list of them, in order of trial.
struct Reader {
    HistoryFileType type;
    std::string_view key;     ///< "ie-index": tests, documents and the command line use it
    std::string_view kind;    ///< what the wizard's list calls it
    std::string_view version; ///< goes to HistoryFile::Version
    std::string_view option;  ///< the wizard's check box that turns it on
    std::string_view mask;    ///< file masks, separated by ";"
    bool (*recognises)(const Candidate &);
    /// Null while the format is listed but not read yet.
    ReadResult (*read)(ReadContext &);
    /// Null where the cached bodies are files of their own, or the format has none.
    Fetch fetch = nullptr;
};

} // namespace nv
