#include "db/hashes/HashSetMaker.h"

#include "base/Files.h"

#include <fmt/format.h>
#include <queue>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kBlock = std::size_t{256} << 10; ///< bytes, of each run that is merged

/// Puts small pieces together, and knows how far it is.
class Output {
  public:
    explicit Output(const fs::path &path) : m_writer(path) {}

    std::uint64_t place() const { return m_place; }
    void add(std::string_view bytes) {
        m_bytes.append(bytes);
        m_place += bytes.size();
        if (m_bytes.size() >= kBlock)
            flush();
    }
    void finish() {
        flush();
        m_writer.close();
    }

  private:
    void flush() {
        m_writer.write(m_bytes);
        m_bytes.clear();
    }

    FileWriter m_writer;
    std::string m_bytes;
    std::uint64_t m_place = 0;
};

} // namespace

/// Of the hashes of one length.
class HashSetMaker::Sorter {
  public:
    Sorter() = default;
    virtual ~Sorter() = default;
    Sorter(const Sorter &) = delete;
    Sorter &operator=(const Sorter &) = delete;

    virtual void add(const HashValue &hash) = 0;
    virtual std::size_t bytesHeld() const = 0;
    virtual void putAside() = 0;
    virtual std::uint64_t total() const = 0;
    /// Hands on each hash once, in order. False when `take` said so.
    virtual bool inOrder(const std::function<bool(std::string_view)> &take) = 0;
};

template <std::size_t Width>
class HashSetMaker::SorterOf final : public HashSetMaker::Sorter {
  public:
    explicit SorterOf(fs::path scratch) : m_scratch(std::move(scratch)) {}
    ~SorterOf() override {
        std::error_code ignored;
        for (const fs::path &run : m_runs)
            fs::remove(run, ignored);
    }
    SorterOf(const SorterOf &) = delete;
    SorterOf &operator=(const SorterOf &) = delete;

    void add(const HashValue &hash) override {
        Hash held;
        std::copy_n(hash.bytes.begin(), Width, held.begin());
        m_held.push_back(held);
        ++m_total;
    }
    std::size_t bytesHeld() const override { return m_held.size() * Width; }
    std::uint64_t total() const override { return m_total; }

    void putAside() override {
        if (m_held.empty())
            return;
        sortHeld();
        m_runs.push_back(m_scratch / fmt::format("~hashes{}-{}", Width, m_runs.size()));
        Output run(m_runs.back());
        for (const Hash &hash : m_held)
            run.add(textOf(hash));
        run.finish();
        m_held.clear();
    }

    bool inOrder(const std::function<bool(std::string_view)> &take) override {
        if (!m_runs.empty())
            putAside();
        sortHeld();
        if (m_runs.empty())
            return std::ranges::all_of(m_held,
                                       [&](const Hash &hash) { return take(textOf(hash)); });
        return merge(take);
    }

  private:
    using Hash = std::array<std::uint8_t, Width>;

    /// A run that is read from its beginning.
    class Run {
      public:
        explicit Run(const fs::path &path) : m_file(path) { advance(); }
        const Hash &hash() const { return m_hash; }
        bool isOver() const { return m_isOver; }
        void advance() {
            if (m_at == m_block.size()) {
                m_block = m_file.read(m_place, kBlock / Width * Width);
                m_place += m_block.size();
                m_at = 0;
            }
            const ByteView block(m_block);
            m_isOver = !block.has(m_at, Width);
            if (m_isOver)
                return;
            std::copy_n(m_block.begin() + static_cast<std::ptrdiff_t>(m_at), Width, m_hash.begin());
            m_at += Width;
        }

      private:
        FileReader m_file;
        Bytes m_block;
        std::uint64_t m_place = 0;
        std::size_t m_at = 0;
        Hash m_hash{};
        bool m_isOver = false;
    };

    static std::string_view textOf(const Hash &hash) { return ByteView(hash).raw(); }

    void sortHeld() {
        std::ranges::sort(m_held);
        m_held.erase(std::unique(m_held.begin(), m_held.end()), m_held.end());
    }

    bool merge(const std::function<bool(std::string_view)> &take) const {
        std::vector<std::unique_ptr<Run>> runs;
        runs.reserve(m_runs.size());
        const auto isLater = [&runs](std::size_t one, std::size_t other) {
            return runs[other]->hash() < runs[one]->hash();
        };
        std::priority_queue<std::size_t, std::vector<std::size_t>, decltype(isLater)> next(isLater);
        for (const fs::path &path : m_runs) {
            runs.push_back(std::make_unique<Run>(path));
            next.push(runs.size() - 1); // no run is empty
        }
        std::optional<Hash> last;
        while (!next.empty()) {
            Run &run = *runs[next.top()];
            const std::size_t place = next.top();
            next.pop();
            if (last != run.hash()) {
                last = run.hash();
                if (!take(textOf(*last)))
                    return false;
            }
            run.advance();
            if (!run.isOver())
                next.push(place);
        }
        return true;
    }

    fs::path m_scratch;
    std::vector<Hash> m_held;
    std::vector<fs::path> m_runs;
    std::uint64_t m_total = 0;
};

HashSetMaker::HashSetMaker(fs::path scratch, std::size_t inMemory)
    : m_inMemory(inMemory), m_sorters{
                                std::make_unique<SorterOf<widthOf(DigestAlgorithm::md5)>>(scratch),
                                std::make_unique<SorterOf<widthOf(DigestAlgorithm::sha1)>>(scratch),
                                std::make_unique<SorterOf<widthOf(DigestAlgorithm::sha256)>>(
                                    scratch)} {}

HashSetMaker::~HashSetMaker() = default;

void HashSetMaker::add(const HashValue &hash) {
    m_sorters.at(placeOf(hash.algorithm))->add(hash);
    makeRoom();
}

void HashSetMaker::makeRoom() {
    std::size_t held = 0;
    for (const auto &sorter : m_sorters)
        held += sorter->bytesHeld();
    if (held >= m_inMemory)
        for (const auto &sorter : m_sorters)
            sorter->putAside();
}

std::optional<std::uint64_t> HashSetMaker::writeTo(const fs::path &target,
                                                   const HashSetFacts &facts,
                                                   const std::function<bool(double)> &goOn) {
    constexpr std::uint64_t kBetween = 65536; // hashes
    Output out(target);
    out.add(kHashSetStart);
    HashSetTail tail;
    std::uint64_t total = 0;
    for (const auto &sorter : m_sorters)
        total += sorter->total();
    std::uint64_t written = 0;
    for (std::size_t at = 0; at < m_sorters.size(); ++at) {
        HashSection &section = tail.sections.at(at);
        section.offset = out.place();
        std::vector<std::uint64_t> index(kHashIndexEntries);
        const auto take = [&](std::string_view hash) {
            const ByteView bytes = viewOf(hash);
            ++index[(std::size_t{bytes.u8(0)} << 8 | bytes.u8(1)) + 1];
            ++section.count;
            out.add(hash);
            return ++written % kBetween != 0 ||
                   goOn(static_cast<double>(written) / static_cast<double>(total));
        };
        if (!m_sorters.at(at)->inOrder(take))
            return std::nullopt;
        section.index = out.place();
        if (section.count == 0)
            continue;
        std::string bytes;
        std::uint64_t place = 0;
        for (const std::uint64_t count : index)
            appendNumber(bytes, place += count);
        out.add(bytes);
    }
    tail.text = out.place();
    const std::string text = textOf(facts);
    tail.textBytes = text.size();
    out.add(text);
    out.add(bytesOf(tail));
    out.finish();
    return written;
}

} // namespace nv
