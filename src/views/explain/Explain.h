#pragma once

#include "base/Digest.h"
#include "base/FailureLog.h"
#include "db/schema/Ids.h"
#include "readers/Evidence.h"
#include "time/ShownDate.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

class RecordStore;

/// What the evidence says today of a value that was read from it.
enum class OriginCheck {
    same,     ///< it was read again, and gives the value
    differs,  ///< it was read again, and gives another one
    unread,   ///< it can't be read again: `note` says why
    notKept,  ///< how it was made isn't kept: the page of the format tells it in general
    derived,  ///< made by the program of other values
    examiner, ///< the examiner's own
};
/// "same", "differs", "unread", "not kept", "derived", "examiner".
std::string_view checkWord(OriginCheck check);

/// Where a value of a record comes from.
struct ValueOrigin {
    std::string field;
    std::string value; ///< as the properties show it
    OriginCheck check = OriginCheck::notKept;
    std::string place; ///< "table visits, row 17, column visit_time"; may be empty
    std::optional<std::uint64_t> offset; ///< of its bytes in the source file, where they are known
    std::uint64_t length = 0;            ///< of those that lie together
    std::filesystem::path file;          ///< that holds them, where it isn't the source file
    std::string stored;                  ///< the number, text or bytes as they lie; may be empty
    std::string rule;                    ///< the clock or rule that made the value
    std::string zone; ///< of a date: the zone it is in, and the one it was read in
    std::string note; ///< what else has to be known; may be empty
};

/// Whether the source file is the one that was imported. Hashes decide.
enum class SourceNow { same, changed, gone, unhashed };

/// A file beside the source file in which values or the content of a record lie.
struct FurtherFile {
    std::string name;
    std::string sha256;     ///< today; empty when it can't be read
    std::string sha256Then; ///< empty when the import didn't hash it, as earlier versions did
    /// Its hash is part of the folder's, which is compared as a whole.
    bool isOfFolder = false;

    bool hasChanged() const { return !sha256Then.empty() && sha256 != sha256Then; }
};

/// Where a record comes from, value by value.
struct RecordOrigin {
    std::int64_t id = 0;
    std::string kind;
    std::string version;       ///< by which the format was read
    std::string file;          ///< as the project names it
    bool isOfFolder = false;   ///< sizes and hashes are of a folder that the file lies in, or is
    std::int64_t fileSize = 0; ///< bytes, at the import
    std::string md5;           ///< then; both may be empty
    std::string sha256;
    SourceNow state = SourceNow::unhashed;
    std::string fileNote;             ///< what the state means
    std::vector<FurtherFile> further; ///< files that hold values, and aren't `file`
    std::string page; ///< "docs/formats/chrome-history.md"; empty for an unknown kind
    std::vector<ValueOrigin> values;
};

/// What explaining goes by; all must outlive the call.
struct ExplainSource {
    SQLite::Database &project;
    RecordStore &records; ///< of the project
    const Evidence &evidence;
    std::filesystem::path scratch; ///< an existing folder of the program's own
    const TimeZone &zone;
    DateSettings dates;
    FailureLog &log;
    bool readsContent = false; ///< contents are read and hashed again too, which takes its time
};

class EvidenceTables;
struct StoredRecord;

/// Explains records. A file of the evidence is hashed once, and an SQLite file stays open until a
/// record of another one comes: give it the records of one file after the other.
class Explainer {
  public:
    explicit Explainer(ExplainSource source);
    ~Explainer();
    Explainer(const Explainer &) = delete;
    Explainer &operator=(const Explainer &) = delete;

    /// Of all fields that have a value, or of one. The evidence is read again, and nothing is
    /// written but a copy of an SQLite file in the scratch folder. Nothing when there is no such
    /// row. Throws what the database of the project says.
    std::optional<RecordOrigin> explain(UrlId id, const std::string &field = {});
    /// The same of one field alone, without hashing the file. Nothing when there is no such field.
    std::optional<ValueOrigin> explainValue(UrlId id, const std::string &field);

  private:
    struct Hashed {
        std::optional<FileHashes> hashes;
        std::string failure;
    };
    const Hashed &hashed(const std::filesystem::path &file);
    std::vector<ValueOrigin> valuesOf(UrlId id, const StoredRecord &stored,
                                      const std::optional<std::filesystem::path> &file,
                                      const std::string &field);
    void setState(const std::optional<std::filesystem::path> &file, RecordOrigin &origin);
    void compareContent(UrlId id, ValueOrigin &value);
    void addLogs(const std::filesystem::path &file, RecordOrigin &origin);
    void addFurther(const std::filesystem::path &file, RecordOrigin &origin);
    const std::string &hashThen(const std::filesystem::path &file);

    ExplainSource m_source;
    std::map<std::filesystem::path, Hashed> m_hashed;
    /// By path, SHA-256 at the import.
    std::optional<std::map<std::string, std::string>> m_besideThen;
    std::set<std::filesystem::path> m_ofContent; ///< of the record in hand
    std::unique_ptr<EvidenceTables> m_tables;
};

/// A text of an origin as people can be shown it: one line, bounded, with what would deceive the
/// eye written out, and how long it is where it is cut.
std::string shownOrigin(std::string_view text);

/// In lines for people, each "name  text". Those of a value are as shownOrigin() gives them.
std::vector<std::pair<std::string, std::string>> linesOf(const RecordOrigin &record);
std::vector<std::pair<std::string, std::string>> linesOf(const ValueOrigin &value);

} // namespace nv
