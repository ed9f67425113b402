#pragma once

#include <stdexcept>

namespace nv {

/// What an examiner asked for can't be looked for; the message says which part of it, and what was
/// expected.
class SearchFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace nv
