#pragma once

#include "base/Digest.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A line of a list.
struct Keyword {
    std::string text;     ///< without its signs
    std::size_t line = 0; ///< from 1
    bool isExpression = false;
    bool isWholeWord = false;
};

/// What is looked for in one pass over a project.
struct KeywordList {
    std::vector<Keyword> terms; ///< each once, in the order of the file
    std::size_t repeated = 0;   ///< lines that say again what another says
    std::string file;           ///< where it was read: the whole name, or "standard input"
    FileHashes hashes;          ///< of what was read there
};

/// Whether a term without signs is found within words.
enum class PlainTerms { anywhere, wholeWords };

/// Reads a list: a term a line, found anywhere and in either case of letters; in quotation marks as
/// a whole word or phrase; between "/" a regular expression. Empty lines and those that begin with
/// "#" say nothing. `name` is that of the list, for messages. Throws SearchFailure that names the
/// line for what can't be read, and for a list without a term or of too many.
KeywordList parseKeywords(std::string_view text, const std::string &name,
                          PlainTerms plain = PlainTerms::anywhere);

/// The same of a file in UTF-8, UTF-16 with its mark, or Windows-1252. "-" is the standard input; a
/// pipe is read to its end. Throws FileFailure too.
KeywordList readKeywords(const std::filesystem::path &file,
                         PlainTerms plain = PlainTerms::anywhere);

} // namespace nv
