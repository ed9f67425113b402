// cache2 = "entries": {40 hex}{...} ["doomed": {number}{...}] ["trash" number: {...}{...}]
// Each file is an entry: Cache2Entry.cpp. The index beside them has nothing that they don't have.

#include "readers/firefox/cache/Cache2.h"

#include "base/Files.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/CachedBody.h"
#include "readers/EvidenceGaps.h"
#include "readers/FolderLayout.h"
#include "readers/HeldBody.h"
#include "readers/firefox/cache/Cache2Entry.h"
#include "readers/firefox/cache/Cache2Hash.h"
#include "readers/firefox/cache/Cache2Record.h"
#include "readers/sqlite/KeptMessage.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kProcedure = "ParserClass.ParseFirefoxCache2()";
constexpr std::string_view kBodyName = "~cache2_body";
constexpr std::size_t kNameDigits = 40; ///< of SHA-1
/// Files of up to this size are read once, body and all.
constexpr std::uint64_t kReadAtOnce = kBodyInMemory + (std::uint64_t{64} << 10);

bool holdsGivenUp(std::string_view folder) {
    return folder == "doomed" || folder.starts_with("trash");
}

/// The bytes of one entry's file, as many as are needed.
struct EntryFile {
    Bytes bytes;
    std::uint64_t at = 0; ///< where in the file they begin
    bool hasBody = false;
    Cache2Entry entry;

    ByteView body() const { return ByteView(bytes).sub(0, entry.body); }
};

/// Runs `body`; its failure names the entry, of which there are thousands.
template <class Body>
void naming(const std::string &name, Body &&body) {
    KeptMessage kept;
    if (!succeeds(kept, Severity::Warning, {}, {}, std::forward<Body>(body)))
        throw std::runtime_error(fmt::format("{}: {}", name, kept.text));
}

/// Throws EvidenceFailure too, which names the file.
EntryFile readEntry(const EvidenceFile &source, const std::string &name) {
    constexpr std::uint64_t kWord = 4;
    EntryFile file;
    file.hasBody = source.size() <= kReadAtOnce;
    if (file.hasBody)
        file.bytes = source.read(0, source.size());
    const std::uint64_t size = file.hasBody ? file.bytes.size() : source.size();
    if (size <= kWord)
        throw std::runtime_error(name + ": it is too short for an entry");
    const Bytes last = file.hasBody ? Bytes(file.bytes.end() - kWord, file.bytes.end())
                                    : source.read(size - kWord, kWord);
    std::uint64_t at = 0;
    naming(name, [&] { at = cache2MetaDataAt(ByteView(last), size); });
    if (!file.hasBody) {
        file.bytes = source.read(at, size - at);
        file.at = at;
    }
    naming(name,
           [&] { file.entry = parseCache2Entry(ByteView(file.bytes).from(at - file.at), at); });
    return file;
}

/// Of those that are in memory whole.
bool areChunksRight(const EntryFile &file) {
    const ByteView stored = ByteView(file.bytes).sub(0, file.entry.stored);
    std::uint64_t at = 0;
    for (const std::uint16_t hash : file.entry.chunks) {
        const std::uint64_t size = std::min<std::uint64_t>(kCache2Chunk, stored.size() - at);
        if (static_cast<std::uint16_t>(cache2Hash(stored.sub(at, size))) != hash)
            return false;
        at += size;
    }
    return true;
}

class Cache2Reading {
  public:
    explicit Cache2Reading(ReadContext &ctx)
        : m_ctx(ctx), m_isFolder(ctx.evidence.kindOf(ctx.file.fullPath) == PlaceKind::folder),
          m_entries(ctx.log, kProcedure, textOf(ctx.file.fullPath)),
          m_doubts(ctx.log, kProcedure, textOf(ctx.file.fullPath)) {}

    ReadResult run() {
        list();
        m_ctx.task.describe({"PARSING MOZILLA FIREFOX CACHE",
                             fmt::format("A total of {} files were found.", m_files.size()),
                             {},
                             "firefox-32.gif"});
        for (std::size_t i = 0; i < m_files.size(); ++i) {
            const double done = static_cast<double>(i) / static_cast<double>(m_files.size());
            if (!m_ctx.task.advance(done)) {
                m_result.state = ReadState::cancelled;
                m_result.reason = "cancelled";
                return m_result;
            }
            m_entries.attempt(i, [&] { readFile(i); });
        }
        settle();
        return m_result;
    }

  private:
    void list() {
        const fs::path &place = m_ctx.file.fullPath;
        if (!m_isFolder) {
            const std::string folder = textOf(place.parent_path().filename());
            const std::string lower = toLower(folder);
            const bool isInCache = lower == "entries" || holdsGivenUp(lower);
            add(place, isInCache ? folder : std::string());
            return;
        }
        const FolderContents contents = contentsOf(place);
        const std::string own = textOf(place.filename());
        if (holdsGivenUp(toLower(own))) // without the rest of its cache
            return addAll(contents.files, own);
        if (!addFolders(contents, [](std::string_view name) { return name == "entries"; }))
            addAll(contents.files, {}); // entries that were copied out
        addFolders(contents, holdsGivenUp);
    }

