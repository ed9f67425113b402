#pragma once

#include "db/records/UrlRecord.h"

#include <cstdint>
#include <string_view>

namespace nv {

class RecordStore;

/// How a page is rebuilt: by the rules that earlier cases were counted with, or as a browser reads
/// it.
enum class RebuildMethod : std::uint8_t { classic, exact };

/// What the examiner wants; `automatic` leaves it to the cache that the page is from.
enum class MethodChoice : std::uint8_t { automatic, classic, exact };

/// The words of settings and of the command line: "auto", "classic", "exact". Another word is
/// "auto".
MethodChoice methodChoice(std::string_view word);

/// What `RebuiltMethod` of a row says.
inline constexpr std::string_view kClassicMethod = "Cache";
inline constexpr std::string_view kExactMethod = "Cache, exact";
/// Of a page over which a template was laid that shows a page as it was rebuilt exactly. A template
/// of a classic one leaves kClassicMethod.
inline constexpr std::string_view kExactTemplateMethod = "Exact template";

/// By what the project knows: automatic is exact for pages of the caches of today's browsers, whose
/// rows tell their layout. A page that turns out to be in UTF-16 is rebuilt exactly too. Throws the
/// database's errors.
RebuildMethod methodFor(const UrlRecord &page, MethodChoice choice, RecordStore &records);

/// Whether the page was last rebuilt exactly.
bool isRebuiltExactly(const UrlRecord &page);
/// By which method what the page shows was rebuilt, be it from a template.
RebuildMethod shownMethod(const UrlRecord &page);

/// "classic", "exact".
std::string_view wordOf(RebuildMethod method);

} // namespace nv
