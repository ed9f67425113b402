#pragma once

#include "db/schema/Ids.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

inline constexpr const char *kRebuiltPartsTable = "RebuiltParts";

/// Why a record stands for a reference of a page that was rebuilt exactly, or why none does.
namespace partrule {
inline constexpr const char *kExact = "exact address";
inline constexpr const char *kWithoutFragment = "without fragment";
inline constexpr const char *kByHttps = "the same address by https";
inline constexpr const char *kDecoded = "same address, decoded";
inline constexpr const char *kOtherQuery = "same path, other query";
inline constexpr const char *kSameSet = "another size of the set";
inline constexpr const char *kChosen = "chosen by the examiner";
inline constexpr const char *kLeftOut = "left out by the examiner";
inline constexpr const char *kNone = "not in any cache";
inline constexpr const char *kNoAddress = "no valid address";
inline constexpr const char *kNotOfWeb = "never kept in caches";
inline constexpr const char *kTooDeep = "nested too deep";
inline constexpr const char *kTooMany = "too many parts";
inline constexpr const char *kTooLarge = "too large";
inline constexpr const char *kError = "answered with an error";
inline constexpr const char *kOtherType = "answered with another type";
/// Comes before the rule by which the last address of a chain of redirects was found.
inline constexpr const char *kRedirect = "redirect, then ";
} // namespace partrule

/// One reference of a page that was rebuilt exactly, or of a document within it, and what stands
/// for it.
struct PartNote {
    UrlId document = UrlId::none;        ///< the record in whose text the reference stands
    std::string element;                 ///< "img"; empty in a style sheet
    std::string attribute;               ///< "srcset"; in styles the property or the at-rule
    std::string original;                ///< as the document means it
    std::string address;                 ///< resolved; empty for one that is none
    std::string rule;                    ///< one of `partrule`
    UrlId part = UrlId::none;            ///< the record that stands for it
    std::string localName;               ///< of its file beside the page; empty for none
    Date time;                           ///< of the part, in UTC
    std::optional<std::int64_t> seconds; ///< from the page's own time to that; earlier is negative
    /// Keys of the records that the rule found, the one taken first; the best eleven at most.
    std::vector<std::int64_t> candidates;
    std::int64_t candidateCount = 0; ///< of all that the rule found
    std::string sha256;              ///< of the part's bytes as the evidence has them, unpacked

    /// Otherwise a marked place stands there: there is no record, or it is beyond what is read.
    bool isShown() const { return part != UrlId::none && rule != partrule::kTooLarge; }
};

/// What the audit tells of pages that were rebuilt exactly, and what their folders are made anew
/// from. The table is made on first use. Errors of the database are thrown.
class RebuiltParts {
  public:
    explicit RebuiltParts(SQLite::Database &database) : m_database(database) {}

    /// Takes the place of the page's earlier notes.
    void store(UrlId page, std::span<const PartNote> notes);
    /// In the order of their storing.
    std::vector<PartNote> notes(UrlId page) const;
    /// Of a page that is rebuilt in another way from now on.
    void forget(UrlId page);

  private:
    SQLite::Database &m_database;
};

} // namespace nv
