#pragma once

#include "db/sql/SqlTokens.h"

#include <string>
#include <vector>

namespace nv {

// Comparisons of the dialect that the database would take another way than examiners mean them.

/// Throws DialectError when a date column is compared with a text, Date() or strftime(): dates are
/// stored as numbers, every number comes before every text, and so all rows or none would be found.
void checkDateComparisons(const std::vector<Token> &tokens);

/// The statement with "=" and "<>" beside a text that holds letters beyond ASCII as LIKE, which
/// knows their other case; the collation of the columns, by which they are indexed, doesn't. A date
/// column is matched with the text of LIKE as "2011-03-01 15:30:00" and not as a number of days.
std::string asExaminersMean(const std::vector<Token> &tokens);

} // namespace nv
