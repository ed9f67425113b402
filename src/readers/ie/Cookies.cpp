// The index of a cookies folder has the layout of Index.cpp, records as in CookieRecord.cpp. Beside
// it lies a text file for each cookie.

#include "readers/ie/Cookies.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/WholeFile.h"
#include "readers/ie/CookieRecord.h"
#include "readers/ie/CookieTexts.h"
#include "readers/ie/HashWalk.h"
#include "readers/ie/IndexFacts.h"
#include "readers/ie/Kinds.h"
#include "readers/ie/RemnantWalk.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <unordered_set>
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
          m_texts(ctx.log, kProcedure, textOf(ctx.file.fullPath)) {}

    ReadResult run() {
        if (!m_walk.open(m_result))
            return m_result;
        m_ctx.file.version = bytesToString(m_bytes, kVersion, kVersionLength, true);
        m_walk.run([this](const ListedRecord &record) { return take(record); }, m_result);
        if (!m_ctx.classicOnly && m_result.state != ReadState::cancelled) {
            const IndexBlocks blocks = m_walk.blocks();
            RemnantWalk(m_ctx, m_bytes, blocks, kProcedure)
                .run([this](const Remnant &remnant) { recover(remnant); }, m_result);
        }
        return m_result;
    }

  private:
    std::string_view take(const ListedRecord &listed) {
        std::string_view rule = refusal(m_bytes.sub(listed.offset, 4).raw());
        if (!rule.empty() && (m_ctx.classicOnly || !isRecord(listed.offset)))
            return rule;
        const ByteView bytes = recordAt(m_bytes, listed.offset);
        UrlRecord record = recordOf(bytes, listed.offset);
        if (m_ctx.classicOnly) {
            if (const auto found = locateCookieFile(record, m_ctx.file, m_ctx.evidence))
                addText(record, *found);
            m_ctx.sink.save(record);
            return {};
        }
        if (!rule.empty())
            record.Status = m_bytes.sub(listed.offset, 4).raw();
        else
            rule = listed.classicRule;
        addIndexFacts(record, bytes);
        addHashFacts(record, listed.hashStatus);
        record.facts.add("classic_rule", std::string(rule));
        saveWithText(record);
        return {};
    }

    /// As the browser writes signatures: all further rows are of these.
    bool isRecord(std::uint64_t offset) const {
        return !looseSignatureAt(m_bytes, offset).empty() || m_bytes.sub(offset, 4).raw() == "FILE";
    }

    UrlRecord recordOf(ByteView bytes, std::uint64_t offset) const {
        if (!bytes.empty() && bytes.sub(0, 4).raw() == "REDR")
            return redirectOf(bytes, offset);
        const DeletedFlag deleted = m_ctx.deleted ? DeletedFlag::yes : DeletedFlag::no;
        return parseIECookie(bytes, m_ctx.file, offset, deleted, m_ctx.clock);
    }

    UrlRecord redirectOf(ByteView bytes, std::uint64_t offset) const {
        UrlRecord record =
            parseIEURL(bytes, m_ctx.file, offset, {}, DeletedFlag::no, m_ctx.clock).value();
        record.cacheType = kIECookies.word;
        record.RootPath = m_ctx.evidence.rootOf(m_ctx.file.fullPath);
        return record;
    }

    void recover(const Remnant &remnant) {
        const ByteView bytes(remnant.bytes, remnant.offset);
        UrlRecord record = recordOf(bytes, remnant.offset);
        setRecovered(record, remnant);
        addIndexFacts(record, bytes);
        const std::string name = toLower(record.CacheFileName);
        if (name.empty() || !m_files.contains(name))
            return saveWithText(record);
        record.RootPath = m_ctx.evidence.rootOf(m_ctx.file.fullPath);
        record.facts.add("body", "none: another record has the text file");
        m_ctx.sink.save(record);
    }

    /// The record stands for the first cookie of its text file; each other one is a row. A file
    /// that several records name gives its cookies once.
    void saveWithText(UrlRecord &record) {
        TextCookies cookies;
        if (const auto found = locateCookieFile(record, m_ctx.file, m_ctx.evidence)) {
            const CookieText text = addText(record, *found);
            if (m_files.insert(toLower(record.CacheFileName)).second)
                cookies = cookiesOf(ByteView(text.raw));
        }
        if (cookies.damaged > 0)
            m_result.passedOver["damaged cookie in a text file"] += cookies.damaged;
        std::span<const TextCookie> others = cookies.cookies;
        // A damaged one at the beginning is the one that the record stands for.
        if (!others.empty() && others.front().offset == 0) {
            addCookieFacts(record, others.front());
            others = others.subspan(1);
        }
        m_ctx.sink.save(record);
        for (const TextCookie &cookie : others) {
            UrlRecord further = furtherCookie(record, cookie);
            for (const RecordFact &fact : record.facts)
                if (fact.name == "recovered_from")
                    further.facts.addStored(fact);
            m_ctx.sink.save(further);
        }
    }

    CookieText addText(UrlRecord &record, const std::filesystem::path &file) {
        record.MetaData = "Error Reading File";
        CookieText read;
        const bool isRead = m_texts.run(static_cast<std::uint64_t>(record.MapFileOffset), [&] {
            read =
                tellingGaps(m_ctx.log, [&] { return readCookieText(m_ctx.evidence.open(file)); });
            record.MetaData = std::move(read.text);
            if (!read.whole)
                ++m_result.passedOver["end of a cookie's text file behind 1 MiB"];
        });
        if (!isRead)
            ++m_result.noted["cookie whose text file could not be read"];
        return read;
    }

    ReadContext &m_ctx;
    ByteView m_bytes;
    HashWalk m_walk;
    RecordTrap m_texts;
    ReadResult m_result;
    std::unordered_set<std::string> m_files; ///< texts whose cookies have their rows
};

} // namespace

ReadResult readIECookies(ReadContext &ctx, ByteView bytes) {
    return CookiesReading(ctx, bytes).run();
}

ReadResult parseIECookies(ReadContext &ctx) {
    return readWholeFile(ctx,
                         {"PARSING COOKIES INDEX.DAT FILE", "Internet Explorer", "", "ie-32.gif"},
                         kProcedure, [&ctx](ByteView bytes) { return readIECookies(ctx, bytes); });
}

} // namespace nv
