// An SQLite file; of it are read
//   cookies = host_key name value last_access_utc creation_utc expires_utc encrypted_value
// with dates in microseconds since 1601, UTC. 0 in expires_utc is a cookie of one session. Since
// 2014 the value is empty, and encrypted_value has it after "v10", "v11" or "v20" for the kind of
// key, or without such a prefix, encrypted for the user of the machine. What the other columns say
// becomes facts.

#include "readers/chrome/profile/Cookies.h"

#include "base/Digest.h"
#include "readers/FactSource.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/profile/ValueCipher.h"
#include "readers/chrome/shared/MetaTable.h"
#include "readers/chrome/shared/Stamps.h"
#include "readers/sqlite/CookieRow.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseChromeCookiesFile()",
                                  "PARSING CHROME COOKIES FILE", "Google Chrome", "chrome-32.png"};

// The classic rules read the first seven. Later versions have renamed those in pairs.
constexpr std::array<std::string_view, 18> kColumns = {
    "host_key",        "name",           "value",
    "last_access_utc", "creation_utc",   "expires_utc",
    "encrypted_value", "path",           "is_secure",
    "secure",          "is_httponly",    "httponly",
    "samesite",        "firstpartyonly", "top_frame_site_key",
    "source_scheme",   "source_port",    "last_update_utc"};
enum Column : std::size_t {
    kHost,
    kName,
    kValue,
    kLastAccess,
    kCreation,
    kExpires,
    kEncrypted,
    kPath,
    kIsSecure,
    kSecure,
    kIsHttpOnly,
    kHttpOnly,
    kSameSite,
    kFirstPartyOnly,
    kTopFrameSite,
    kSourceScheme,
    kSourcePort,
    kLastUpdate,
};
constexpr std::size_t kClassicColumns = 7;

/// From this version of the tables on the host's SHA-256 stands before the value.
constexpr std::int64_t kFirstWithHost = 24;

Date dateOf(const Row &row, std::size_t column) {
    const std::int64_t stored = row.number(column).value_or(0);
    return stored == 0 ? Date() : chromeTimeToDate(stored);
}

/// What to note of a row whose value isn't shown.
std::string encryptionOf(ByteView encrypted) {
    const std::string_view version = cipherVersion(encrypted);
    return version.empty()
               ? "encrypted value without a prefix, not shown"
               : fmt::format("encrypted value with the prefix \"{}\", not shown", version);
}

/// Of a value that is stored in its encrypted form alone; nothing for others.
std::optional<ByteView> encryptedAlone(const Row &row) {
    const auto encrypted = row.bytes(kEncrypted);
    return encrypted && encrypted->size() > 0 && row.text(kValue).empty() ? encrypted
                                                                          : std::nullopt;
}

std::string_view sameSiteWord(std::optional<std::int64_t> stored) {
    constexpr std::array<std::string_view, 4> kWords = {"unspecified", "none", "lax", "strict"};
    return stored && *stored >= -1 && *stored < 3 ? kWords[static_cast<std::size_t>(*stored + 1)]
                                                  : std::string_view();
}

std::string_view schemeWord(std::optional<std::int64_t> stored) {
    constexpr std::array<std::string_view, 3> kWords = {"unknown", "not secure", "secure"};
    return stored && *stored >= 0 && *stored < 3 ? kWords[static_cast<std::size_t>(*stored)]
                                                 : std::string_view();
}

/// The reading of one file by all rules.
class CookieFacts {
  public:
    CookieFacts(std::optional<std::int64_t> version, std::map<std::string, std::uint64_t> &noted)
        : m_version(version), m_noted(noted) {}

    void add(FactList &facts, const Row &row, std::int64_t rowId) {
        facts.add("path", row.text(kPath));
        addTruth(facts, "secure", row, kIsSecure, kSecure);
        addTruth(facts, "http_only", row, kIsHttpOnly, kHttpOnly);
        auto sameSite = row.number(kSameSite);
        if (!sameSite)
            sameSite = row.number(kFirstPartyOnly);
        addWord(facts, "same_site", sameSiteWord(sameSite), sameSite);
        facts.add("partition", row.text(kTopFrameSite));
        addWord(facts, "source_scheme", schemeWord(row.number(kSourceScheme)),
                row.number(kSourceScheme));
        if (const auto port = row.number(kSourcePort); port.value_or(-1) >= 0)
            facts.add("source_port", *port);
        addStamp(facts, "created", row.number(kCreation));
        addStamp(facts, "last_updated", row.number(kLastUpdate));
        addValue(facts, row);
        addSource(facts, "cookies", rowId);
    }

