#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
class Statement;
} // namespace SQLite

namespace nv {

inline constexpr const char *kNamedTagsTable = "NamedTags";
inline constexpr const char *kRecordTagsTable = "RecordTags";

/// A tag of the examiner's, by name and colour. It has nothing to do with the tick of a row
/// (`URLs.Tagged`), nor with table `Tags`, which holds the references of pages.
struct NamedTag {
    std::int64_t tagID = 0;
    std::string name;
    std::string color;         ///< "#rrggbb"
    std::int64_t position = 0; ///< tags stand in its order
    std::string note;          ///< what the tag is for
};

/// Why a tag can't be called so, or an empty text. Other tags aren't looked at.
std::string faultOfTagName(std::string_view name);
/// Whether it is of the form "#rrggbb".
bool isTagColor(std::string_view color);
/// The colour of the n-th tag, from 1, when nobody chose one; they come again after the ninth.
std::string firstTagColor(std::int64_t position);

/// What a statement gives in its first columns, from NamedTag_ID to Note.
NamedTag namedTagIn(SQLite::Statement &row);

/// How many rows have a tag, by its key. Tags without rows are left out.
using TagCounts = std::map<std::int64_t, std::int64_t>;

/// The tags of a project; which rows have them is told by RecordTags. The tables are made on first
/// use: a project of an earlier build has none. Whatever stands in a table that somebody else has
/// made is given, a colour that is none as that of the tag's place. Errors of the database are
/// thrown; a project that can't be written gives a StorageFailure.
class NamedTags {
  public:
    explicit NamedTags(SQLite::Database &database) : m_database(database) {}

    /// In their order.
    std::vector<NamedTag> list() const;
    /// In either case of ASCII letters.
    std::optional<NamedTag> find(std::string_view name) const;
    std::optional<NamedTag> find(std::int64_t tagID) const;
    TagCounts counts() const;
    /// How many rows have one or more.
    std::uint64_t rows() const;
    /// Why a tag can't be kept so, for its name, its colour or another tag of the name; otherwise
    /// empty.
    std::string faultOf(const NamedTag &tag) const;
    /// The last tag of the order; without a colour it gets that of its place. Throws
    /// std::invalid_argument with faultOf() when that isn't empty.
    NamedTag add(const NamedTag &tag);
    /// Name, colour and note of the tag with this key; throws as add() does.
    void change(const NamedTag &tag);
    /// Puts the tags into this order; those that aren't named come after.
    void reorder(const std::vector<std::int64_t> &tagIDs);
    /// The tag, and that rows have it. The rows stay.
    void remove(std::int64_t tagID);

  private:
    void check(const NamedTag &tag) const;

    SQLite::Database &m_database;
};

} // namespace nv
