#pragma once

#include "base/FailureLog.h"
#include "readers/Evidence.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace nv {

/// Addresses of the scripts in a service worker's script cache, by the numbers that are their keys
/// there. They stand in the store "Database" beside the folder "ScriptCache":
///   "RES:" version 00 number = 1: number, 2: address, 3: size, 4: SHA-256     protocol buffers
/// Those of workers that were removed since are among them, as long as the store's files have them.
struct ScriptAddresses {
    std::map<std::string, std::string, std::less<>> byKey;
    bool isDamaged = false; ///< what is wrong was logged
};

/// Empty for every other folder. Throws nothing: without it scripts have no address.
ScriptAddresses scriptAddressesBeside(const Evidence &evidence, const std::filesystem::path &cache,
                                      FailureLog &log);

} // namespace nv
