#pragma once

#include "db/records/UrlRecord.h"
#include "reports/case/PlainStream.h"
#include "reports/case/Redaction.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Takes words out of texts. A word is found in any case, and as addresses, pages, styles and
/// scripts may write it: percent-coded, by character references, by escapes.
class Redactor {
  public:
    explicit Redactor(RedactionRules rules);

    bool isOn() const { return !m_rules.empty(); }
    const RedactionRules &rules() const { return m_rules; }
    /// Whether any rule leaves out rows.
    bool leavesOutRows() const;

    /// The text with "[redacted]" in place of each word, and of each run of base64 or hexadecimal
    /// digits that stands for one; they are counted. A text in which a word is left, coded twice
    /// for instance, becomes that mark as a whole.
    std::string text(std::string_view value);
    /// Whether a word stands in it: as it is, coded up to three times, between tags, in data that
    /// an address holds, in UTF-16, in packed texts of a PNG, or in what base64 or hexadecimal
    /// digits stand for.
    bool holds(std::string_view bytes) const;
    /// The same of what base64 and hexadecimal digits stand for alone.
    bool holdsCoded(std::string_view text) const;

    /// By its host, its person or what stands in `texts`.
    bool leavesOut(const UrlRecord &record, const std::vector<std::string_view> &texts) const;
    /// The record is of a host that is blurred: nothing of what it is about may be told.
    bool hidesHost(std::string_view host) const;
    /// The host is one of those that were chosen, in either way.
    bool isOfHost(std::string_view host) const;
    /// How the picture of a row is to be treated; nothing for one that may be seen.
    std::optional<RedactionWay> pictureOf(UrlId id) const;
    std::vector<UrlId> pictureRows() const;
    /// The picture of this row was found: whatever has its bytes is redacted.
    void notePicture(UrlId id);
    /// The rules that nothing has fitted so far.
    RedactionRules unmet() const;

    RedactionCounts counts;

  private:
    struct Word {
        std::string text;               ///< in one case
        std::vector<std::size_t> rules; ///< those that it meets, with words within it
    };

    void takeWords();
    void meet(std::size_t rule) const { m_met[rule] = true; }
    void meetCoded(std::string_view bytes) const;
    static bool fits(const RedactionRule &rule, const UrlRecord &record, std::string_view host,
                     const std::vector<std::string_view> &texts);
    bool holdsAny(std::string_view bytes) const;
    bool isIn(const PlainStream &stream) const;
    bool holdsPlain(std::string_view text) const;
    bool holdsUndone(std::string_view text, PlainStream::Codes codes) const;
    bool holdsLetters(std::string_view bytes) const;
    bool holdsPacked(std::string_view picture) const;
    bool holdsUncoded(std::string_view bytes) const;
    bool holdsCoded(std::string_view text, int codings) const;
    bool holdsDecoded(std::string_view bytes, int codings) const;
    std::string withoutCodedRuns(std::string_view text);
    std::string withMarks(std::string_view value, PlainStream::Codes codes);

    RedactionRules m_rules;
    std::array<bool, 256> m_begins{}; ///< whether a word begins with this byte
    std::vector<Word> m_words;        ///< the longest first
    /// Of each rule, whether it was of use. Who only asks has found something, too.
    mutable std::vector<bool> m_met;
    std::vector<std::string> m_wide; ///< in UTF-16 of both orders
    std::size_t m_fewest = 0;        ///< characters of the shortest word
    bool m_areAscii = true;          ///< the words
};

/// What the addresses of data in a page or a style hold. One within another is part of it.
std::vector<std::string> embeddedData(std::string_view text);

/// The host of a record, else that of its address.
std::string hostOf(const UrlRecord &record);

} // namespace nv
