// A global_history.dat, text with a line end after each line:
//   record = title url visited:digits (seconds since 1970, UTC) popularity
// The typed addresses are told in HistoryTyped.cpp.

#include "readers/opera/History.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Limits.h"
#include "readers/WholeFile.h"
#include "readers/opera/HistoryRecord.h"
#include "readers/opera/HistoryTyped.h"
#include "readers/sqlite/HistoryRow.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kLines = 4;
enum Line : std::size_t { kTitle, kUrl, kVisited, kPopularity };

/// Four lines and where they end; the first begins at `at`.
struct Window {
    std::array<std::string_view, kLines> lines;
    std::array<std::size_t, kLines> next{}; ///< where the line after each one begins
};

/// Nothing when fewer than four line ends follow.
std::optional<Window> windowAt(std::string_view file, std::size_t at) {
    Window window;
    for (std::size_t i = 0; i < kLines; ++i) {
        const std::size_t end = file.find('\n', at);
        if (end == std::string_view::npos)
            return std::nullopt;
        std::string_view line = file.substr(at, end - at);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        window.lines[i] = line;
        window.next[i] = at = end + 1;
    }
    return window;
}

std::optional<std::int64_t> secondsIn(std::string_view line) {
    line = trim(line);
    std::int64_t seconds = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), seconds);
    const bool isNumber = error == std::errc() && end == line.data() + line.size();
    return isNumber ? std::optional(seconds) : std::nullopt;
}

/// The number is one of 32 bits with a sign. 0 stands for none, and so does -1, which is the fourth
/// line of most records: it only stands here where a line is missing.
Date visitDate(std::string_view line) {
    const auto seconds = secondsIn(line);
    if (!seconds || *seconds == 0 || *seconds == -1 || !std::in_range<std::int32_t>(*seconds))
        return {};
    return secondsToDate1970(static_cast<double>(*seconds));
}

/// Whether the lines stand in the order of a record.
bool isInStep(const Window &window) {
    return secondsIn(window.lines[kVisited]) &&
           window.lines[kUrl].find(':') != std::string_view::npos;
}

/// A line that damage took or added would turn all records after it into wrong ones. How many
/// lines belong to no record, so that the next ones are in step; 0 when they are, or none is.
std::size_t linesOutOfStep(std::string_view file, const Window &window) {
    if (isInStep(window))
        return 0;
    for (std::size_t skipped = 1; skipped < kLines; ++skipped)
        if (const auto later = windowAt(file, window.next[skipped - 1]); later && isInStep(*later))
            return skipped;
    return 0;
}

/// Where the next record begins. A last line that is no number may be the next title, when that
/// brings the next lines in step.
std::size_t behindRecord(std::string_view file, const Window &window) {
    if (!secondsIn(window.lines[kPopularity]))
        if (const auto next = windowAt(file, window.next[kVisited]); next && isInStep(*next))
            return window.next[kVisited];
    return window.next[kPopularity];
}

bool isBlank(const Window &window) {
    return std::ranges::all_of(window.lines, &std::string_view::empty);
}

class LineReading {
  public:
    LineReading(ReadContext &ctx, std::string_view file, ReadResult &result)
        : m_ctx(ctx), m_source{ctx, ctx.evidence.factsOf(ctx.file.fullPath).created}, m_file(file),
          m_result(result), m_trap(ctx.log, kOperaHistoryProcedure, textOf(ctx.file.fullPath)),
          m_doubts(ctx.log, kOperaHistoryProcedure, textOf(ctx.file.fullPath)) {}

    void run() {
        while (const auto window = windowAt(m_file, m_at)) {
            if (!m_ctx.task.advance(static_cast<double>(m_at) /
                                    static_cast<double>(m_file.size()))) {
                m_result.state = ReadState::cancelled;
                return;
            }
            take(*window);
        }
        tellRest();
    }

  private:
    void take(const Window &window) {
        if (const std::size_t skipped = linesOutOfStep(m_file, window)) {
            m_result.passedOver["line that belongs to no whole record"] += skipped;
            m_ctx.log.write({fmt::format("{}: {} lines at {} belong to no whole record",
                                         textOf(m_ctx.file.fullPath), skipped, m_at),
                             std::string(kOperaHistoryProcedure), Severity::Serious,
                             std::string(kContactSupport)});
            m_at = window.next[skipped - 1];
            return;
        }
        if (isBlank(window))
            ++m_result.passedOver["four empty lines"];
        else if (!m_trap.run(m_at, [&] { save(window); }))
            ++m_result.passedOver["damaged record"];
        m_at = behindRecord(m_file, window);
    }

