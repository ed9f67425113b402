#pragma once

#include "db/schema/Ids.h"
#include "reports/warc/WarcFile.h"
#include "reports/warc/WarcSource.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace nv {

enum class WarcAdded : std::uint8_t {
    written,
    noContent, ///< a visit, a cookie; or a file that is gone without a head that is left
    unread,    ///< the project is damaged where the row lies; the log tells
};

/// Cached records as an archive of WARC 1.1 that programs replay: for each the server's answer as
/// the cache has it, its content unpacked, and a record of what is known of where it came from.
class WarcWriter {
  public:
    /// Throws StorageFailure.
    WarcWriter(std::filesystem::path place, const WarcSource &source);

    /// Throws StorageFailure.
    WarcAdded add(UrlId id);
    /// The file takes its place. Throws StorageFailure.
    void finish() { m_file.finish(); }

    const WarcCounts &counts() const { return m_counts; }

  private:
    using Sha1 = std::array<char, 20>;
    struct Item;

    void writeInfo();
    void addContent(Item &item) const;
    void writeItem(Item &item);
    void writeAnswer(Item &item);
    void writeStretches(Item &item);
    void writeResource(Item &item);
    void writeMetadata(const Item &item);
    bool writeRevisit(Item &item);
    void noteContent(const Item &item);
    WarcRecord begun(const Item &item, std::string_view type) const;
    std::string sourceHash(SourceFileId source);

    WarcSource m_source;
    std::filesystem::path m_place;
    WarcFile m_file;
    std::string m_infoId;
    WarcCounts m_counts;
    std::map<Sha1, UrlId> m_contents; ///< the first answer with a content
    std::optional<SourceFileId> m_hashOf;
    std::string m_hash; ///< SHA-256 of the source file `m_hashOf`
};

} // namespace nv
