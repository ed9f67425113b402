#pragma once

#include <string>
#include <string_view>

namespace nv {

/// "C:" or "C|".
bool isDriveLetter(std::string_view text);
/// Whether a file's path begins there: "C:", "C|/x", but not "C:x".
bool startsWithDriveLetter(std::string_view text);

/// "." and "..", escaped or not. `segment` is percent-encoded.
bool isSingleDot(std::string_view segment);
bool isDoubleDot(std::string_view segment);

/// Takes the last segment off a path that has each behind a "/" of its own. A file's drive stays.
void shortenPath(std::string &path, bool isFile);

} // namespace nv
