#pragma once

#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// A text without blanks, tabs and line breaks anywhere.
std::string stripWhitespace(std::string_view text);

/// The host as web pages are told apart by it: without "www." and port; empty for a text that is no
/// "http" address with a path.
std::string hostFromURL(std::string_view url);

/// What a reference is searched for among the URLs: without leading folders and white space.
std::string searchTextOf(std::string_view originalTag);

/// Whether the URL without its query ends in the text: such a record is more likely the part that
/// was meant than one whose URL holds the text somewhere.
bool endsInText(std::string_view url, std::string_view text);

/// How many options of one tag are stored: only the first is ever taken, and the audit shows few.
inline constexpr std::size_t kMostOptions = 50;
/// Of those beyond, the ones that end in the tag's text are stored too, up to this many.
inline constexpr std::size_t kMostExactOptions = 10;

/// "1:4": one pick among four candidates.
std::string scoreText(std::int64_t picks, std::int64_t candidates);
/// The candidates that a score counts; 0 for a text that is none.
std::int64_t candidatesIn(std::string_view accuracyScore);

/// Options serve the rebuild in hand and no later one: all that are stored go.
void forgetTagOptions(const RebuildContext &ctx);

/// Finds for every tag of the page the records that could stand in for it, and stores them as rows
/// of `TagOptions`: those of the page's own host, and where there are none, those of any host in
/// the same kind of cache. A tag whose text is no valid LIKE pattern gets none. Of a tag that has
/// more than are stored, the score counts them all, and the log tells of the page. False after a
/// failure, which is logged, and when cancelled.
bool findTagOptions(const UrlRecord &page, const RebuildContext &ctx);

} // namespace nv
