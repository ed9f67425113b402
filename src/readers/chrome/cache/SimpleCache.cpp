// folder = "index" | "index-dir/the-real-index" | file*
// file   = hash "_" part | "todelete_" hash "_" part "_" number       hash: 16 hexadecimal digits
// The hash is the first half of the key's SHA-1; layout of the files in SimpleEntry.h.

#include "readers/chrome/cache/SimpleCache.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/CachedBody.h"
#include "readers/EvidenceGaps.h"
#include "readers/FolderLayout.h"
#include "readers/HeldBody.h"
#include "readers/HeldFile.h"
#include "readers/Limits.h"
#include "readers/chrome/cache/ByteRanges.h"
#include "readers/chrome/cache/CacheRow.h"
#include "readers/chrome/cache/ScriptAddresses.h"
#include "readers/chrome/cache/SimpleEntry.h"
#include "readers/chrome/cache/SimpleIndex.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/sqlite/KeptMessage.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "ChromiumSimpleCache.read()";
constexpr std::string_view kDoomed = "todelete_";
constexpr std::string_view kBodyName = "~simple_body";
constexpr std::size_t kDigits = 16;
/// Files of up to this size are read once, body and all.
constexpr std::uint64_t kReadAtOnce = kBodyInMemory + (std::uint64_t{64} << 10);
constexpr std::uint32_t kFirstVersion = 5;
constexpr std::uint32_t kLastVersion = 9;

/// The names of one entry's files; empty for those that aren't there. A cache has ten thousand, of
/// which paths would take ten times the room.
struct EntryFiles {
    SimpleFileName name;
    std::string file0;
    std::string file1;
    std::string sparse;
};
/// By what their names have in common, in the order of the names.
using Entries = std::map<std::string, EntryFiles>;

class SimpleReading {
  public:
    explicit SimpleReading(ReadContext &ctx)
        : m_ctx(ctx), m_folder(ctx.evidence.kindOf(ctx.file.fullPath) == PlaceKind::folder
                                   ? ctx.file.fullPath
                                   : ctx.file.fullPath.parent_path()),
          m_trap(ctx.log, kProcedure, textOf(m_folder)) {}

    ReadResult read() {
        m_ctx.task.describe(
            {"PARSING CHROMIUM CACHE", "Simple cache", textOf(m_folder), "chromeCache-32.gif"});
        const Entries entries = listEntries();
        readIndex();
        m_scripts = scriptAddressesBeside(m_ctx.evidence, m_folder, m_ctx.log);
        std::size_t number = 0;
        for (const auto &each : entries) {
            if (!m_ctx.task.advance(static_cast<double>(number) /
                                    static_cast<double>(entries.size()))) {
                m_result.state = ReadState::cancelled;
                return m_result;
            }
            m_trap.attempt(number++,
                           [&] { tellingGaps(m_ctx.log, [&] { takeEntry(each.second); }); });
        }
        tellOfIndex();
        tellOfFailures();
        m_ctx.task.show({"All done.", m_count, m_count, {}, 0, 0});
        return m_result;
    }

  private:
    Entries listEntries() {
        Entries entries;
        const FolderContents contents = m_ctx.evidence.contentsOf(m_folder);
        for (const fs::path &folder : contents.folders)
            if (toLower(textOf(folder.filename())) == "index-dir")
                m_indexFile = m_ctx.evidence.find(folder, "the-real-index");
        for (const fs::path &file : contents.files) {
            const fs::path own = file.filename();
            const std::string name = toLower(textOf(own));
            const auto parts = simpleFileName(name);
            if (!parts)
                continue;
            std::string stem = name;
            stem[(parts->isDoomed ? kDoomed.size() : 0) + kDigits + 1] = '?';
            EntryFiles &entry = entries[stem];
            entry.name = *parts;
            (parts->part == '0'   ? entry.file0
             : parts->part == '1' ? entry.file1
                                  : entry.sparse) = own.native();
        }
        return entries;
    }

