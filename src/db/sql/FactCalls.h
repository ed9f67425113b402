#pragma once

#include <string>
#include <string_view>

namespace nv {

/// The statement with each `Fact('name')` and `RawFact('name')` as a look-up in `RecordFacts` for
/// the record of the row in hand; `URLs.Fact('name')` says which table's, where several have a
/// `urlID`. A result column has the fact's name. Throws DialectError for a name that no fact has,
/// since a query would find nothing by it.
std::string withFactsLookedUp(std::string_view sql);

} // namespace nv
