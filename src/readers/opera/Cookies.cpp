#include "readers/opera/Cookies.h"

namespace nv {

ReadResult parseOperaCookiesFile(ReadContext &) {
    return {ReadState::notReadYet, "cookies of Opera are found and listed, but not read", 0, {}};
}

} // namespace nv
