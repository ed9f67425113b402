#pragma once

#include "db/URLClass.h"
#include "rebuild/RebuildContext.h"

#include <string>
#include <string_view>

namespace nv {

/// A text without blanks, tabs and line breaks anywhere.
std::string StripWhitespace(std::string_view text);

/// The host as web pages are told apart by it: without "www." and port; empty for a text that is no
/// "http" address with a path.
std::string HostFromURL(std::string_view url);

/// What a reference is searched for among the URLs: without leading folders and white space.
std::string searchTextOf(std::string_view OriginalTag);

/// Whether pages of this cache type (upper case) name their parts by URL. The others, those of
/// Internet Explorer, name them by cache folder and file.
bool namesPartsByUrl(std::string_view cacheType);

/// Finds for every tag of the page the records that could stand in for it, and stores them as rows
/// of `TagOptions`: those of the page's own host, and where there are none, those of any host in
/// the same kind of cache. A tag whose text is no valid LIKE pattern gets none. False after a
/// failure, which is logged, and when cancelled.
bool FindTagOptions(const URLClass &page, const RebuildContext &ctx);

} // namespace nv
