#pragma once

#include <functional>

namespace nv {

/// Runs `body`. False when bytes of the file made no sense; any other error passes on. Defined with
/// all else that tells errors of the database apart, in SqliteErrors.cpp.
[[nodiscard]] bool unlessDamaged(const std::function<void()> &body);

} // namespace nv
