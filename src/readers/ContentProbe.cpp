#include "readers/ContentProbe.h"

#include "base/Text.h"
#include "markup/Charsets.h"
#include "markup/PageText.h"
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

/// UTF-16 that arrives in blocks of bytes, as text in UTF-8: a block may end within a letter.
class WideText {
  public:
    explicit WideText(std::string_view charset)
        : m_converter(converterOf(charset)), m_isBigEndian(charset.ends_with("be")) {}

    std::string letters(std::string_view block) {
        m_rest.append(block);
        std::size_t whole = m_rest.size() - m_rest.size() % kUnit;
        if (whole > 0 && isFirstHalf(whole - kUnit))
            whole -= kUnit;
        const std::string text =
            convert(std::string_view(m_rest).substr(0, whole), m_converter.get());
        m_rest.erase(0, whole);
        return text;
    }
    /// What is no letter: an odd byte, half of a pair.
    std::string rest() const { return convert(m_rest, m_converter.get()); }

  private:
    static constexpr std::size_t kUnit = 2;

    /// Of a pair that makes one letter.
    bool isFirstHalf(std::size_t at) const {
        constexpr unsigned kMask = 0xFC;
        constexpr unsigned kHigh = 0xD8;
        const auto byte = static_cast<unsigned char>(m_rest[m_isBigEndian ? at : at + 1]);
        return (byte & kMask) == kHigh;
    }

    Converter m_converter;
    bool m_isBigEndian;
    std::string m_rest;
};

/// Gathers the facts of content that arrives in blocks. What stands in its bytes counts in UTF-16
/// too: the mark is short, and begins other files as well.
class ContentScan {
  public:
    ContentScan(std::string_view head, std::string_view httpHeader) {
        m_facts.extension = getExtBySignature(viewOf(head.substr(0, kLongestSignature)));
        if (const auto charset = wideCharsetOf(head, httpHeader); !charset.empty())
            m_wide.emplace(charset);
    }
    ~ContentScan() = default;
    ContentScan(const ContentScan &) = delete;
    ContentScan &operator=(const ContentScan &) = delete;

    void feed(std::string_view block) {
        m_bytes.feed(block);
        if (m_wide)
            m_letters.feed(m_wide->letters(block));
    }
    ContentFacts take() {
        m_bytes.finish();
        if (m_wide)
            m_letters.feed(m_wide->rest());
        m_letters.finish();
        m_facts.hasHtml |= m_ofLetters.hasHtml;
        m_facts.hasBody |= m_ofLetters.hasBody;
        m_facts.hasTable |= m_ofLetters.hasTable;
        m_facts.hasXml |= m_ofLetters.hasXml;
        if (!m_ofLetters.title.empty())
            m_facts.title = std::move(m_ofLetters.title);
        return std::move(m_facts);
    }

  private:
    ContentFacts m_facts;
    ContentFacts m_ofLetters;
    TagScan m_bytes{m_facts};
    TagScan m_letters{m_ofLetters};
    std::optional<WideText> m_wide;
};

ContentFacts factsOfLarge(const ByteSource &file, std::string_view httpHeader) {
    std::optional<ContentScan> scan;
    static_cast<void>(inBlocks(file, [&](std::string_view block) {
        if (!scan)
            scan.emplace(block, httpHeader);
        scan->feed(block);
        return true;
    }));
    return scan ? scan->take() : ContentFacts();
}

} // namespace

std::string getExtBySignature(ByteView head) {
    for (const Signature &signature : kSignatures)
        if (head.raw().starts_with(signature.bytes))
            return std::string(signature.extension);
    return {};
}

ContentFacts factsOf(std::string_view bytes, std::string_view httpHeader) {
    ContentScan scan(bytes, httpHeader);
    scan.feed(bytes);
    return scan.take();
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

const ContentFacts &ContentProbe::facts(const Evidence &evidence, const std::filesystem::path &file,
                                        std::string_view httpHeader) {
    return isKept(file, httpHeader) ? m_facts : look(evidence.open(file), httpHeader);
}

const ContentFacts &ContentProbe::scratchFacts(const std::filesystem::path &file,
                                               std::string_view httpHeader) {
    return isKept(file, httpHeader) ? m_facts : look(ScratchFile(file), httpHeader);
}

/// What can't be opened leaves nothing kept.
bool ContentProbe::isKept(const std::filesystem::path &file, std::string_view httpHeader) {
    const std::string_view served = wideCharsetOf({}, httpHeader);
    if (file == m_file && served == m_served && !file.empty())
        return true;
    m_file.clear();
    m_bytes.reset();
    m_served = served;
    return false;
}

const ContentFacts &ContentProbe::look(const ByteSource &file, std::string_view httpHeader) {
    if (file.size() <= kBodyInMemory) {
        m_bytes = file.read(0, file.size());
        m_facts = factsOf(ByteView(*m_bytes).raw(), httpHeader);
    } else {
        m_facts = factsOfLarge(file, httpHeader);
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
