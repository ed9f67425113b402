#pragma once

#include "db/records/FactList.h"
#include "readers/FieldRules.h"
#include "readers/sqlite/CellPath.h"
#include "readers/sqlite/EvidenceDatabase.h"
#include "time/Date.h"
#include "views/explain/Explain.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nv {

/// A value as it lies in the source today.
struct SourceValue {
    std::string place;
    std::optional<std::uint64_t> offset;
    std::uint64_t length = 0;
    std::filesystem::path file; ///< that holds those bytes
    std::string stored;         ///< for people
    std::string conversion;     ///< follows the rule: how bytes that are no UTF-8 became text
    std::optional<std::int64_t> number; ///< where it is one
    std::string text;                   ///< where it is one
    std::string bytes;                  ///< as they lie, of texts and others
    std::string whyNot;                 ///< why it can't be read; empty when it was
};

/// Where a record lies in its source file.
struct RecordPlace {
    std::string table; ///< of an SQLite file
    std::optional<std::int64_t> rowId;
    std::optional<std::uint64_t> offset; ///< of other files, in bytes
};

/// The SQLite file of the evidence that was asked for last, copied and opened.
class EvidenceTables {
  public:
    /// Both must outlive this.
    EvidenceTables(const Evidence &evidence, std::filesystem::path scratch);
    ~EvidenceTables();
    EvidenceTables(const EvidenceTables &) = delete;
    EvidenceTables &operator=(const EvidenceTables &) = delete;

    /// Throws EvidenceFailure and EvidenceDamage.
    EvidenceDatabase &of(const std::filesystem::path &file);
    /// Where a cell of that file lies; nothing where that can't be told. Throws as of() does.
    std::optional<CellBytes> bytesOf(const std::filesystem::path &file, const CellFound &cell);

  private:
    struct Opened;

    const Evidence &m_evidence;
    std::filesystem::path m_scratch;
    std::unique_ptr<Opened> m_opened;
};

/// Reads the values of one record again.
class SourceValues {
  public:
    /// `tables`, `log` and `facts` must outlive this.
    SourceValues(EvidenceTables &tables, FailureLog &log, std::filesystem::path file,
                 RecordPlace place, const FactList &facts);

    /// What the rule's path leads to. One value without a text says why there is none.
    std::vector<SourceValue> read(const FieldRule &rule);

  private:
    void readCells(const FieldRule &rule, std::vector<SourceValue> &values);
    void setBytes(const CellFound &cell, SourceValue &value);

    EvidenceTables &m_tables;
    FailureLog &m_log;
    std::filesystem::path m_file;
    RecordPlace m_place;
    const FactList &m_facts;
};

} // namespace nv
