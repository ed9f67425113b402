#include "readers/chrome/cache/CacheBlockFiles.h"

#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/sqlite/KeptMessage.h"

#include <fmt/format.h>

namespace nv {

namespace {

/// Of the head, what ChromeDataFile holds.
constexpr std::uint64_t kHeadFields = 0x18;

std::string nameOf(std::uint8_t number) {
    return fmt::format("data_{}", number);
}

/// How long the file is by its own head; 0 when that says nothing.
std::uint64_t sizeByHead(const EvidenceFile &file) {
    const Bytes bytes = file.read(0, kHeadFields);
    if (bytes.size() < kHeadFields)
        return ChromeDataFile::kSize;
    const ChromeDataFile head = chromeDataFileOf(ByteView(bytes));
    if (head.blockSize <= 0 || head.entryCountMax <= 0)
        return 0;
    return ChromeDataFile::kSize + static_cast<std::uint64_t>(head.blockSize) *
                                       static_cast<std::uint64_t>(head.entryCountMax);
}

} // namespace

const EvidenceFile *ChromeBlockFiles::file(std::uint8_t number) {
    const Opened &found = opened(number);
    return found.reader ? &*found.reader : nullptr;
}

const std::string &ChromeBlockFiles::lackOf(std::uint8_t number) {
    return opened(number).lack;
}

ChromeBlockFiles::Opened &ChromeBlockFiles::opened(std::uint8_t number) {
    auto found = m_files.find(number);
    if (found == m_files.end())
        found = m_files.emplace(number, open(number)).first;
    return found->second;
}

std::string ChromeBlockFiles::pathOf(std::uint8_t number) const {
    return textOf(m_folder / nameOf(number));
}

Bytes ChromeBlockFiles::read(const ChromeAddressMap &map, std::uint64_t count) {
    const EvidenceFile *source =
        map.dataBlockFileOffset == 0 ? nullptr : file(map.dataBlockFileNumber);
    return source ? source->read(map.dataBlockFileOffset, count) : Bytes();
}

ChromeBlockFiles::Opened ChromeBlockFiles::open(std::uint8_t number) const {
    const auto path = m_evidence.find(m_folder, nameOf(number));
    if (path && !m_log)
        return {m_evidence.open(*path), {}, {}};
    Opened found = path ? openLogged(*path)
                        : Opened{std::nullopt, pathOf(number) + ": the block file is missing", {}};
    if (!found.reader)
        write(found.lack);
    return found;
}

ChromeBlockFiles::Opened ChromeBlockFiles::openLogged(const std::filesystem::path &path) const {
    KeptMessage failure;
    std::string missingEnd;
    auto reader = trapped(failure, Severity::Serious, m_procedure, kContactSupport,
                          std::optional<EvidenceFile>(), [&]() -> std::optional<EvidenceFile> {
                              return tellingGaps(*m_log, [&] {
                                  EvidenceFile file = m_evidence.open(path);
                                  missingEnd = missingEndOf(file);
                                  return std::optional(std::move(file));
                              });
                          });
    if (reader)
        return {std::move(reader), {}, std::move(missingEnd)};
    return {std::nullopt, failure.text, {}};
}

/// Bodies are not read here: without this, nobody would learn that some have gone.
std::string ChromeBlockFiles::missingEndOf(const EvidenceFile &file) const {
    const std::uint64_t whole = sizeByHead(file);
    if (file.size() >= whole)
        return {};
    std::string text = fmt::format("{}: the block file has {} bytes of {}", textOf(file.path()),
                                   file.size(), whole);
    write(text);
    return text;
}

std::vector<std::string> ChromeBlockFiles::cutShort() const {
    std::vector<std::string> texts;
    for (const auto &[number, found] : m_files)
        if (!found.missingEnd.empty())
            texts.push_back(found.missingEnd);
    return texts;
}

void ChromeBlockFiles::write(const std::string &message) const {
    if (m_log)
        m_log->write(
            {message, std::string(m_procedure), Severity::Serious, std::string(kContactSupport)});
}

} // namespace nv
