// store = "CURRENT" "MANIFEST-" number | number ".log" | number ".ldb" | number ".sst" ...

#include "readers/leveldb/LevelStore.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/Limits.h"

#include <fmt/format.h>

namespace nv {

std::vector<std::string> eachOfLevelStore(const Evidence &evidence,
                                          const std::filesystem::path &folder,
                                          const TakeLevelEntry &take) {
    std::vector<std::string> problems;
    for (const std::filesystem::path &path : evidence.contentsOf(folder).files) {
        const std::string extension = toLower(textOf(path.extension()));
        const bool isLog = extension == ".log";
        if (!isLog && extension != ".ldb" && extension != ".sst")
            continue;
        const EvidenceFile file = evidence.open(path);
        const Bytes bytes = file.read(0, limits::kLevelFileBytes);
        const ByteView view(bytes);
        std::string problem = isLog ? eachOfLevelLog(view, take) : eachOfLevelTable(view, take);
        if (problem.empty() && file.size() > bytes.size())
            problem = fmt::format("only its first {} bytes are read", bytes.size());
        if (!problem.empty())
            problems.push_back(fmt::format("{}: {}", textOf(path), problem));
    }
    return problems;
}

} // namespace nv
