#include "readers/opera/Cookies.h"

namespace nv {

ReadResult ParseOperaCookiesFile(ReadContext &) {
    ReadResult result;
    result.reason = "the cookies of Opera hold nothing that this program reads";
    return result;
}

} // namespace nv
