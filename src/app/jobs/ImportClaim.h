#pragma once

#include "platform/Claim.h"

#include <filesystem>

namespace nv {

/// While it lives no other program imports into the project: two imports at once would mix their
/// rows, and each would take the other's for its own.
class ImportClaim {
  public:
    /// Throws StorageFailure when another import into the project is running. The project need not
    /// exist yet.
    explicit ImportClaim(const std::filesystem::path &project);

  private:
    Claim m_claim;
};

} // namespace nv
