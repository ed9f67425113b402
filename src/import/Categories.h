#pragma once

#include "db/URLClass.h"
#include "readers/CachedBody.h"
#include "readers/ContentProbe.h"

#include <string>
#include <string_view>
#include <utility>

namespace nv {

/// The `Category` of a file extension in either case, or empty when the table doesn't know it.
std::string_view categoryOfExtension(std::string_view extension);

/// What categorising makes of a record.
struct Verdict {
    std::string extension; ///< by content where that was looked at, otherwise by name; may be empty
    std::string Category;

    /// Puts both, and the upper-case `cacheType`, into the record.
    void applyTo(URLClass &record) const;
};

/// Whether the bytes of a cached file are looked at although its name has an extension.
enum class Signatures { verify, trustNames };

/// Sorts records into categories: by the first bytes of their cached content where there is some,
/// otherwise by extension.
class Categories {
  public:
    /// All must outlive this. `content` is shared with the reader, so a file is read once.
    Categories(Signatures signatures, Extraction extraction, ContentProbe &content)
        : m_signatures(signatures), m_extraction(std::move(extraction)), m_content(content) {}

    /// Decides without changing the record's words, and leaves cookies what their reader called
    /// them; its names must be in order (orderNames() in
    /// db/RecordNames.h). A body that had to be fetched stays in `RunTimeTempFilePath`. Cached
    /// content that can't be read is logged, and the name decides.
    Verdict verdictOn(URLClass &record) const;

    /// The documented whole for a record that is saved already: what changes is the record alone,
    /// its row gets `Category` from the caller.
    void SetURLCategory(URLClass &record) const { verdictOn(record).applyTo(record); }

  private:
    std::string extensionByContent(URLClass &record) const;
    bool looksAtContent(const URLClass &record) const;

    Signatures m_signatures;
    Extraction m_extraction;
    ContentProbe &m_content;
};

} // namespace nv
