// A dcache4.url. The tags are little-endian, 16 bits:
//   index  = header:byte[15] field*
//   field  = tag:u16le length:u8 value:byte[length]
//   record = url field*                        up to its file name, or to the next url
// Header and fields of other kinds aren't told apart: the walk goes on by a byte until a field of a
// known kind begins. A file that a version of the browser lays out anew is so read in part.

#include "readers/opera/Cache.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/Dissection.h"
#include "readers/Limits.h"
#include "readers/PageObjects.h"
#include "readers/WholeFile.h"
#include "readers/opera/CacheField.h"
#include "readers/opera/CacheFile.h"
#include "readers/opera/CacheGaps.h"
#include "readers/opera/Kinds.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <optional>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseOperaCache()";
constexpr std::uint64_t kFirstField = 0x0F;
/// Bytes without a record between two questions whether to go on.
constexpr std::uint64_t kBytesBetweenAsking = std::uint64_t{64} << 10;

/// The word of a load status; other numbers have none.
std::string_view statusWord(std::uint64_t status) {
    switch (status) {
    case 2:
        return "Loaded";
    case 4:
        return "Aborted";
    case 5:
        return "Failed";
    default:
        return {};
    }
}

class CacheReading {
  public:
    CacheReading(ReadContext &ctx, ByteView file)
        : m_ctx(ctx), m_file(file), m_trap(ctx.log, kProcedure, textOf(ctx.file.fullPath)),
          m_contents(ctx.log, kProcedure, textOf(ctx.file.fullPath)),
          m_losses(ctx.log, kProcedure, textOf(ctx.file.fullPath)),
          m_gaps(file, [this](std::uint64_t from, std::uint64_t end) { tellGap(from, end); }) {}

    ReadResult run() {
        m_at = kFirstField;
        while (m_at < m_file.size()) {
            const auto field = operaFieldAt(m_file, m_at);
            if (beginsRecord(field))
                close();
            // Never amid a record: half of one would be saved, or none.
            if (!m_record && (beginsRecord(field) || m_at >= m_askAt) && !goOn())
                return m_result;
            const bool isUsed = field && take(*field);
            if (isUsed && field->isCut)
                m_cutAt = m_at;
            if (isUsed)
                m_gaps.takes(*field, m_at);
            else
                m_gaps.stepsOver(m_at);
            m_at += isUsed ? field->length : 1;
        }
        close();
        m_gaps.ends();
        tellEnd();
        return m_result;
    }

  private:
    bool goOn() {
        m_askAt = m_at + kBytesBetweenAsking;
        const double fraction = static_cast<double>(m_at) / static_cast<double>(m_file.size());
        if (m_ctx.task.wantsStep()) {
            TaskStep step;
            step.topMessage = "Processing";
            step.topCounter = static_cast<std::int64_t>(m_at);
            step.topTotal = static_cast<std::int64_t>(m_file.size());
            m_ctx.task.show(step);
        }
        if (m_ctx.task.advance(fraction))
            return true;
        m_result.state = ReadState::cancelled;
        return false;
    }

    static bool beginsRecord(const std::optional<OperaField> &field) {
        return field && field->tag == OperaTag::url && !textOf(*field).empty();
    }

    /// False when the bytes only look like a field.
    bool take(const OperaField &field) {
        if (field.tag == OperaTag::url)
            return open(field);
        if (field.tag == OperaTag::fileName)
            return closeWithFile(field);
        if (!m_record)
            return true;
        if (field.tag == OperaTag::visited)
            m_record->ActionDateUTC = dateOf(field);
        else if (field.tag == OperaTag::mimeType)
            m_record->MIMEType = textOf(field);
        else if (const auto number = numberOf(field)) {
            if (field.tag == OperaTag::size)
                m_record->RecordSize = *number;
            else
                m_record->Status = statusWord(*number);
        }
        return true;
    }

    bool open(const OperaField &field) {
        const std::string url = textOf(field);
        if (url.empty())
            return false;
        m_record.emplace();
        setUrl(url);
        setOperaCacheFolder(*m_record, m_ctx.file, m_ctx.evidence);
        m_record->SourceFile_ID = m_ctx.file.sourceFileID;
        m_record->HistoryFilePath = textOf(m_ctx.file.fullPath);
        m_record->HistoryVersion = m_ctx.file.version;
        m_record->MapFileOffset = static_cast<std::int64_t>(m_at);
        m_record->cacheType = kOperaCache.word;
        m_record->Action = "Visited";
        m_record->Visits = kVisitsUnknown;
        return true;
    }

