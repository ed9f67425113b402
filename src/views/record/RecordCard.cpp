#include "views/record/RecordCard.h"

#include "base/DisplayText.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/records/RecordFacts.h"
#include "db/records/UrlRecord.h"
#include "db/sql/BindId.h"
#include "readers/RecordKind.h"
#include "time/ExactZone.h"
#include "views/record/DecodedValues.h"
#include "views/record/SourcePlace.h"
#include "views/rows/CellText.h"
#include "views/rows/NamedRow.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.LoadCard()";

std::string_view wordOf(RecordGroup group) {
    switch (group) {
    case RecordGroup::cache:
        return "Cached content";
    case RecordGroup::history:
        return "Visit";
    case RecordGroup::cookies:
        return "Cookie";
    case RecordGroup::bookmarks:
        return "Bookmark";
    default:
        return "Record";
    }
}

/// What the signatures of entries in an index say. Most other formats have the first of them for
/// each record, which says nothing.
std::string statusText(const std::string &status, std::string_view cacheType) {
    const BrowserFamily *family = familyOf(cacheType);
    if (family == nullptr || family->engine != Engine::internetExplorer)
        return status == "URL" ? std::string() : status;
    if (status == "URL")
        return "URL: an entry that is in use";
    if (status == "REDR")
        return "REDR: the server led on to another address";
    if (status == "LEAK")
        return "LEAK: given up, but its file could not be deleted then";
    return status;
}

class CardMaker {
  public:
    CardMaker(NamedRow row, UrlId url, const CardSource &source)
        : m_row(row), m_source(source), m_sourceFile(row.number("SourceFile_ID")) {
        logFailureOf(source.log, kProcedure,
                     [&] { m_facts = RecordFacts(source.project).of(url); });
    }

    RecordCard card() {
        m_card.address = m_row.text("URL");
        m_card.title = title();
        addDates();
        addOrigin();
        add("Kind", kind());
        add("Status", status());
        add("Searched for", searchedFor());
        add("Visits", visits());
        add("Raw address", rawAddress());
        add("Content", content());
        addSource();
        addHashes();
        return std::move(m_card);
    }

  private:
    void add(std::string_view label, std::string text) {
        if (!trim(text).empty())
            m_card.lines.push_back({std::string(label), std::move(text)});
    }

    std::string fact(std::string_view name) const {
        const auto found = std::ranges::find(m_facts, name, &RecordFact::name);
        return found == m_facts.end() ? std::string() : factText(found->value);
    }

    std::string title() const {
        for (const char *column : {"WebPageTitle", "URLFileName", "Host"})
            if (std::string text = m_row.text(column); !trim(text).empty())
                return text;
        return std::string(wordOf(groupOf(m_row.text("CacheType"))));
    }

    /// Where it says more than the address with its escapes: that one is cleaned up, and of some
    /// schemes only a part. A cache's key is the whole address behind marks of the cache's own.
    std::string rawAddress() const {
        std::string raw = m_row.text("URLRawValue");
        const std::string decoded = percentDecode(raw);
        if (!decoded.ends_with(m_card.address))
            return raw == m_card.address ? std::string() : raw;
        const auto head =
            std::string_view(decoded).substr(0, decoded.size() - m_card.address.size());
        const bool isKey =
            groupOf(m_row.text("CacheType")) == RecordGroup::cache && !isScheme(head);
        return isKey || head.empty() ? std::string() : raw;
    }

    /// "view-source:"
    static bool isScheme(std::string_view head) {
        return head.ends_with(':') && std::ranges::all_of(head, [](char c) {
                   return (c >= 'a' && c <= 'z') || c == '-' || c == ':';
               });
    }

    std::string utcText(Date date) const {
        return formatDate(date, m_source.dates.dateTimeFormat()) + " UTC";
    }

    void addDates() {
        const Date date = m_row.date("ActionDateUTC");
        if (!date.has())
            add("Date", "The record has none");
        else
            add("Date", utcText(date) + localClock());
        if (date.has())
            logFailureOf(m_source.log, kProcedure, [&] { addZoneDate(date); });
        if (const Date other = m_row.date("OtherDate"); other.has())
            if (const std::string meaning = otherMeaning(); !meaning.empty())
                add(meaning, utcText(other));
    }

    /// Formats that keep no UTC are read as if they did.
    std::string localClock() const {
        const RecordKind *kind = recordKind(m_row.text("CacheType"));
        return kind != nullptr && kind->inLocalTime
                   ? ", though the format keeps the time of the clock on the wall"
                   : "";
    }

    void addZoneDate(Date date) {
        const ZonedDate zoned = zonedDate(date, m_source.zone, m_source.dates);
        if (zoned.local.has())
            add("Local date", fmt::format("{} {} ({} {})",
                                          formatDate(zoned.local, m_source.dates.dateTimeFormat()),
                                          zoneName(m_source.zone), zoned.offset, zoned.code));
    }

    /// Empty where nobody can say which date it is: it stands among all values then. Results of
    /// another program have one of their own, whose field they call so.
    std::string otherMeaning() const {
        const std::string meaning = m_row.text("OtherDateMeaning");
        if (!trim(meaning).empty() && meaning != "Other")
            return displayText(meaning, 40);
        const bool isOfResults = familyOf(m_row.text("CacheType")) == &families::netAnalysis;
        return isOfResults ? "Secondary date" : "";
    }

