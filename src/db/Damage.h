#pragma once

#include "db/SqliteErrors.h"

#include <utility>

namespace nv {

/// Runs `body`. False when bytes of the file made no sense; any other error passes on.
template <class Body>
[[nodiscard]] bool unlessDamaged(Body &&body) {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (const SQLite::Exception &error) {
        if (!isDamage(error))
            throw;
        return false;
    }
}

} // namespace nv
