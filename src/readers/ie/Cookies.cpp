// The index of a cookies folder has the layout of Index.cpp, records as in CookieRecord.cpp. Beside
// it lies a text file for each cookie.

#include "readers/ie/Cookies.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/WholeFile.h"
#include "readers/ie/CookieRecord.h"
#include "readers/ie/HashWalk.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseIECookies()";
constexpr std::uint64_t kVersion = 0x18;
constexpr std::uint64_t kVersionLength = 3;

/// Why a record with this signature is no cookie; empty when it is one.
std::string_view refusal(std::string_view signature) {
    struct Other {
        std::string_view signature;
        std::string_view reason;
    };
    constexpr std::array<Other, 3> kOthers = {{{"leak", "LEAK record in a cookies index"},
                                               {"redr", "REDR record in a cookies index"},
                                               {"file", "FILE record in a cookies index"}}};
    if (equalsNoCase(signature, "url "))
        return {};
    const auto *other = std::find_if(kOthers.begin(), kOthers.end(), [&](const Other &each) {
        return equalsNoCase(signature, each.signature);
    });
    return other == kOthers.end() ? "entry without a record signature" : other->reason;
}

class CookiesReading {
  public:
    CookiesReading(ReadContext &ctx, ByteView bytes)
        : m_ctx(ctx), m_bytes(bytes), m_walk(ctx, bytes, kProcedure),
          m_texts(ctx.log, kProcedure, textOf(ctx.file.FullPath)) {}

    ReadResult run() {
        if (!m_walk.open(m_result))
            return m_result;
        m_ctx.file.Version = BytesToString(m_bytes, kVersion, kVersionLength, true);
        m_walk.run([this](std::uint64_t offset) { return take(offset); }, m_result);
        return m_result;
    }

  private:
    std::string_view take(std::uint64_t offset) {
        const std::string_view reason = refusal(m_bytes.sub(offset, 4).raw());
        if (!reason.empty())
            return reason;
        const DeletedFlag deleted = m_ctx.deleted ? DeletedFlag::yes : DeletedFlag::no;
        URLClass record =
            ParseIECookie(recordAt(m_bytes, offset), m_ctx.file, offset, deleted, m_ctx.clock);
        if (const auto found = locateCookieFile(record, m_ctx.file, m_ctx.evidence))
            addText(record, *found);
        m_ctx.sink.save(record);
        return {};
    }

    void addText(URLClass &record, const std::filesystem::path &file) {
        record.MetaData = "Error Reading File";
        const bool isRead = m_texts.run(static_cast<std::uint64_t>(record.MapFileOffset), [&] {
            CookieText read =
                tellingGaps(m_ctx.log, [&] { return readCookieText(m_ctx.evidence.open(file)); });
            record.MetaData = std::move(read.text);
            if (!read.whole)
                ++m_result.passedOver["end of a cookie's text file behind 1 MiB"];
        });
        if (!isRead)
            ++m_result.noted["cookie whose text file could not be read"];
    }

    ReadContext &m_ctx;
    ByteView m_bytes;
    HashWalk m_walk;
    RecordTrap m_texts;
    ReadResult m_result;
};

} // namespace

ReadResult readIECookies(ReadContext &ctx, ByteView bytes) {
    return CookiesReading(ctx, bytes).run();
}

ReadResult ParseIECookies(ReadContext &ctx) {
    return readWholeFile(ctx,
                         {"PARSING COOKIES INDEX.DAT FILE", "Internet Explorer", "", "ie-32.gif"},
                         kProcedure, [&ctx](ByteView bytes) { return readIECookies(ctx, bytes); });
}

} // namespace nv
