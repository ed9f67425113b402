#include "platform/posix/BigBlocks.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace nv {

void giveBigBlocksBack() {
#ifdef __GLIBC__
    constexpr int kBig = 1 << 20; // bytes
    mallopt(M_MMAP_THRESHOLD, kBig);
    mallopt(M_TRIM_THRESHOLD, kBig);
#endif
}

} // namespace nv
