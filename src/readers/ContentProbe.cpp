#include "readers/ContentProbe.h"

#include "base/Text.h"
#include "readers/Scratch.h"

#include <array>
#include <string_view>
#include <utility>

namespace nv {

namespace {

using namespace std::string_view_literals;

struct Signature {
    std::string_view bytes;
    std::string_view extension;
};

// In order of trial. GIF is only the 89a form and JPEG only JFIF: the categories of earlier cases
// rest on just these.
constexpr std::array<Signature, 18> kSignatures = {{
    {"GIF89a"sv, "gif"},
    {"\xFF\xD8\xFF\xE0"sv, "jpg"},
    {"BM"sv, "bmp"},
    {"\x89PNG"sv, "png"},
    {"\x00\x00\x01\x00\x02\x00\x20\x20\x10"sv, "ico"},
    {"<html"sv, "html"},
    {"\x00\x01\x00\x00Standard Jet DB"sv, "mdb"},
    {"CWS\x08"sv, "swf"},
    {"\xFF\xFB"sv, "mp3"},
    {"PK\x03\x04"sv, "zip"},
    {"RIFF"sv, "avi"},
    {"\x30\x26\xB2\x75\x8E"sv, "wmv"},
    {"Rar!"sv, "rar"},
    {"%PDF"sv, "pdf"},
    {"\x00\x00\x01\xBA"sv, "mpg"},
    {"?_\x03\x00"sv, "hlp"},
    {"ITSF\x03"sv, "chm"},
    {"<?xml"sv, "xml"},
}};
constexpr std::size_t kLongestSignature = 19;

constexpr std::string_view kTitle = "<title>";
constexpr std::string_view kTitleEnd = "</title>";
/// A title that doesn't end within this length is none: pages have been cut off inside of it.
constexpr std::size_t kLongestTitle = std::size_t{64} << 10;

/// Finds the tags that tell a page in bytes that arrive in blocks.
class TagScan {
  public:
    explicit TagScan(ContentFacts &facts) : m_facts(facts) {}

    void feed(std::string_view block) {
        m_window.append(block);
        // A tag may be cut by the end of the block: the last bytes wait for the next one.
        const std::size_t carry = std::min(m_window.size(), kTitleEnd.size() - 1);
        take(m_window.size() - carry);
        m_window.erase(0, m_window.size() - carry);
    }
    void finish() { take(m_window.size()); }
    bool hadTitle() const { return m_hadTitle; }

  private:
    void take(std::size_t end) {
        std::size_t done = 0; // up to here the title has its text
        for (std::size_t at = m_window.find('<'); at < end; at = m_window.find('<', at + 1)) {
            const std::string_view tag = std::string_view(m_window).substr(at, kTitleEnd.size());
            note(tag);
            if (m_inTitle && startsWithNoCase(tag, kTitleEnd)) {
                appendTitle(done, at);
                closeTitle();
            } else if (!m_inTitle && !m_hadTitle && startsWithNoCase(tag, kTitle)) {
                m_inTitle = true;
                done = at + kTitle.size();
            }
        }
        appendTitle(done, end);
        m_skip = m_inTitle && done > end ? done - end : 0;
    }

    void note(std::string_view tag) {
        m_facts.hasHtml |= startsWithNoCase(tag, "<html");
        m_facts.hasBody |= startsWithNoCase(tag, "<body");
        m_facts.hasTable |= startsWithNoCase(tag, "<table");
        m_facts.hasXml |= startsWithNoCase(tag, "<?xml");
    }

    void appendTitle(std::size_t from, std::size_t end) {
        from = std::max(from, m_skip);
        if (m_inTitle && from < end && m_title.size() <= kLongestTitle)
            m_title.append(m_window, from, end - from);
    }

    void closeTitle() {
        m_inTitle = false;
        m_hadTitle = true;
        if (m_title.size() <= kLongestTitle)
            m_facts.title = decodeText(trim(m_title));
    }

    ContentFacts &m_facts;
    std::string m_window;
    std::string m_title;
    std::size_t m_skip = 0; ///< bytes of the tag itself that reach into the next window
    bool m_inTitle = false;
    bool m_hadTitle = false;
};

ContentFacts factsOfLarge(const ByteSource &file) {
    ContentFacts facts;
    TagScan scan(facts);
    bool first = true;
    static_cast<void>(inBlocks(file, [&](std::string_view block) {
        if (std::exchange(first, false))
            facts.extension = GetExtBySignature(viewOf(block.substr(0, kLongestSignature)));
        scan.feed(block);
        return true;
    }));
    scan.finish();
    return facts;
}

} // namespace

std::string GetExtBySignature(ByteView head) {
    for (const Signature &signature : kSignatures)
        if (head.raw().starts_with(signature.bytes))
            return std::string(signature.extension);
    return {};
}

ContentFacts factsOf(std::string_view bytes) {
    ContentFacts facts;
    facts.extension = GetExtBySignature(viewOf(bytes.substr(0, kLongestSignature)));
    TagScan scan(facts);
    scan.feed(bytes);
    scan.finish();
    return facts;
}

std::string titleOf(std::string_view bytes) {
    constexpr std::size_t kPiece = 4096; // titles stand near the beginning
    ContentFacts facts;
    TagScan scan(facts);
    for (; !bytes.empty() && !scan.hadTitle(); bytes.remove_prefix(std::min(kPiece, bytes.size())))
        scan.feed(bytes.substr(0, kPiece));
    scan.finish();
    return facts.title;
}

const ContentFacts &ContentProbe::facts(const Evidence &evidence,
                                        const std::filesystem::path &file) {
    return isKept(file) ? m_facts : look(evidence.open(file));
}

const ContentFacts &ContentProbe::scratchFacts(const std::filesystem::path &file) {
    return isKept(file) ? m_facts : look(ScratchFile(file));
}

/// What can't be opened leaves nothing kept.
bool ContentProbe::isKept(const std::filesystem::path &file) {
    if (file == m_file && !file.empty())
        return true;
    m_file.clear();
    m_bytes.reset();
    return false;
}

const ContentFacts &ContentProbe::look(const ByteSource &file) {
    if (file.size() <= kBodyInMemory) {
        m_bytes = file.read(0, file.size());
        m_facts = factsOf(ByteView(*m_bytes).raw());
    } else {
        m_facts = factsOfLarge(file);
    }
    m_file = file.path();
    return m_facts;
}

std::optional<std::string_view> ContentProbe::bytes() const {
    return m_bytes ? std::optional(ByteView(*m_bytes).raw()) : std::nullopt;
}

void ContentProbe::forget() {
    m_file.clear();
    m_bytes.reset();
    m_held.reset();
}

} // namespace nv
