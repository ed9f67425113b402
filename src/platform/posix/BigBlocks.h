#pragma once

namespace nv {

/// From now on lists of millions of rows give their memory back to the system as soon as they go.
/// By itself the allocator keeps blocks of up to 32 MB for later once one of that size was freed.
void giveBigBlocksBack();

} // namespace nv