    /// Without it nothing is lost but the times of last use.
    void readIndex() {
        KeptMessage failure;
        trapped(failure, Severity::Warning, kProcedure, "",
                [this] { tellingGaps(m_ctx.log, [this] { readIndexFile(); }); });
        if (!failure.text.empty())
            m_index.damage = failure.text;
        m_ctx.file.version =
            m_index.version == 0 ? "Simple" : fmt::format("Simple {}", m_index.version);
    }

    void readIndexFile() {
        if (!m_indexFile)
            return;
        const Bytes bytes = m_ctx.evidence.head(*m_indexFile, limits::kChromeSimpleIndex);
        m_index = simpleIndexOf(ByteView(bytes));
    }

    void takeEntry(const EntryFiles &files) {
        if (!files.file0.empty())
            return takeFile0(files);
        if (!files.sparse.empty())
            return takeSparseAlone(files);
        ++m_result.passedOver["third stream of an entry that isn't there"];
    }

    /// Nothing, and counted, when the file is none of an entry's or of another version.
    std::optional<SimpleHead> headOf(const ByteSource &file) {
        auto head = simpleHeadOf(file);
        if (!head) {
            damage(file.path(), "it has no head, or no whole key");
            ++m_result.notReached;
            return std::nullopt;
        }
        if (head->version < kFirstVersion || head->version > kLastVersion) {
            ++m_result.passedOver[fmt::format("entry of version {}, not read", head->version)];
            return std::nullopt;
        }
        return head;
    }

    void takeFile0(const EntryFiles &files) {
        const EvidenceFile opened = m_ctx.evidence.open(m_folder / files.file0);
        const HeldFile file(opened, kReadAtOnce);
        const auto head = headOf(file);
        if (!head)
            return;
        const SimpleEntry entry = simpleEntryOf(file, *head);
        const Bytes response =
            file.read(entry.head.at, std::min(entry.head.size, limits::kChromeSeparateText));
        const ChromeEntryPlace place = {m_folder, textOf(file.path().filename()), entry.body.at,
                                        entry.body.size, 0};
        UrlRecord record = chromeEntryRecord(m_ctx, place, head->key, ByteView(response));
        addUse(record, files.name);
        if (const auto script = m_scripts.byKey.find(head->key); script != m_scripts.byKey.end())
            addAddress(record, script->second);
        HeldBody held(m_ctx.content);
        addDoubts(record, file, entry, held);
        addStreams(record, files);
        if (!entry.damage.empty())
            damage(file.path(), entry.damage);
        if (files.name.isDoomed)
            makeChromeRemnant(record, "a file that the browser had set aside to delete it");
        else if (!entry.damage.empty())
            makeChromeRemnant(record, "an entry's file: " + entry.damage);
        // Stretches take the place of a body that is empty.
        if (record.DataBlockFile != place.file)
            m_ctx.content.forget();
        save(record);
    }

    /// The head of the answer is gone: key and bytes are left.
    void takeSparseAlone(const EntryFiles &files) {
        const EvidenceFile file = m_ctx.evidence.open(m_folder / files.sparse);
        const auto head = headOf(file);
        if (!head)
            return;
        UrlRecord record = chromeEntryRecord(
            m_ctx, {m_folder, textOf(file.path().filename()), 0, 0, 0}, head->key, {});
        addUse(record, files.name);
        addStretches(record, file, *head);
        makeChromeRemnant(record, "stretches of an entry whose first file isn't there");
        save(record);
    }

    static void addAddress(UrlRecord &record, const std::string &url) {
        setChromeAddress(record, url);
        record.facts.add("cache_key", record.URLRawValue);
    }

    void addUse(UrlRecord &record, const SimpleFileName &name) {
        if (name.isDoomed)
            return;
        m_met.insert(name.hash);
        const auto listed = m_index.lastUsed.find(name.hash);
        if (listed != m_index.lastUsed.end())
            addStamp(record.facts, "last_used", listed->second);
        else if (m_index.isThere)
            ++m_result.noted["entry that the-real-index doesn't list"];
    }

