#include "readers/chrome/cache/ScriptAddresses.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/leveldb/LevelBytes.h"
#include "readers/leveldb/LevelStore.h"

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "ChromiumSimpleCache.readAddresses()";
constexpr std::string_view kScript = "RES:";

/// The second field, behind the first, which is the number again.
std::optional<std::string_view> addressIn(ByteView message) {
    enum Tag : std::uint64_t { kNumber = 1U << 3U, kAddress = 2U << 3U | 2U };
    std::uint64_t at = 0;
    if (levelVarint(message, at) != kNumber || !levelVarint(message, at) ||
        levelVarint(message, at) != kAddress)
        return std::nullopt;
    return levelText(message, at);
}

/// The folder of that name beside `folder`, in any case of the letters.
std::optional<fs::path> besideIt(const Evidence &evidence, const fs::path &folder,
                                 std::string_view name) {
    for (const fs::path &other : evidence.contentsOf(folder.parent_path()).folders)
        if (toLower(textOf(other.filename())) == name)
            return other;
    return std::nullopt;
}

} // namespace

ScriptAddresses scriptAddressesBeside(const Evidence &evidence, const fs::path &cache,
                                      FailureLog &log) {
    ScriptAddresses addresses;
    if (toLower(textOf(cache.filename())) != "scriptcache")
        return addresses;
    std::map<std::string, std::uint64_t, std::less<>> sequences;
    const auto take = [&](const LevelEntry &entry) {
        const std::size_t zero = entry.key.find('\0');
        if (!entry.key.starts_with(kScript) || zero == std::string_view::npos)
            return;
        const std::string number(entry.key.substr(zero + 1));
        const auto address = addressIn(viewOf(entry.value));
        if (!address || entry.sequence < sequences[number])
            return;
        sequences[number] = entry.sequence;
        addresses.byKey[number] = decodeText(*address);
    };
    const auto read = [&] {
        const auto store = besideIt(evidence, cache, "database");
        if (!store)
            return true;
        const auto problems = eachOfLevelStore(evidence, *store, take);
        for (const std::string &problem : problems)
            log.write({problem, std::string(kProcedure), Severity::Warning,
                       std::string(kContactSupport)});
        return problems.empty();
    };
    addresses.isDamaged = !trapped(log, Severity::Warning, kProcedure, kContactSupport, false,
                                   [&] { return tellingGaps(log, read); });
    return addresses;
}

} // namespace nv
