#include "import/ZoneHints.h"

#include "base/ByteView.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Evidence.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestName = 100; // bytes; the longest of IANA has 30

bool isZoneName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName &&
           std::ranges::all_of(name, [](unsigned char letter) {
               return std::isalnum(letter) ||
                      std::string_view("/_+-").find(static_cast<char>(letter)) !=
                          std::string_view::npos;
           });
}

void add(std::vector<ZoneHint> &hints, std::string_view zone, const fs::path &file) {
    const bool isThere =
        std::ranges::any_of(hints, [zone](const ZoneHint &hint) { return hint.zone == zone; });
    if (isZoneName(zone) && !isThere)
        hints.push_back({std::string(zone), file});
}

/// The first line of etc/timezone.
void addNamed(const Evidence &evidence, const fs::path &file, std::vector<ZoneHint> &hints) {
    if (!evidence.isPlainFile(file))
        return;
    const Bytes bytes = evidence.head(file, kLongestName + 1);
    const std::string_view text = ByteView(bytes).raw();
    add(hints, trim(text.substr(0, text.find('\n'))), file);
}

/// The link etc/localtime leads to the zone's file; only its text is read.
void addLinked(const Evidence &evidence, const fs::path &link, std::vector<ZoneHint> &hints) {
    constexpr std::string_view kFolder = "zoneinfo/";
    const std::string target = evidence.linkText(link);
    const std::size_t at = target.rfind(kFolder);
    if (at != std::string::npos)
        add(hints, std::string_view(target).substr(at + kFolder.size()), link);
}

/// What Unix systems keep below etc. The evidence may be any folder of the system's disk; the root
/// above all is that of the examining machine. A link in evidence leads to its files too.
void addOfSystem(const Evidence &evidence, const fs::path &start, const HistoryFiles &,
                 std::vector<ZoneHint> &hints) {
    for (fs::path folder = start; folder != folder.root_path(); folder = folder.parent_path()) {
        for (const fs::path &etc : {folder / "etc", folder / "private" / "etc"}) {
            if (!evidence.isPlainFolder(etc.parent_path()) || !evidence.isPlainFolder(etc))
                continue;
            addLinked(evidence, etc / "localtime", hints);
            addNamed(evidence, etc / "timezone", hints);
        }
    }
}

using HintSource = void (*)(const Evidence &evidence, const fs::path &start,
                            const HistoryFiles &files, std::vector<ZoneHint> &hints);
constexpr HintSource kSources[] = {&addOfSystem};

} // namespace

std::vector<ZoneHint> zoneHints(const fs::path &start, const HistoryFiles &files, FailureLog &log) {
    const Evidence evidence({});
    std::vector<ZoneHint> hints;
    for (const HintSource source : kSources)
        logFailureOf(log, "ImportForm.NextBtn_Click()",
                     [&] { source(evidence, start, files, hints); });
    return hints;
}

} // namespace nv
