#include "search/KeywordList.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"
#include "markup/PageText.h"
#include "search/Expression.h"
#include "search/FoldedText.h"
#include "search/SearchFailure.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr const char *kInput = "/dev/stdin";
constexpr std::uint64_t kMostFileBytes = std::uint64_t{64} << 20;
constexpr std::size_t kMostTerms = 200'000;
constexpr std::size_t kMostTermBytes = 2'000;

bool isBetween(std::string_view line, char sign) {
    return line.size() > 2 && line.front() == sign && line.back() == sign;
}

Keyword keywordIn(std::string_view line, PlainTerms plain) {
    Keyword term;
    term.isExpression = isBetween(line, '/');
    term.isWholeWord =
        !term.isExpression && (plain == PlainTerms::wholeWords || isBetween(line, '"'));
    term.text =
        isBetween(line, '/') || isBetween(line, '"') ? line.substr(1, line.size() - 2) : line;
    return term;
}

/// Tells with its line what is wrong with a term; nothing when it is well.
std::optional<std::string> faultOf(const Keyword &term) {
    if (term.text.size() > kMostTermBytes)
        return fmt::format("the term has {} bytes, and at most {} can be looked for",
                           term.text.size(), kMostTermBytes);
    if (!term.isExpression && !hasLetters(term.text) && term.isWholeWord)
        return fmt::format("\"{}\" has no word in it", term.text);
    return term.isExpression ? Expression::faultIn(term.text) : std::nullopt;
}

/// What stands for the standard input among names of files.
bool isInput(const fs::path &file) {
    return file == "-" || file == kInput;
}

fs::path wholeName(const fs::path &file) {
    std::error_code none;
    const fs::path whole = fs::absolute(file, none);
    return none ? file : whole;
}

/// A pipe doesn't tell how much will come, and gives it once.
Bytes bytesOf(const fs::path &file, const std::string &name) {
    Bytes bytes;
    readInBlocks(file, [&](std::string_view block, std::uint64_t readSoFar) {
        if (readSoFar > kMostFileBytes)
            throw SearchFailure(fmt::format("\"{}\" is too large: a list of at most {} bytes was "
                                            "expected",
                                            name, kMostFileBytes));
        bytes.insert(bytes.end(), block.begin(), block.end());
        return true;
    });
    return bytes;
}

FileHashes hashesOf(std::string_view bytes) {
    FileHashing hashes;
    hashes.add(bytes);
    return hashes.take();
}

/// Without its end, be it "\r\n", "\n" or "\r". `text` is left with what comes after it.
std::string_view takeLine(std::string_view &text) {
    const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    text.remove_prefix(text.starts_with("\r\n") ? 2 : text.empty() ? 0 : 1);
    return line;
}

bool isUtf16(std::string_view bytes) {
    return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

} // namespace

KeywordList parseKeywords(std::string_view text, const std::string &name, PlainTerms plain) {
    KeywordList list;
    std::set<std::pair<int, std::string>> known;
    if (text.starts_with(kUtf8Mark))
        text.remove_prefix(kUtf8Mark.size());
    const bool isEmpty = text.empty();
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::string_view line = takeLine(text);
        if (line.find('\0') != std::string_view::npos)
            throw SearchFailure(fmt::format("\"{}\" line {}: there are zero bytes in it: text in "
                                            "UTF-8, in UTF-16 with its mark or in Windows-1252 was "
                                            "expected",
                                            name, number));
        const std::string said = decodeText(trim(line));
        if (said.empty() || said.front() == '#')
            continue;
        Keyword term = keywordIn(said, plain);
        term.line = number;
        if (const auto fault = faultOf(term))
            throw SearchFailure(fmt::format("\"{}\" line {}: {}", name, number, *fault));
        const int form = (term.isExpression ? 2 : 0) + (term.isWholeWord ? 1 : 0);
        const bool isNew =
            known.emplace(form, term.isExpression ? term.text : foldedCase(term.text)).second;
        list.repeated += isNew ? 0 : 1;
        if (isNew)
            list.terms.push_back(std::move(term));
        if (list.terms.size() > kMostTerms)
            throw SearchFailure(
                fmt::format("\"{}\" has more than {} terms: divide it", name, kMostTerms));
    }
    if (list.terms.empty())
        throw SearchFailure(fmt::format("\"{}\" {}: a line for each term was expected: a text, "
                                        "\"whole words\" or /expression/; \"#\" begins a comment",
                                        name, isEmpty ? "is empty" : "holds no terms"));
    return list;
}

KeywordList readKeywords(const fs::path &file, PlainTerms plain) {
    const std::string name = isInput(file) ? "standard input" : textOf(file);
    const Bytes bytes = bytesOf(isInput(file) ? fs::path(kInput) : file, name);
    const std::string_view raw = ByteView(bytes).raw();
    KeywordList list = isUtf16(raw)
                           ? parseKeywords(decodedPage(ByteView(bytes), {}).text, name, plain)
                           : parseKeywords(raw, name, plain);
    list.file = isInput(file) ? name : textOf(wholeName(file));
    list.hashes = hashesOf(raw);
    return list;
}

} // namespace nv
