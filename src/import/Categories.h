#pragma once

#include "base/FailureLog.h"
#include "db/records/UrlRecord.h"
#include "import/SavedContent.h"

#include <string>
#include <string_view>

namespace nv {

/// The `Category` of a file extension in either case, or empty when the table doesn't know it.
std::string_view categoryOfExtension(std::string_view extension);

/// What categorising makes of a record.
struct Verdict {
    std::string extension; ///< by content where that was looked at, otherwise by name; may be empty
    std::string category;

    /// Puts both, and the upper-case `cacheType`, into the record.
    void applyTo(UrlRecord &record) const;
};

/// Whether the bytes of a cached file are looked at although its name has an extension.
enum class Signatures { verify, trustNames };

/// Sorts records into categories: by the first bytes of their cached content where there is some,
/// otherwise by extension.
class Categories {
  public:
    /// `log` must outlive this.
    Categories(Signatures signatures, FailureLog &log) : m_signatures(signatures), m_log(log) {}

    /// Decides without changing the record's words, and leaves cookies what their reader called
    /// them; its names must be in order (orderNames() in db/records/RecordNames.h). Cached content that
    /// can't be read is logged, and the name decides.
    Verdict verdictOn(const UrlRecord &record, SavedContent &content) const;
    /// Whether it takes a look at the content for that.
    bool looksAtContent(const UrlRecord &record) const;

  private:
    std::string extensionByContent(const UrlRecord &record, SavedContent &content) const;

    Signatures m_signatures;
    FailureLog &m_log;
};

} // namespace nv
