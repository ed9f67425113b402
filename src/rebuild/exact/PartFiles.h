#pragma once

#include "base/TaskMonitor.h"
#include "rebuild/RebuildContext.h"
#include "rebuild/exact/PartForm.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace nv {

/// The headers of the answer that a record is made of, in lines; what its column holds where no
/// answer's head is known.
std::string headersOf(const UrlRecord &record, const RebuildContext &ctx);

/// A cached record that lies beside the page.
struct PartFile {
    UrlId record = UrlId::none;
    PartForm form = PartForm::plain;
    std::string name;    ///< of its file
    std::string url;     ///< the record's own address, which its references go by
    std::string headers; ///< of the server's answer
    std::string sha256;  ///< of the bytes as the evidence has them, unpacked
    Date time;           ///< of the answer, in UTC
    std::string cache;   ///< kind and file of the cache that it is from, for people
};

/// Copies cached records into the folder of a page that is rebuilt exactly, each once a form. What
/// it holds stays as it is: who rewrites a document, reads and writes its file.
class PartFiles {
  public:
    /// All must outlive it; the folder is there. `page` itself is brought by its owner.
    PartFiles(const UrlRecord &page, std::filesystem::path folder, const RebuildContext &ctx);

    struct Gone {};
    /// It is there and can't be used; one of `partrule`.
    struct Refused {
        const char *rule = nullptr;
    };
    /// The record answered with another address.
    struct Redirect {
        std::string location;
    };
    using Taken = std::variant<Gone, Refused, Redirect, const PartFile *>;

    /// What the record gives for such a use. Files live as long as this.
    Taken take(UrlId record, RefUse use);
    /// The bytes of one as the evidence has them, whatever its file holds by now; nothing when they
    /// are gone, or more than `most`.
    std::optional<Bytes> bytesOf(const PartFile &file, std::uint64_t most) const;
    std::size_t count() const { return m_files.size(); }
    /// Those that page and parts are from, the page's first.
    std::vector<std::string> caches() const;
    /// Bytes of a document that can be rewritten.
    static constexpr std::uint64_t kLargestDocument = std::uint64_t{64} << 20;

  private:
    Taken bring(UrlId id, RefUse use);
    std::string nameOf(const UrlRecord &record, PartForm form, std::string_view head) const;

    const UrlRecord &m_page;
    std::filesystem::path m_folder;
    const RebuildContext &m_ctx;
    std::map<std::pair<UrlId, PartForm>, PartFile> m_files;
    std::map<std::pair<UrlId, RefUse>, Taken> m_taken;
};

} // namespace nv
