#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A text with all letters in one case, in which a part of a text is looked for, and the way back
/// from its places to those of the text. One object serves many texts: it keeps its memory.
class FoldedText {
  public:
    /// Bytes that are no UTF-8 become U+FFFD.
    void fold(std::string_view text);
    const std::string &text() const { return m_text; }
    /// The byte of the text that stands at this byte of the folded one; the end for the end.
    std::size_t origin(std::size_t place) const {
        return m_origin.empty() ? place : m_origin.at(place);
    }

  private:
    void foldLetters(std::string_view text);

    std::string m_text;
    std::vector<std::uint32_t> m_origin; ///< empty where all letters are ASCII: places are equal
};

std::string foldedCase(std::string_view text);
/// The same of each way in which a text can be coded, each once: letters with marks as the text has
/// them, composed, taken apart, as names of files of some systems are; and all of these of what the
/// text says when its escapes ("%C3%BC") are undone, where it says a letter or a digit then.
std::vector<std::string> codedForms(std::string_view text);

/// A letter, a digit or what else words are made of, but none of a script without spaces.
bool isWordCharacter(std::int32_t character);
/// Whether a word goes on across this place of a UTF-8 text.
bool isWithinWord(std::string_view text, std::size_t place);

/// A word of a text, as the full-text index cuts and compares it.
struct Word {
    std::string text;       ///< in one case and without accents
    std::size_t at = 0;     ///< bytes
    std::size_t length = 0; ///< bytes
};

/// Goes over the words of a text, which must outlive it.
class WordWalk {
  public:
    explicit WordWalk(std::string_view text) : m_text(text) {}
    bool next(Word &word);

  private:
    std::string_view m_text;
    std::size_t m_at = 0;
};

std::vector<std::string> wordsOf(std::string_view text);
/// Whether it has a letter or a digit, of whatever script.
bool hasLetters(std::string_view text);
/// Whether it can't be looked for by words: it has letters of a script that writes them without
/// spaces or with endings, such as Chinese, Thai, Korean, or it has none at all.
bool isWithoutWords(std::string_view text);
/// The text as its parts are indexed: the text itself, or it lies in `buffer`, all letters in one
/// case, where it has such as the index doesn't fold as this does.
const std::string &partText(const std::string &text, std::string &buffer);
/// The text as its words are indexed: in one case, without accents, and with blanks for letters of
/// those scripts. It is the text itself where that makes no difference to the index, or lies in
/// `buffer`.
const std::string &wordText(const std::string &text, std::string &buffer);

} // namespace nv