    void save(const Window &window) {
        const Date visited = visitDate(window.lines[kVisited]);
        if (!visited.has())
            ++m_result.noted["visit without a date that can be read"];
        tellGarbage(window);
        UrlRecord record =
            operaHistoryRecord(m_source, decodeText(window.lines[kUrl]), visited, m_at);
        record.WebpageTitle = decodeText(window.lines[kTitle]);
        m_ctx.sink.save(record);
    }

    /// Garbage that runs from one record into another one leaves four lines in step, and the
    /// records between them are gone.
    void tellGarbage(const Window &window) {
        if (std::ranges::none_of(window.lines, holdsNoText))
            return;
        ++m_result.noted[std::string(kOperaGarbage)];
        // The trap gives the line its form, and their number an end.
        m_doubts.attempt(m_at, [] {
            throw std::runtime_error(
                "stored with bytes that are no text; others may be lost in it");
        });
    }

    /// The last record is dropped when it has fewer than four lines.
    void tellRest() {
        if (trim(m_file.substr(m_at)).empty())
            return;
        m_result.state = ReadState::cutShort;
        m_result.reason = fmt::format("the file ends within the record at {}", m_at);
        m_result.notReached = 1;
    }

    ReadContext &m_ctx;
    OperaHistorySource m_source;
    std::string_view m_file;
    ReadResult &m_result;
    RecordTrap m_trap;
    RecordTrap m_doubts; ///< of records that are stored
    std::size_t m_at = 0;
};

/// Downloads are kept in tagged fields; such a file begins with its version in four bytes,
/// big-endian.
bool beginsAsTaggedFile(ByteView bytes) {
    return bytes.has(0, 4) && bytes.u8(0) == 0;
}

/// A tagged file of downloads is what the browser writes; a history like that is damaged.
ReadState stateOfTaggedFile(const ReadContext &ctx) {
    return equalsNoCase(textOf(ctx.file.fullPath.filename()), "download.dat")
               ? ReadState::notReadYet
               : ReadState::failed;
}

bool isXml(const ReadContext &ctx, ByteView bytes) {
    return equalsNoCase(ctx.file.fullPath.extension().string(), ".xml") && beginsAsXml(bytes);
}

void readForm(ReadContext &ctx, ByteView bytes, ReadResult &result) {
    if (isXml(ctx, bytes))
        return readOperaTyped(ctx, bytes, result);
    if (!beginsAsTaggedFile(bytes))
        return LineReading(ctx, bytes.raw(), result).run();
    result.state = stateOfTaggedFile(ctx);
    result.reason = "holds tagged fields and not lines, which is a form that is not read";
}

void tellDamage(ReadContext &ctx, ReadResult &result) {
    if (result.state != ReadState::cutShort && result.state != ReadState::failed)
        return;
    result.reason = textOf(ctx.file.fullPath) + ": " + result.reason;
    ctx.log.write({result.reason, std::string(kOperaHistoryProcedure), Severity::Serious,
                   std::string(kContactSupport)});
}

} // namespace

ReadResult parseOperaHistoryFile(ReadContext &ctx) {
    const std::string path = textOf(ctx.file.fullPath);
    ctx.task.describe({"PARSING OPERA HISTORY FILE", "Opera", path, "opera-32.gif"});
    return trapped(ctx.log, Severity::Serious, kOperaHistoryProcedure, kContactSupport,
                   unreadable(ctx), [&ctx] {
                       const EvidenceFile file = ctx.evidence.open(ctx.file.fullPath);
                       const Bytes bytes = file.read(0, limits::kOperaFileBytes);
                       ReadResult result;
                       readForm(ctx, ByteView(bytes), result);
                       if (bytes.size() < file.size() && result.state == ReadState::complete) {
                           result.state = ReadState::cutShort;
                           result.reason = fmt::format("of {} bytes only the first {} are read",
                                                       file.size(), bytes.size());
                       }
                       tellDamage(ctx, result);
                       return result;
                   });
}

} // namespace nv