    void setUrl(const std::string &url) {
        m_record->URL = url;
        m_record->URLRawValue = url;
        m_record->host = parseHost(url);
        m_record->URLProtocol = getURLProtocol(url);
        m_record->HashedURL = hashOfUrl(url);
        m_record->URLFileExt = getFileExtension(url);
        m_record->URLParameters = parametersOf(url);
        setPageObjects(*m_record);
    }

    bool closeWithFile(const OperaField &field) {
        if (!m_record) {
            ++m_result.passedOver["cached file without a URL that can be read"];
            m_gaps.isTold();
            return true;
        }
        const auto begin = static_cast<std::uint64_t>(m_record->MapFileOffset);
        m_record->CacheFileNameRecordOffset = m_at - begin;
        if (const std::string name = textOf(field); !name.empty())
            addFile(name);
        close();
        return true;
    }

    /// A cached file that can't be read is no reason to lose its record.
    void addFile(const std::string &name) {
        bool isThere = true;
        const bool isRead = m_contents.run(m_at, [&] {
            isThere = setOperaCachedFile(*m_record, name, m_ctx.file, m_ctx.evidence);
        });
        if (!isRead)
            ++m_result.noted["record whose cached file could not be read"];
        else if (!isThere)
            ++m_result.noted["cached file that isn't beside the index"];
    }

    /// Saves the record that is open. Its first date, told to be -109205, means none: it stays
    /// unset.
    void close() {
        if (!m_record)
            return;
        if (m_record->CacheFileName.empty())
            ++m_result.noted["record without the name of a cached file"];
        m_record->ActionDateLocal = utcDateToLocal(m_record->ActionDateUTC, m_ctx.clock);
        m_record->LastVisited = m_record->ActionDateUTC;
        m_trap.attempt(static_cast<std::uint64_t>(m_record->MapFileOffset),
                       [&] { m_ctx.sink.save(*m_record); });
        m_record.reset();
    }

    void tellGap(std::uint64_t from, std::uint64_t end) {
        ++m_result.passedOver["stretch of bytes without a record, in which some may be lost"];
        // The trap gives the line its form, and their number an end.
        m_losses.attempt(from, [&] {
            throw std::runtime_error(
                fmt::format("{} bytes without a record were stepped over; some may be lost in them",
                            end - from));
        });
    }

    void tellEnd() {
        if (m_trap.failed() > 0)
            m_result.passedOver["damaged record"] += m_trap.failed();
        if (m_cutAt) {
            m_result.state = ReadState::cutShort;
            m_result.reason = fmt::format("the file ends within the field at {}", *m_cutAt);
        }
    }

    ReadContext &m_ctx;
    ByteView m_file;
    RecordTrap m_trap;
    RecordTrap m_contents;
    RecordTrap m_losses;
    ReadResult m_result;
    CacheGaps m_gaps;
    std::optional<UrlRecord> m_record; ///< the one that is open
    std::optional<std::uint64_t> m_cutAt;
    std::uint64_t m_at = 0;
    std::uint64_t m_askAt = 0;
};

/// A file of a few bytes holds nothing, and one of millions more than an index does.
void tellSize(ReadContext &ctx, std::uint64_t size, std::uint64_t read, ReadResult &result) {
    if (result.state == ReadState::cancelled)
        return;
    if (size <= kFirstField) {
        result.state = ReadState::failed;
        result.reason =
            fmt::format("the index is {} bytes long, which is no more than its header", size);
    } else if (read < size) {
        result.state = ReadState::cutShort;
        result.reason = fmt::format("of {} bytes only the first {} are read", size, read);
    }
    if (result.state == ReadState::complete)
        return;
    result.reason = textOf(ctx.file.fullPath) + ": " + result.reason;
    ctx.log.write(
        {result.reason, std::string(kProcedure), Severity::Warning, std::string(kContactSupport)});
}

} // namespace

ReadResult parseOperaCache(ReadContext &ctx) {
    const std::string path = textOf(ctx.file.fullPath);
    ctx.task.describe({"PARSING OPERA CACHE FILE", "Opera", path, "opera-32.gif"});
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, unreadable(ctx),
                   [&ctx] {
                       const EvidenceFile file = ctx.evidence.open(ctx.file.fullPath);
                       const Bytes bytes = file.read(0, limits::kOperaFileBytes);
                       ReadResult result = CacheReading(ctx, ByteView(bytes)).run();
                       tellSize(ctx, file.size(), bytes.size(), result);
                       return result;
                   });
}

} // namespace nv
