#include "readers/safari/Cookies.h"

namespace nv {

/// Not "complete": a file without findings would be taken for one without cookies.
ReadResult ParseSafariCookiesFile(ReadContext &) {
    return {ReadState::failed, "cookies of Safari are found and listed, but not read", 0, {}};
}

} // namespace nv
