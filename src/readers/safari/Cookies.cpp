#include "readers/safari/Cookies.h"

namespace nv {

/// Not "complete": a file without findings would be taken for one without cookies.
ReadResult parseSafariCookiesFile(ReadContext &) {
    return {ReadState::notReadYet, "cookies of Safari are found and listed, but not read", 0, {}};
}

} // namespace nv
