#pragma once

#include "base/ByteView.h"
#include "base/Clock.h"
#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "db/HistoryFile.h"
#include "db/UrlRecord.h"
#include "readers/Evidence.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Where a reader's records go, one at a time, in the order of the file.
class RecordSink {
  public:
    virtual ~RecordSink() = default;
    /// Takes the record on its way into the project. Rows are written in the order of their coming,
    /// some of them a little later: what the record then holds is what its reader gave, or beyond
    /// that its category, and its URLID.
    virtual void save(UrlRecord &record) = 0;
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
    std::uint64_t notReached = 0; ///< entries after the damage
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
    /// Only the rows of the classic rules, without facts: what else the file holds is counted in
    /// `passedOver` as ever.
    bool classicOnly = false;
    /// Passwords were asked for. Otherwise none is given away, in whatever form it can be read.
    bool secrets = false;
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
    const std::vector<UnreadPlace> *unread = nullptr; ///< what the scan couldn't read so far
};

class BodyTarget;

/// Writes the body of a record that its reader made to `target`, as it is stored. The rest of its
/// file's folder may be used meanwhile. False when evidence doesn't hold the body; throws
/// EvidenceFailure, OutOfBytes and other failures of reading.
using Fetch = bool (*)(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

struct RecordKind;
struct SourceOption;
struct FileForm;

/// What shows that a format is read as it should be.
struct FormatCases {
    std::string_view folders;  ///< of tests/golden, separated by ";"
    std::string_view artefact; ///< its names in a case's folder "input", separated by ";"
    /// "FOLDER/CASE": one without damage. Tests damage it, and fuzzing starts from it.
    std::string_view sound;
};

/// One format: all that the program knows of it. It stands in its folder's Formats.cpp, and the
/// table in Registry.cpp names it in the order of trial.
struct Reader {
    /// Its number, once given, keeps its meaning.
    HistoryFileType type;
    std::string_view key;          ///< "ie-index": tests, documents and the command line use it
    std::string_view kind;         ///< what the wizard's list calls it
    std::string_view version = {}; ///< goes to HistoryFile::Version
    /// The wizard's check box that turns it on; null for what is read only when asked for.
    const SourceOption *option = nullptr;
    std::string_view mask =
        {}; ///< file masks, separated by ";"; formats of an option may share one
    /// Looks at name, path and first bytes, and at the folder where those don't do; has no side
    /// effect. Null: no scan finds it.
    bool (*recognises)(const Candidate &) = nullptr;
    /// Null while the format is listed but not read yet.
    ReadResult (*read)(ReadContext &) = nullptr;
    /// Null where the cached bodies are files of their own, or the format has none.
    Fetch fetch = nullptr;
    /// Of the records that it makes.
    std::span<const RecordKind *const> kinds = {};
    std::string_view page = {}; ///< docs/formats/PAGE.md
    FormatCases cases = {};

    // What few formats need.

    /// What a file of its name has to be where a browser keeps it. Null where other programs' files
    /// have the name in such places too, or the name alone is enough.
    const FileForm *form = nullptr;
    /// Types that its reader may find a file to be, and that it reads as well.
    std::span<const HistoryFileType> furtherTypes = {};
    /// It takes files too that a format before it in the table has taken already.
    bool takesBesideOthers = false;
    /// What is listed and read in place of the file that was recognised: another file, or a folder,
    /// which is listed once however many of its files lead to it.
    std::filesystem::path (*artefact)(const Candidate &) = nullptr;
    /// For caches that browsers keep compiled graphics programs in as well.
    bool (*holdsShaders)(const Candidate &) = nullptr;
    /// Why what is stored from the file has to be read with care, although nothing of it is
    /// damaged; empty for most files. Throws EvidenceFailure.
    std::string (*warningOn)(const std::filesystem::path &file, const Evidence &evidence) = nullptr;
    /// Whether the record came from such a file. Only formats need it that share a kind with
    /// another one and fetch its bodies in another way.
    bool (*isSourceOf)(const UrlRecord &record) = nullptr;
    /// It isn't one of the classic rules: an import by them alone leaves its files out.
    bool isBeyondClassic = false;
    bool isOneRecord = false; ///< a file is one record, and there may be ten thousand files
};

} // namespace nv
