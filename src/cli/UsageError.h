#pragma once

#include <stdexcept>

namespace nv::cli {

/// A call that can't be carried out as it stands; the message says what was expected.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace nv::cli