    void addDoubts(UrlRecord &record, const ByteSource &file, const SimpleEntry &entry,
                   HeldBody &held) {
        if (!hasItsChecksum(file, entry.head)) {
            ++m_result.noted["answer with a wrong checksum"];
            record.facts.add("body", "the checksum of the answer's head is wrong");
        }
        BodyTarget target(m_ctx.scratch / kBodyName, kBodyInMemory);
        if (!hasItsChecksum(file, entry.body, &target)) {
            ++m_result.noted["body with a wrong checksum"];
            record.facts.add("body", "its checksum is wrong");
        }
        addBodyDoubts(record, entry.body.size);
        if (entry.body.size == 0)
            return;
        Body body = target.take();
        settleBody(record, body, Packing::byHeaders, kBodyInMemory, m_ctx.log);
        held.take(std::move(body));
    }

    void addStreams(UrlRecord &record, const EntryFiles &files) {
        if (!files.file1.empty())
            beside([&] { addThirdStream(record, m_folder / files.file1); });
        if (!files.sparse.empty())
            beside([&] {
                const EvidenceFile file = m_ctx.evidence.open(m_folder / files.sparse);
                if (const auto head = simpleHeadOf(file))
                    addStretches(record, file, *head);
                else
                    damage(file.path(), "it has no head, or no whole key");
            });
    }

    /// What can't be read of it costs the entry nothing else.
    template <class Read>
    void beside(const Read &read) {
        m_trap.attempt(0, [&] { tellingGaps(m_ctx.log, read); });
    }

    void addThirdStream(UrlRecord &record, const fs::path &path) {
        const EvidenceFile file = m_ctx.evidence.open(path);
        const auto head = simpleHeadOf(file);
        const auto stream = head ? simpleLastStreamOf(file, *head) : std::nullopt;
        if (!stream)
            return damage(path, "its third stream is cut short");
        record.facts.add("further_stream", fmt::format("{} bytes in {}, from {}", stream->size,
                                                       textOf(path.filename()), stream->at));
    }

    void addStretches(UrlRecord &record, const ByteSource &file, const SimpleHead &head) {
        const SimpleStretches stretches = simpleStretchesOf(file, head);
        if (!stretches.damage.empty())
            damage(file.path(), stretches.damage);
        const auto wrong =
            std::ranges::count_if(stretches.list, [&file](const SimpleStretch &each) {
                return each.bytes.crc.value_or(0) != 0U && !hasItsChecksum(file, each.bytes);
            });
        if (wrong > 0) {
            ++m_result.noted["body with a wrong checksum"];
            record.facts.add("body", fmt::format("the checksums of {} stretches are wrong", wrong));
        }
        if (stretches.overlapping > 0)
            ++m_result.noted["body with stretches that lie over each other"];
        std::vector<ByteRange> stored;
        stored.reserve(stretches.list.size());
        for (const SimpleStretch &each : stretches.list)
            stored.push_back({each.first(), each.size()});
        const std::string ranges = byteRangesText(stored, contentLengthIn(record.MetaData));
        if (record.CacheFileSize > 0) {
            // Entries have one or the other: which one is the body is left to whoever looks.
            ++m_result.noted["whole body with stretches beside it"];
            record.facts.add("further_stream", fmt::format("stretches {} in {}", ranges,
                                                           textOf(file.path().filename())));
            return;
        }
        record.facts.add("byte_ranges", ranges);
        record.DataBlockFile = textOf(file.path().filename());
        record.DataBlockFileOffset =
            stretches.list.empty() ? 0 : static_cast<std::int64_t>(stretches.list.front().at());
        record.CacheFileSize = static_cast<std::int64_t>(stretches.size());
        record.CacheFileExists = record.CacheFileSize > 0;
    }

