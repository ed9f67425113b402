#pragma once

namespace nv {

/// From now on this process and those that it starts can open no socket but local ones, whatever
/// the code of a page or a library does. False where the system can't do that. Call it while the
/// process has one thread.
bool lockNetwork();

} // namespace nv
