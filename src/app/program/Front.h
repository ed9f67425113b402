#pragma once

namespace nv {

/// Which of the two programs runs.
enum class Front { window, headless };

} // namespace nv