    void save(UrlRecord &record) {
        m_ctx.sink.save(record);
        ++m_count;
        if (m_ctx.task.wantsStep())
            m_ctx.task.show(
                {{}, 0, 0, fmt::format("Record {} {}", m_count, record.URL), m_count, m_count});
    }

    void tellOfIndex() {
        if (m_scripts.isDamaged)
            ++m_result.noted["store with the addresses of scripts that can't be read whole"];
        if (!m_index.damage.empty() && m_indexFile)
            damage(*m_indexFile, m_index.damage + ", so times of last use may be missing");
        else if (!m_index.isThere)
            ++m_result.noted["no the-real-index, which has the times of last use"];
        const auto gone = std::ranges::count_if(
            m_index.lastUsed, [this](const auto &listed) { return !m_met.contains(listed.first); });
        if (gone > 0)
            m_result.passedOver["entry that the-real-index lists, and whose file isn't there"] =
                static_cast<std::uint64_t>(gone);
    }

    void tellOfFailures() {
        if (m_trap.failed() == 0)
            return;
        m_result.notReached += m_trap.failed();
        addReason(fmt::format("{}: {} could not be read, the log tells which", textOf(m_folder),
                              counted(m_trap.failed(), "entry", "entries")));
    }

    void damage(const fs::path &file, std::string_view what) {
        const std::string text = fmt::format("{}: {}", textOf(file), what);
        if (++m_damaged <= RecordTrap::kLoggedRecords)
            m_ctx.log.write(
                {text, std::string(kProcedure), Severity::Serious, std::string(kContactSupport)});
        if (m_damaged == 1)
            addReason(text);
    }

    void addReason(const std::string &reason) {
        m_result.state = ReadState::cutShort;
        m_result.reason += (m_result.reason.empty() ? "" : "; ") + reason;
    }

    ReadContext &m_ctx;
    fs::path m_folder;
    RecordTrap m_trap;
    ReadResult m_result;
    SimpleIndex m_index;
    std::optional<fs::path> m_indexFile;
    ScriptAddresses m_scripts;
    std::unordered_set<std::uint64_t> m_met;
    std::uint64_t m_damaged = 0;
    std::int64_t m_count = 0;
};

} // namespace

std::optional<SimpleFileName> simpleFileName(std::string_view name) {
    SimpleFileName result;
    result.isDoomed = name.starts_with(kDoomed);
    if (result.isDoomed)
        name.remove_prefix(kDoomed.size());
    const std::size_t least = kDigits + 2;
    if (name.size() < least || name[kDigits] != '_' || !isHexName(name.substr(0, kDigits), kDigits))
        return std::nullopt;
    result.part = name[kDigits + 1];
    const std::string_view rest = name.substr(least);
    const bool isNamed = result.isDoomed ? rest.empty() || rest.starts_with('_') : rest.empty();
    if (!isNamed || (result.part != '0' && result.part != '1' && result.part != 's'))
        return std::nullopt;
    std::from_chars(name.data(), name.data() + kDigits, result.hash, 16);
    return result;
}

ReadResult parseChromiumSimpleCache(ReadContext &ctx) {
    return SimpleReading(ctx).read();
}

bool fetchSimpleBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    const auto folder = evidence.byText(record.CacheRootPath);
    const auto found = folder && record.CacheFileSize > 0 && record.DataBlockFileOffset >= 0
                           ? evidence.find(*folder, record.DataBlockFile)
                           : std::nullopt;
    if (!found)
        return false;
    const EvidenceFile file = evidence.open(*found);
    const auto name = simpleFileName(toLower(record.DataBlockFile));
    if (!name || name->part != 's')
        return target.copy(file, static_cast<std::uint64_t>(record.DataBlockFileOffset),
                           static_cast<std::uint64_t>(record.CacheFileSize)) > 0;
    const auto head = simpleHeadOf(file);
    if (!head)
        return false;
    std::uint64_t written = 0;
    for (const SimpleStretch &each : simpleStretchesOf(file, *head).list)
        written += target.copy(file, each.at(), each.size());
    return written > 0;
}

} // namespace nv
