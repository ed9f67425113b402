#pragma once

#include "db/records/FactList.h"
#include "views/explain/Explain.h"
#include "views/record/Properties.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace nv {

/// What the project itself holds of the record.
struct StoredRecord {
    std::string kind;
    std::string version;
    std::string historyFile;
    std::string root;
    std::string rawUrl;
    std::int64_t sourceFile = 0;
    std::int64_t reference = 0;
    std::int64_t offset = 0;
    FactList facts;
};
/// Nothing when there is no such row. Throws what the database says.
std::optional<StoredRecord> storedRecordOf(SQLite::Database &project, UrlId id);

/// Explains the values of one record. All that it is given must outlive it.
class RecordValues {
  public:
    /// `file` is the record's source, a file or a folder; nothing when it is gone.
    RecordValues(const ExplainSource &source, EvidenceTables &tables, UrlId id,
                 const StoredRecord &stored, const std::optional<std::filesystem::path> &file);
    ~RecordValues();
    RecordValues(const RecordValues &) = delete;
    RecordValues &operator=(const RecordValues &) = delete;

    /// Reads the evidence again; failures are told in the value.
    ValueOrigin of(const Property &property);

  private:
    class Reading;
    std::unique_ptr<Reading> m_reading;
};

} // namespace nv
