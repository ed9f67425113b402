#include "views/rows/CellText.h"

#include "base/Text.h"
#include "readers/RecordKind.h"

namespace nv {
std::string typeWord(std::string_view cacheType) {
    if (const RecordKind *kind = recordKind(cacheType))
        return toUpper(kind->word);
    const std::string upper = toUpper(trim(cacheType));
    return upper.find("HISTORY") != std::string::npos ? "HISTORY" : displayText(upper);
}

} // namespace nv
