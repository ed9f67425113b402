#include "search/FoldedText.h"

#include "base/Text.h"
#include "markup/Utf8.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <limits>

namespace nv {

namespace {

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

void append(std::string &text, UChar32 character) {
    text += utf8Of(static_cast<std::uint32_t>(character));
}

/// The character at `at`, which is moved behind it.
UChar32 characterAt(std::string_view text, std::size_t &at) {
    return static_cast<UChar32>(nextCode(text, at));
}

/// Marks that stand over or under the letter before them.
bool isAccent(UChar32 character) {
    constexpr UChar32 kFirst = 0x300;
    constexpr UChar32 kLast = 0x36F;
    return character >= kFirst && character <= kLast;
}

constexpr UChar32 kDottedCapital = 0x130;
constexpr UChar32 kDotlessSmall = 0x131;
constexpr UChar32 kDotAbove = 0x307;

/// Turkish has an "i" with its dot and one without, each in both cases: all four are one letter
/// here, since whoever looks for a name doesn't know by which rules it was written.
UChar32 foldedLetter(UChar32 character) {
    const bool isTurkish = character == kDottedCapital || character == kDotlessSmall;
    return isTurkish ? UChar32{'i'} : u_foldCase(character, U_FOLD_CASE_DEFAULT);
}

/// Whether those letters, or a dot of its own as lower case makes it of the capital one, may stand
/// in a text: the index folds all others as this program does.
bool hasTurkishLetters(std::string_view text) {
    for (const std::string_view each : {"\u0130", "\u0131", "\u0307"})
        if (text.find(each) != std::string_view::npos)
            return true;
    return false;
}

UChar32 plainLetter(UChar32 character) {
    UErrorCode error = U_ZERO_ERROR;
    const icu::Normalizer2 *form = icu::Normalizer2::getNFDInstance(error);
    icu::UnicodeString parts;
    if (U_FAILURE(error) || !form->getDecomposition(character, parts))
        return character;
    const UChar32 letter = parts.char32At(0);
    for (std::int32_t at = U16_LENGTH(letter); at < parts.length(); ++at)
        if (u_charType(parts.char32At(at)) != U_NON_SPACING_MARK)
            return character;
    return letter;
}

/// In one case and without its accents, in whatever script.
UChar32 asCompared(UChar32 character) {
    constexpr UChar32 kTold = 0x3000; // letters with accents stand before
    static const std::vector<UChar32> told = [] {
        std::vector<UChar32> letters;
        letters.reserve(kTold);
        for (UChar32 each = 0; each < kTold; ++each)
            letters.push_back(foldedLetter(plainLetter(each)));
        return letters;
    }();
    return character < kTold ? told[static_cast<std::size_t>(character)]
                             : foldedLetter(plainLetter(character));
}

void appendOfWord(std::string &word, UChar32 character) {
    constexpr UChar32 kAsciiEnd = 0x80;
    if (character < kAsciiEnd)
        word.push_back(lowerAscii(static_cast<char>(character)));
    else if (!isAccent(character))
        append(word, asCompared(character));
}

bool isLetter(UChar32 character) {
    constexpr std::uint32_t kMask = U_GC_L_MASK | U_GC_N_MASK | U_GC_CO_MASK;
    return (U_GET_GC_MASK(character) & kMask) != 0;
}

/// A letter of a script whose words stand one behind the other, or with endings. A name in other
/// letters among them is a word for all that.
bool isSpaceless(UChar32 character) {
    constexpr UChar32 kFirst = 0xE00; // all before are of other scripts
    if (character < kFirst || !isLetter(character))
        return false;
    switch (u_getIntPropertyValue(character, UCHAR_LINE_BREAK)) {
    case U_LB_COMPLEX_CONTEXT:
    case U_LB_CONDITIONAL_JAPANESE_STARTER:
    case U_LB_H2:
    case U_LB_H3:
    case U_LB_IDEOGRAPHIC:
    case U_LB_JL:
    case U_LB_JT:
    case U_LB_JV:
    case U_LB_NONSTARTER:
        return true;
    default:
        return false;
    }
}

} // namespace

void FoldedText::fold(std::string_view text) {
    m_origin.clear();
    if (!isAscii(text))
        return foldLetters(text);
    m_text.resize(text.size());
    std::ranges::transform(text, m_text.begin(), lowerAscii);
}

void FoldedText::foldLetters(std::string_view text) {
    text = text.substr(0, std::numeric_limits<std::uint32_t>::max());
    m_text.clear();
    m_origin.reserve(text.size() + 1);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t from = at;
        const UChar32 character = characterAt(text, at);
        if (character == kDotAbove && m_text.ends_with('i'))
            continue;
        append(m_text, foldedLetter(character));
        m_origin.resize(m_text.size(), static_cast<std::uint32_t>(from));
    }
    m_origin.push_back(static_cast<std::uint32_t>(text.size()));
}