    void addOrigin() {
        add("Browser", m_row.text("Browser")); // as in the table: the kind says more of none
        add("Profile", m_row.text("Profile"));
        add("Person", m_row.text("Person"));
        if (m_row.text("User") != m_row.text("Person"))
            add("User", m_row.text("User"));
    }

    std::string kind() const {
        const std::string cacheType = m_row.text("CacheType");
        std::vector<std::string> words = {std::string(wordOf(groupOf(cacheType)))};
        for (std::string word : {m_row.text("Action"), fact("transition")})
            if (!trim(word).empty() && !equalsNoCase(word, words.front()))
                words.push_back(std::move(word));
        const std::string all = fmt::format("{}", fmt::join(words, ", "));
        return cacheType.empty() ? all : fmt::format("{} ({})", all, typeWord(cacheType));
    }

    std::string status() const {
        std::vector<std::string> words;
        std::string text =
            statusText(std::string(trim(m_row.text("Status"))), m_row.text("CacheType"));
        if (!text.empty() && text != fact("transition"))
            words.push_back(std::move(text));
        if (const std::string code = fact("response_code"); !code.empty())
            words.push_back("HTTP " + code);
        if (const std::string how = fact("recovered_from"); !how.empty())
            words.push_back("recovered: " + how);
        if (const std::string device = fact("device"); !device.empty())
            words.push_back("from the device " + device);
        return fmt::format("{}", fmt::join(words, "; "));
    }

    std::string searchedFor() const {
        if (std::string term = fact("search_term"); !term.empty())
            return term;
        for (DecodedValue &value : decodedAddress("URL", m_card.address, m_row.text("URLRawValue")))
            if (value.rule == kSearchTermRule)
                return std::move(value.value);
        return {};
    }

    std::string visits() const {
        const std::int64_t visits = m_row.number("Visits");
        return visits > 0 ? std::to_string(visits) : std::string();
    }

    std::string content() const {
        const bool isThere = m_row.flag("CacheFileExists");
        if (groupOf(m_row.text("CacheType")) != RecordGroup::cache && !isThere)
            return {};
        std::vector<std::string> words;
        for (const char *column : {"Category", "MIMEType"})
            if (std::string text = m_row.text(column); !trim(text).empty())
                words.push_back(std::move(text));
        if (const std::int64_t width = m_row.number("PictureWidth"); width > 0)
            words.push_back(fmt::format("{} x {} pixels", width, m_row.number("PictureHeight")));
        if (const std::int64_t bytes = m_row.number("CacheFileSize"); bytes > 0)
            words.push_back(counted(static_cast<std::uint64_t>(bytes), "byte"));
        if (!isThere)
            words.emplace_back("not there at the import");
        return fmt::format("{}", fmt::join(words, ", "));
    }

    void addSource() {
        const std::string file = m_row.text("HistoryFilePath");
        if (file.empty())
            return add("Source", m_row.text("RootPath") + m_row.text("CacheFileRelativePath"));
        add("Source", file + placeInFile(file));
        if (const BrowserFamily *family = familyOf(m_row.text("CacheType"));
            family && family->engine == Engine::unknown) // another tool's
            add("Recovered by", std::string(family->name));
    }

    std::string placeInFile(const std::string &file) const {
        return placeInSource({file, m_row.text("CacheType"), m_row.text("HistoryVersion"),
                              m_row.number("MapFileOffset")},
                             m_facts);
    }

    void addHashes() {
        for (const auto &[name, label] : {std::pair("content_sha256", "SHA-256 of the content"),
                                          std::pair("content_sha1", "SHA-1 of the content"),
                                          std::pair("content_md5", "MD5 of the content")})
            if (const std::string hash = fact(name); !hash.empty()) {
                add(label, hash);
                break; // one tells which content it is; the others stand in the list
            }
        logFailureOf(m_source.log, kProcedure, [&] { addSourceHash(); });
        add("Known by", fact("hashset_known"));
        add("Notable by", fact("hashset_notable"));
    }

    void addSourceHash() {
        SQLite::Statement file(m_source.project,
                               "SELECT * FROM SourceFiles WHERE SourceFile_ID = ?");
        file.bind(1, m_sourceFile);
        if (!file.executeStep())
            return;
        const NamedRow row(file);
        const std::string sha256 = row.text("SHA256Hash");
        if (!sha256.empty())
            return add("SHA-256 of the source", sha256);
        add("MD5 of the source", row.text("MD5Hash"));
    }

    NamedRow m_row;
    const CardSource &m_source;
    std::int64_t m_sourceFile;
    FactList m_facts;
    RecordCard m_card;
};

} // namespace

std::string RecordCard::line(std::string_view label) const {
    const auto found = std::ranges::find(lines, label, &CardLine::label);
    return found == lines.end() ? std::string() : found->text;
}

std::string zoneName(const TimeZone &zone) {
    return zone.exact ? zone.exact->name() : zone.tzName;
}

std::optional<RecordCard> loadCard(UrlId url, const CardSource &source) {
    std::optional<RecordCard> card;
    logFailureOf(source.log, kProcedure, [&] {
        SQLite::Statement row(source.project, "SELECT * FROM URLs WHERE URL_ID = ?");
        bindId(row, 1, url);
        if (row.executeStep())
            card = CardMaker(NamedRow(row), url, source).card();
    });
    return card;
}

} // namespace nv
