#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What a report can be kept free of.
enum class RedactedThing : std::uint8_t {
    host,    ///< with all that is below it
    person,  ///< by the name of the account or of the user
    value,   ///< a text, wherever it stands
    picture, ///< the row that holds it; its bytes count wherever they come again
};
enum class RedactionWay : std::uint8_t {
    leaveOut, ///< the rows, or the pictures, aren't there
    blur,     ///< they are there, and "[redacted]" or a blur stands for what is in them
};

/// In both ways the words themselves stand nowhere in what is handed over.
struct RedactionRule {
    RedactionWay way = RedactionWay::blur;
    RedactedThing thing = RedactedThing::value;
    std::string what; ///< of a picture: the digits of the row's id

    friend bool operator==(const RedactionRule &, const RedactionRule &) = default;
};
using RedactionRules = std::vector<RedactionRule>;

/// What stands for a text that is redacted.
inline constexpr std::string_view kRedacted = "[redacted]";

inline constexpr std::size_t kMostRedactions = 1000;

/// "host=a.example", "person=mara", "value=low tide", "picture=17". Throws std::invalid_argument
/// that says what was expected; so for words so short that a report would be full of holes.
RedactionRule redactionRule(RedactionWay way, std::string_view text);

/// "leave out host=a.example", "blur picture=17".
std::string textOf(const RedactionRule &rule);
/// One a line, and back; empty lines are passed over. Throws as redactionRule() does.
std::string linesOf(const RedactionRules &rules);
RedactionRules redactionRules(std::string_view lines);

/// What became of them, for those who get the report. None of it tells what was redacted.
struct RedactionCounts {
    std::uint64_t rowsLeftOut = 0;
    std::uint64_t placesBlurred = 0; ///< in texts of rows, of pages and of the report itself
    std::uint64_t picturesBlurred = 0;
    std::uint64_t picturesLeftOut = 0; ///< of rows, and parts of rebuilt pages
    std::uint64_t filesChanged = 0;    ///< pages, styles and texts
    std::uint64_t filesLeftOut = 0;    ///< others, and texts that could not be freed of a word
};

/// "2 hosts, 1 person": how many of each were chosen.
std::string chosenText(const RedactionRules &rules);
/// "12 rows left out, 3 places in texts blurred"; empty where nothing was redacted.
std::string redactedText(const RedactionCounts &counts);

} // namespace nv