std::string foldedCase(std::string_view text) {
    FoldedText folded;
    folded.fold(text);
    return folded.text();
}

namespace {

void addForms(std::vector<std::string> &forms, std::string_view text) {
    const auto add = [&forms](std::string form) {
        if (std::ranges::find(forms, form) == forms.end())
            forms.push_back(std::move(form));
    };
    add(foldedCase(text));
    if (isAscii(text))
        return;
    UErrorCode error = U_ZERO_ERROR;
    for (const icu::Normalizer2 *form :
         {icu::Normalizer2::getNFCInstance(error), icu::Normalizer2::getNFDInstance(error)}) {
        if (U_FAILURE(error))
            return;
        const auto coded =
            icu::UnicodeString::fromUTF8({text.data(), static_cast<int>(text.size())});
        std::string other;
        form->normalize(coded, error).toUTF8String(other);
        if (U_SUCCESS(error))
            add(foldedCase(other));
    }
}

} // namespace

std::vector<std::string> codedForms(std::string_view text) {
    std::vector<std::string> forms;
    addForms(forms, text);
    if (text.find('%') == std::string_view::npos)
        return forms;
    // Signs alone ("%2F") would stand in every address.
    if (const std::string decoded = percentDecode(text); decoded != text && hasLetters(decoded))
        addForms(forms, decoded);
    return forms;
}

const std::string &partText(const std::string &text, std::string &buffer) {
    if (!hasTurkishLetters(text))
        return text;
    buffer = foldedCase(text);
    return buffer;
}

bool isWordCharacter(std::int32_t character) {
    return isLetter(character) && !isSpaceless(character);
}

bool isWithinWord(std::string_view text, std::size_t place) {
    if (place == 0 || place >= text.size())
        return false;
    std::size_t before = place - 1;
    constexpr unsigned kContinues = 0x80; // 10xxxxxx
    constexpr unsigned kTop = 0xC0;
    while (before > 0 && (static_cast<unsigned char>(text[before]) & kTop) == kContinues)
        --before;
    std::size_t after = place;
    return isWordCharacter(characterAt(text, before)) && isWordCharacter(characterAt(text, after));
}

bool WordWalk::next(Word &word) {
    word.text.clear();
    while (m_at < m_text.size()) {
        const std::size_t from = m_at;
        const UChar32 character = characterAt(m_text, m_at);
        const bool isPart =
            isWordCharacter(character) || (isAccent(character) && !word.text.empty());
        if (isPart && word.text.empty())
            word.at = from;
        if (isPart) {
            appendOfWord(word.text, character);
            word.length = m_at - word.at;
        } else if (!word.text.empty()) {
            return true;
        }
    }
    return !word.text.empty();
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    Word word;
    for (WordWalk walk(text); walk.next(word);)
        words.push_back(word.text);
    return words;
}

bool hasLetters(std::string_view text) {
    for (std::size_t at = 0; at < text.size();)
        if (isLetter(characterAt(text, at)))
            return true;
    return false;
}

bool isWithoutWords(std::string_view text) {
    for (std::size_t at = 0; at < text.size();)
        if (isSpaceless(characterAt(text, at)))
            return true;
    return !hasLetters(text);
}

const std::string &wordText(const std::string &text, std::string &buffer) {
    if (isAscii(text))
        return text;
    buffer.clear();
    for (std::size_t at = 0; at < text.size();)
        if (const UChar32 character = characterAt(text, at); isSpaceless(character))
            buffer.push_back(' ');
        else
            appendOfWord(buffer, character);
    return buffer;
}

} // namespace nv