    bool addFolders(const FolderContents &contents, bool (*isWanted)(std::string_view)) {
        bool isThere = false;
        for (const fs::path &folder : contents.folders) {
            const std::string name = textOf(folder.filename());
            if (!isWanted(toLower(name)))
                continue;
            isThere = true;
            addAll(contentsOf(folder).files, name);
        }
        return isThere;
    }

    /// Without what can't be listed, which is told.
    FolderContents contentsOf(const fs::path &folder) {
        const auto list = [&] {
            return tellingGaps(m_ctx.log, [&] { return m_ctx.evidence.contentsOf(folder); });
        };
        std::optional<FolderContents> contents =
            trapped(m_ctx.log, Severity::Warning, kProcedure, kContactSupport,
                    std::optional<FolderContents>(), [&] { return std::optional(list()); });
        if (!contents)
            addLoss(fmt::format("{} could not be listed", textOf(folder)));
        else if (!contents->unreadable.empty())
            addLoss(contents->unreadable.front().reason);
        return contents ? std::move(*contents) : FolderContents();
    }

    void addLoss(const std::string &reason) {
        m_result.state = ReadState::cutShort;
        m_result.reason += (m_result.reason.empty() ? "" : "; ") + reason;
        m_ctx.log.write(
            {reason, std::string(kProcedure), Severity::Warning, std::string(kContactSupport)});
    }

    void addAll(const std::vector<fs::path> &files, const std::string &folder) {
        for (const fs::path &file : files) {
            const bool isNamedSo = isHexName(file.filename().native(), kNameDigits);
            if (isNamedSo || holdsGivenUp(toLower(folder)))
                add(file, folder);
            else
                ++m_result.passedOver["file whose name is no entry's"];
        }
    }

    void add(const fs::path &file, const std::string &folder) {
        const std::string name = textOf(file.filename());
        m_files.push_back({file, folder, holdsGivenUp(toLower(folder)),
                           folder.empty() ? name : folder + "/" + name});
    }

    void readFile(std::size_t number) {
        const Cache2File &place = m_files[number];
        const EntryFile file = tellingGaps(
            m_ctx.log, [&] { return readEntry(m_ctx.evidence.open(place.path), place.name); });
        UrlRecord url = parseCache2Record(file.entry, place, m_ctx);
        tellDoubts(file, place, url);
        show(number, url.URL);
        HeldBody held(m_ctx.content);
        if (file.hasBody && file.entry.body > 0 && file.entry.body <= kBodyInMemory)
            hold(file, url, held);
        m_ctx.sink.save(url);
        ++m_saved;
    }

    void hold(const EntryFile &file, UrlRecord &url, HeldBody &held) {
        const std::string_view bytes = file.body().raw();
        Body body{m_ctx.scratch / kBodyName, true, Bytes(bytes.begin(), bytes.end())};
        settleBody(url, body, Packing::byHeaders, kBodyInMemory, m_ctx.log);
        held.take(std::move(body));
    }

    void tellDoubts(const EntryFile &file, const Cache2File &place, UrlRecord &url) {
        const Cache2Entry &entry = file.entry;
        if (!entry.isHashRight)
            note("metadata that aren't as their hash says: some of it is damaged", place);
        if (entry.version > kCache2LastVersion)
            note(fmt::format("metadata of version {}, read as those of version {}", entry.version,
                             kCache2LastVersion),
                 place);
        if (file.hasBody && !areChunksRight(file)) {
            note("a body that isn't as its hashes say", place);
            url.facts.add("body", "changed or damaged: it isn't as its hashes say");
        }
    }

    /// The trap gives the line its form, and their number an end.
    void note(const std::string &doubt, const Cache2File &place) {
        ++m_result.noted[doubt];
        m_doubts.attempt(0, [&] {
            throw std::runtime_error(fmt::format("{}: stored from {}", place.name, doubt));
        });
    }

    void show(std::size_t number, const std::string &url) {
        const auto count = static_cast<std::int64_t>(m_files.size());
        const auto now = static_cast<std::int64_t>(number) + 1;
        if (m_ctx.task.wantsStep())
            m_ctx.task.show({fmt::format("Record {} of {}", now, count), now, count, url, 0, 0});
    }

    void settle() {
        if (m_entries.failed() > 0)
            m_result.passedOver["file that is no sound entry"] += m_entries.failed();
        if (!m_isFolder && m_saved == 0) {
            m_result.state = ReadState::failed;
            m_result.reason = "it is no sound entry: " + textOf(m_ctx.file.fullPath);
        }
    }

    ReadContext &m_ctx;
    bool m_isFolder;
    std::vector<Cache2File> m_files;
    RecordTrap m_entries;
    RecordTrap m_doubts; ///< of records that are stored
    ReadResult m_result;
    std::uint64_t m_saved = 0;
};

} // namespace

ReadResult parseFirefoxCache2(ReadContext &ctx) {
    return Cache2Reading(ctx).run();
}

} // namespace nv