  private:
    static void addTruth(FactList &facts, FactName name, const Row &row, std::size_t column,
                         std::size_t earlier) {
        const std::size_t there = row.bytes(column) ? column : earlier;
        if (row.bytes(there))
            facts.add(name, row.truth(there) ? "yes" : "no");
    }

    static void addWord(FactList &facts, FactName name, std::string_view word,
                        std::optional<std::int64_t> raw) {
        if (raw)
            facts.add(name, std::string(word), *raw);
    }

    void addValue(FactList &facts, const Row &row) {
        const auto encrypted = encryptedAlone(row);
        if (!encrypted)
            return;
        if (const auto value = valueOf(*encrypted, row.text(kHost))) {
            facts.add("value", *value);
            ++m_noted["encrypted value, decrypted by the key that Linux's \"v10\" has everywhere"];
            return;
        }
        facts.add("encrypted", encryptionText(*encrypted) + m_why);
        ++m_noted[encryptionOf(*encrypted) + m_why];
    }

    /// Nothing for what stays encrypted; `m_why` says more where the key fits.
    std::optional<std::string> valueOf(ByteView encrypted, const std::string &host) {
        m_why.clear();
        std::optional<std::string> plain = decryptedByPublicKey(encrypted);
        if (!plain)
            return std::nullopt;
        const std::string hash = hashOf(host);
        if (plain->starts_with(hash))
            plain->erase(0, hash.size());
        else if (m_version.value_or(0) >= kFirstWithHost) {
            m_why = ", since it was encrypted for another host";
            return std::nullopt;
        }
        return isPlainValue(*plain) ? plain : std::nullopt;
    }

    static std::string hashOf(std::string_view host) {
        Digest digest(DigestAlgorithm::sha256);
        digest.add(host);
        return bytesOfHex(digest.takeHex());
    }

    static std::string bytesOfHex(std::string_view hex) {
        std::string bytes;
        for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
            unsigned byte = 0;
            std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
            bytes.push_back(static_cast<char>(byte));
        }
        return bytes;
    }

    std::optional<std::int64_t> m_version;
    std::map<std::string, std::uint64_t> &m_noted;
    std::string m_why;
};

UrlRecord cookieOf(const ReadContext &ctx, const Row &row, Date fileCreated) {
    UrlRecord record = cookieRecord(ctx,
                                    {row.text(kHost), row.text(kName), row.text(kValue),
                                     dateOf(row, kLastAccess), dateOf(row, kExpires)},
                                    kChromeCookies.word, fileCreated);
    record.OtherDate = dateOf(row, kCreation);
    record.OtherDateMeaning = "Creation Date (UTC)";
    return record;
}

std::span<const std::string_view> columnsFor(const ReadContext &ctx) {
    return std::span(kColumns).first(ctx.classicOnly ? kClassicColumns : kColumns.size());
}

} // namespace

ReadResult parseChromeCookiesFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        TableCursor cursor(database, "cookies", columnsFor(ctx));
        const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
        const auto version = ctx.classicOnly ? std::nullopt : schemaVersion(ctx, database);
        noteSchemaVersion(ctx, "Cookies", version);
        std::map<std::string, std::uint64_t> noted;
        CookieFacts facts(version, noted);
        ReadResult result = eachRow(cursor, ctx, ctx.task, kReader.procedure, [&](const Row &row) {
            UrlRecord record = cookieOf(ctx, row, fileCreated);
            if (!ctx.classicOnly)
                facts.add(record.facts, row, cursor.rowId());
            else if (const auto encrypted = encryptedAlone(row))
                ++noted[encryptionOf(*encrypted)];
            ctx.sink.save(record);
        });
        result.noted = std::move(noted);
        return result;
    });
}

} // namespace nv
