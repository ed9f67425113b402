#pragma once

#include "address/WebAddress.h"
#include "base/ByteView.h"
#include "rebuild/RebuildContext.h"
#include "rebuild/exact/PartFinder.h"
#include "rebuild/exact/Reference.h"
#include "rebuild/exact/ShownParts.h"
#include "rebuild/exact/SourceText.h"

#include <deque>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A reference on its way: what it leads to, and what stands for it.
struct Followed {
    const Reference *reference = nullptr;
    std::optional<WebAddress> address;
    FoundPart found;
    bool isTold = false; ///< it is among those that the audit has rows for

    /// The whole address; empty for one that is none.
    std::string href() const { return address ? address->href() : std::string(); }
};

/// Puts a page together: reads its references, has their parts brought, rewrites the page, and goes
/// on with what was brought: frames, style sheets and pictures in SVG have references of their own.
class Assembly {
  public:
    /// All must outlive it.
    Assembly(const UrlRecord &page, std::filesystem::path folder, PartFiles &files,
             PartFinder &finder, const RebuildContext &ctx);

    /// `bytes` are those of the page, unpacked. All but the page lies in the folder then. False
    /// when cancelled. Throws PageTooLarge and what files and database say.
    [[nodiscard]] bool run(const Bytes &bytes);
    /// What the page names, then what its frames and sheets name, in the order of their bringing.
    const std::vector<PartNote> &notes() const { return m_notes; }
    /// The page's bytes, with `banner` in its body.
    std::string page(const std::string &banner) const;

  private:
    /// What decides which sheets of a page count.
    struct SheetRules {
        bool isQuirky = false; ///< the page is shown as old browsers did
        std::string page;      ///< its address
    };
    struct Document {
        UrlId record = UrlId::none;
        PartForm form = PartForm::page;
        std::string name;    ///< of its file
        std::string url;     ///< what its references are relative to
        std::string headers; ///< of the server's answer
        std::string charset; ///< of what brought it, for sheets that name none
        int depth = 0;       ///< documents that it lies within
        SheetRules sheets{}; ///< of the page, for a sheet's own
    };
    /// One that was read, with all that is to be changed in it.
    struct Read {
        Bytes opened; ///< what `source` was read from, where that are not the document's own bytes
        std::optional<SourceText> source;
        std::string_view foundIn; ///< what named its encoding
        std::vector<TextEdit> edits;
        std::size_t bannerAt = std::string_view::npos;
        SheetRules sheets;
    };
    struct Scanned {
        std::vector<Reference> references;
        std::string base;                       ///< as the document says it; empty for none
        std::vector<std::string> baseSources{}; ///< what its content policies say of it
    };

    Read read(const Document &document, const Bytes &bytes);
    static void open(Read &read);
    Scanned scan(const Document &document, Read &read);
    void resolve(const Document &document, Read &read, const Scanned &scanned);
    void lookInCodebase(const Document &document, const Read &read, Followed &one,
                        const WebAddress *base);
    void change(const Document &document, Read &read, Followed &one, ShownParts &shown);
    void rewrite(const Document &document);
    PartNote noteOf(const Document &document, const Reference &reference,
                    const std::string &address, const FoundPart &found) const;
    FoundPart partFor(const Document &document, const SheetRules &sheets,
                      const Reference &reference, const std::string &address);
    void queue(const Document &from, const PartFile &file, const Read &read);
    bool goesOn(const std::string &address);

    const UrlRecord &m_page;
    std::filesystem::path m_folder;
    PartFiles &m_files;
    PartFinder &m_finder;
    const RebuildContext &m_ctx;
    Read m_root;
    std::deque<Document> m_open;
    std::set<std::string> m_known; ///< names of files that are in line, or done
    std::vector<PartNote> m_notes;
    std::size_t m_room = kMostInside;
    std::size_t m_done = 0;  ///< documents
    std::size_t m_named = 0; ///< references to parts
    bool m_cancelled = false;
};

} // namespace nv
