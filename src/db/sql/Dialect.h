#pragma once

#include "db/sql/SqlTokens.h"
#include "time/Date.h"

#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// A statement of the project's dialect as SQLite reads it: #dates#, True and False, Len, UCase,
/// LCase, Mid and Nz, Fact('name') of a record, TOP n, [names], "texts" and & are replaced token by
/// token; nothing inside of a text or a name is touched. "=" and "<>" beside a text with letters
/// beyond ASCII become LIKE, which knows their other case, and LIKE takes a date column as
/// "2011-03-01 15:30:00". Throws DialectError, also for a LIKE pattern that can't work and for a
/// date column that is compared with a text otherwise.
std::string translate(std::string_view sql);

/// A date as examiners write it: "1/15/2009" (month first) or "2009-01-15", with or without a time
/// such as "3:05:00 PM"; a year of two digits lies in 1930 to 2029. Nothing when it is none: a
/// thirteenth month is refused and not read as a day.
std::optional<Date> parseDateLiteral(std::string_view text);

/// A name or a text so that it can't end early, for statements that the program builds.
std::string quotedName(std::string_view name);
std::string quotedText(std::string_view text);

} // namespace nv
