#include "app/jobs/ImportClaim.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Paths.h"
#include "base/Trap.h"

#include <fmt/format.h>

namespace nv {

ImportClaim::ImportClaim(const std::filesystem::path &project)
    : m_claim("norvelane-import-" + md5Hex(wholePath(project).native())) {
    if (!m_claim.isHeld())
        throw StorageFailure(fmt::format("\"{}\": another import into this project is running; "
                                         "wait for its end",
                                         textOf(project)));
}

} // namespace nv
