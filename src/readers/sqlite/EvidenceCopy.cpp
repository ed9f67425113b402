#include "readers/sqlite/EvidenceCopy.h"

#include "base/ByteView.h"
#include "base/Files.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "db/sql/SideFiles.h"
#include "readers/Scratch.h"
#include "readers/sqlite/PageLog.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> companionOf(const Evidence &evidence, const fs::path &database,
                                    std::string_view suffix) {
    return evidence.find(database.parent_path(), textOf(database.filename()).append(suffix));
}

/// The last `count` bytes of a file, fewer when it is shorter.
std::string tailOf(const ScratchFile &file, std::uint64_t count) {
    const std::uint64_t length = std::min(count, file.size());
    const Bytes tail = file.read(file.size() - length, length);
    return std::string(ByteView(tail).raw());
}

// A journal of a transaction over several files ends with
//   name[length] length:u32be checksum:u32be magic[8]
// where `name` is the path of the journal that leads them all.
constexpr std::string_view kMagic = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
constexpr std::uint64_t kTrailer = 16;
constexpr std::uint64_t kLongestName = 4096;

/// File name of the leading journal, empty when it can't be told; nothing for a journal without.
std::optional<std::string> leadingJournalOf(const fs::path &journal) {
    const std::string tail = tailOf(ScratchFile(journal), kTrailer + kLongestName);
    if (tail.size() < kTrailer || !tail.ends_with(kMagic))
        return std::nullopt;
    const std::uint64_t end = tail.size() - kTrailer;
    const std::uint64_t length = viewOf(tail).u32be(end);
    const std::string name = length <= end ? tail.substr(end - length, length) : std::string();
    return std::string(getFilenameFromPath(name));
}

/// SQLite would go by the path in the journal: it would look for that file on this machine and
/// could even delete it. So the path is cut off, and the folder of the evidence is asked instead:
/// a transaction whose leading journal is gone was committed, and nothing is rolled back.
void settleLeadingJournal(const fs::path &copy, const Evidence &evidence, const fs::path &folder) {
    const std::optional<std::string> leading = leadingJournalOf(copy);
    if (!leading)
        return;
    if (leading->empty() || evidence.find(folder, *leading))
        cutFile(copy, scratch::sizeOf(copy) - kMagic.size());
    else
        scratch::remove(copy);
}

} // namespace

EvidenceCopy::EvidenceCopy(fs::path copy) : m_copy(std::move(copy)) {
    remove();
}

// With the other constructor done, the destructor runs when copying fails half way.
EvidenceCopy::EvidenceCopy(const Evidence &evidence, const fs::path &database,
                           const fs::path &scratch, std::string_view name)
    : EvidenceCopy(scratch / name) {
    copyAll(evidence, database);
}

EvidenceCopy::~EvidenceCopy() {
    remove();
}

void EvidenceCopy::copyAll(const Evidence &evidence, const fs::path &database) {
    copyTo(evidence.open(database), m_copy);
    m_size = scratch::sizeOf(m_copy);
    if (const auto log = companionOf(evidence, database, kLogSuffix)) {
        copyTo(evidence.open(*log), sideFile(m_copy, kLogSuffix));
        const ScratchFile pages(sideFile(m_copy, kLogSuffix));
        m_size += pages.size();
        if (const std::string damage = pageLogDamage(pages); !damage.empty())
            m_logDamage = fmt::format("the log of pages \"{}\" is cut short: {}",
                                      textOf(log->filename()), damage);
    }
    if (const auto journal = companionOf(evidence, database, kJournalSuffix)) {
        copyTo(evidence.open(*journal), sideFile(m_copy, kJournalSuffix));
        settleLeadingJournal(sideFile(m_copy, kJournalSuffix), evidence, database.parent_path());
    }
}

void EvidenceCopy::remove() const {
    removeDatabase(m_copy);
}

} // namespace nv
