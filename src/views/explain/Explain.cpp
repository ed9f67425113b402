#include "views/explain/Explain.h"

#include "base/DisplayText.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/records/RecordStore.h"
#include "db/sql/SideFiles.h"
#include "db/trail/CaseTrail.h"
#include "import/ImportTrail.h"
#include "readers/FieldPlaces.h"
#include "views/explain/ContentCheck.h"
#include "views/explain/RecordValues.h"
#include "views/explain/SourceValues.h"
#include "views/record/Properties.h"
#include "views/rows/SourcePath.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "MainForm.Explain()";

/// What the project has of the file.
void describeFile(const ExplainSource &source, const StoredRecord &stored, bool isFolder,
                  RecordOrigin &origin) {
    SQLite::Statement row(source.project, "SELECT FilePath, FileName, FileSize, MD5Hash FROM "
                                          "SourceFiles WHERE SourceFile_ID = ?");
    row.bind(1, stored.sourceFile);
    origin.file = stored.historyFile;
    if (row.executeStep()) {
        const std::string artefact = row.getColumn(0).getString();
        origin.isOfFolder = isFolder || stored.historyFile.starts_with(artefact + "/") ||
                            stored.historyFile.starts_with(artefact + "\\");
        origin.fileSize = row.getColumn(2).getInt64();
        origin.md5 = row.getColumn(3).getString();
        // Projects of earlier builds have no column for it.
        logFailureOf(source.log, kProcedure, [&] {
            SQLite::Statement hash(source.project,
                                   "SELECT SHA256Hash FROM SourceFiles WHERE SourceFile_ID = ?");
            hash.bind(1, stored.sourceFile);
            if (hash.executeStep())
                origin.sha256 = hash.getColumn(0).getString();
        });
    }
}

} // namespace

std::string_view checkWord(OriginCheck check) {
    switch (check) {
    case OriginCheck::same:
        return "same";
    case OriginCheck::differs:
        return "differs";
    case OriginCheck::unread:
        return "unread";
    case OriginCheck::notKept:
        return "not kept";
    case OriginCheck::derived:
        return "derived";
    case OriginCheck::examiner:
        return "examiner";
    }
    return {};
}

Explainer::Explainer(ExplainSource source)
    : m_source(std::move(source)),
      m_tables(std::make_unique<EvidenceTables>(m_source.evidence, m_source.scratch)) {}

Explainer::~Explainer() = default;

const Explainer::Hashed &Explainer::hashed(const std::filesystem::path &file) {
    const auto known = m_hashed.find(file);
    if (known != m_hashed.end())
        return known->second;
    Hashed &entry = m_hashed[file];
    entry.failure = failureOf(m_source.log, kProcedure, [&] {
                        entry.hashes = hashesOfFile(file);
                    }).value_or("");
    return entry;
}

void Explainer::setState(const std::optional<std::filesystem::path> &file, RecordOrigin &origin) {
    if (!file) {
        origin.state = SourceNow::gone;
        origin.fileNote = "the file isn't there any more: what follows is what the import kept";
        return;
    }
    if (origin.isOfFolder) {
        origin.state = SourceNow::unhashed;
        origin.fileNote = "the hash then is of the folder with all of its files: \"verify\" "
                          "compares it";
        return;
    }
    const Hashed &now = hashed(*file);
    if (!now.hashes || (origin.sha256.empty() && origin.md5.empty())) {
        origin.state = SourceNow::unhashed;
        origin.fileNote = !now.failure.empty() ? now.failure
                                               : "no hash was kept, so nobody can say whether it "
                                                 "is the file that was imported";
        return;
    }
    const bool isSame = origin.sha256.empty() ? equalsNoCase(now.hashes->md5, origin.md5)
                                              : equalsNoCase(now.hashes->sha256, origin.sha256);
    origin.state = isSame ? SourceNow::same : SourceNow::changed;
    origin.fileNote =
        isSame ? "the file has the hash that it had at the import"
               : "the file has another hash than at the import: its values may be others";
}

std::optional<RecordOrigin> Explainer::explain(UrlId id, const std::string &field) {
    const auto stored = storedRecordOf(m_source.project, id);
    if (!stored)
        return std::nullopt;
    RecordOrigin origin;
    origin.id = number(id);
    origin.kind = stored->kind;
    origin.version = stored->version;
    if (const auto record = m_source.records.getURL(id))
        origin.page = formatPageOf(*record);
    auto file = sourcePathOf(stored->historyFile, stored->root);
    const bool isFile = file.has_value();
    if (!file)
        file = sourceFolderOf(stored->historyFile, stored->root);
    describeFile(m_source, *stored, file && !isFile, origin);
    setState(file, origin);
    origin.values = valuesOf(id, *stored, file, field);
    for (const ValueOrigin &value : origin.values)
        if (!value.file.empty() && (value.file != file || origin.isOfFolder))
            addFurther(value.file, origin);
    if (file && !origin.isOfFolder) {
        addLogs(*file, origin);
        for (const std::filesystem::path &each : m_ofContent)
            if (each != *file)
                addFurther(each, origin);
    }
    return origin;
}

std::optional<ValueOrigin> Explainer::explainValue(UrlId id, const std::string &field) {
    const auto stored = storedRecordOf(m_source.project, id);
    if (!stored)
        return std::nullopt;
    auto file = sourcePathOf(stored->historyFile, stored->root);
    if (!file)
        file = sourceFolderOf(stored->historyFile, stored->root);
    std::vector<ValueOrigin> values = valuesOf(id, *stored, file, field);
    return values.empty() ? std::nullopt : std::optional(std::move(values.front()));
}

std::vector<ValueOrigin> Explainer::valuesOf(UrlId id, const StoredRecord &stored,
                                             const std::optional<std::filesystem::path> &file,
                                             const std::string &field) {
    RecordValues values(m_source, *m_tables, id, stored, file);
    std::vector<ValueOrigin> origins;
    for (const Property &property :
         loadProperties(id, {m_source.project, m_source.zone, m_source.dates, m_source.log, {}}))
        if (field.empty() ? !property.value.empty() : equalsNoCase(property.name, field))
            origins.push_back(values.of(property));
    m_ofContent.clear();
    for (ValueOrigin &value : origins)
        if (m_source.readsContent && value.field == "content_sha256")
            compareContent(id, value);
    return origins;
}

void Explainer::compareContent(UrlId id, ValueOrigin &value) {
    auto record = m_source.records.getURL(id);
    if (!record)
        return;
    const ContentCheck content =
        checkContent(m_source.project, std::move(*record), m_source.scratch, m_source.log);
    m_ofContent = content.files;
    value.stored = content.now;
    value.check = content.now.empty() ? OriginCheck::unread
                  : content.differs() ? OriginCheck::differs
                                      : OriginCheck::same;
    value.note = content.now.empty() ? "the content isn't in the evidence any more"
                                     : "the content was read and hashed again";
}

/// Rows of a database may lie in its log alone, and a journal takes some back.
void Explainer::addLogs(const std::filesystem::path &file, RecordOrigin &origin) {
    const bool isDatabase = std::ranges::any_of(
        origin.values, [](const ValueOrigin &value) { return value.place.starts_with("table "); });
    for (const std::string_view suffix : {kLogSuffix, kJournalSuffix}) {
        const std::filesystem::path log = sideFile(file, suffix);
        if (!hashThen(log).empty() ||
            (isDatabase && m_source.evidence.kindOf(log) == PlaceKind::file))
            addFurther(log, origin);
    }
}

const std::string &Explainer::hashThen(const std::filesystem::path &file) {
    if (!m_besideThen) {
        m_besideThen.emplace();
        if (m_source.project.tableExists(kCaseTrailTable))
            CaseTrail(m_source.project).forEach([this](const TrailEntry &entry) {
                if (entry.action == kBesideAction || entry.action == kImportAction)
                    (*m_besideThen)[entry.filePath] = entry.sha256Hash;
            });
    }
    static const std::string kNone;
    const auto found = m_besideThen->find(textOf(file));
    return found == m_besideThen->end() ? kNone : found->second;
}

void Explainer::addFurther(const std::filesystem::path &file, RecordOrigin &origin) {
    const std::string name = textOf(file.filename());
    if (std::ranges::find(origin.further, name, &FurtherFile::name) != origin.further.end())
        return;
    const Hashed &now = hashed(file);
    origin.further.push_back(
        {name, now.hashes ? now.hashes->sha256 : std::string(), hashThen(file), origin.isOfFolder});
}

std::string shownOrigin(std::string_view text) {
    constexpr std::size_t kMost = 2000; // characters
    constexpr std::size_t kMostBytes = 4 * kMost;
    // A value may have megabytes: no more of it is looked at than can be shown.
    const std::string shown = displayText(text.substr(0, kMostBytes + 4), kMost);
    const bool isCut = charCount(text.substr(0, kMostBytes)) > kMost || text.size() > kMostBytes;
    return isCut ? fmt::format("{} ({} bytes in all)", shown, text.size()) : shown;
}

namespace {

std::string textOfFurther(const FurtherFile &file) {
    const std::string today = file.sha256.empty()
                                  ? fmt::format("{}, which can't be read", file.name)
                                  : fmt::format("{} (SHA-256 today: {})", file.name, file.sha256);
    if (file.isOfFolder)
        return today;
    if (file.sha256Then.empty())
        return today + "; it wasn't hashed at the import";
    return file.hasChanged()
               ? fmt::format("{}; CHANGED: at the import it had SHA-256 {}", today, file.sha256Then)
               : today + ", as at the import";
}

} // namespace

std::vector<std::pair<std::string, std::string>> linesOf(const RecordOrigin &record) {
    std::vector<std::pair<std::string, std::string>> lines = {
        {"Record", record.kind.empty() ? std::to_string(record.id)
                                       : fmt::format("{} ({})", record.id, record.kind)},
        {"Source file", record.file},
        {"Size then", std::to_string(record.fileSize)},
        {"MD5 then", record.md5},
        {"SHA-256 then", record.sha256},
        {"Today", record.fileNote},
        {"Format", record.page}};
    for (const FurtherFile &file : record.further)
        lines.emplace_back("Lies in", textOfFurther(file));
    std::erase_if(lines, [](const auto &line) { return line.second.empty(); });
    return lines;
}

std::vector<std::pair<std::string, std::string>> linesOf(const ValueOrigin &value) {
    constexpr std::array<std::pair<OriginCheck, std::string_view>, 6> kWords = {{
        {OriginCheck::same, "the source was read again and gives this value"},
        {OriginCheck::differs, "the source was read again and gives ANOTHER value"},
        {OriginCheck::unread, "the source could not be read again"},
        {OriginCheck::notKept, "how it was made isn't kept value by value"},
        {OriginCheck::derived, "made by the program"},
        {OriginCheck::examiner, "made by the examiner"},
    }};
    const auto words =
        std::ranges::find(kWords, value.check, &std::pair<OriginCheck, std::string_view>::first);
    // Of a cell of a table the place tells row and column.
    const bool isOfCell = value.offset && value.place.starts_with("table ");
    const std::string bytes =
        isOfCell ? fmt::format("{} to {} of {}", *value.offset,
                               *value.offset + std::max<std::uint64_t>(value.length, 1) - 1,
                               textOf(value.file.filename()))
                 : std::string();
    const bool isReadUncompared = value.check == OriginCheck::unread && !value.stored.empty();
    std::vector<std::pair<std::string, std::string>> lines = {
        {"Value", value.value},
        {"Lies at", value.place},
        {"Bytes", bytes},
        {"As it lies", value.stored},
        {"Rule", value.rule},
        {"Zone", value.zone},
        {"Check", isReadUncompared
                      ? "the source was read again; whether it gives this value can't be compared"
                      : std::string(words->second)},
        {"Note", value.note}};
    std::erase_if(lines, [](const auto &line) { return line.second.empty(); });
    for (auto &[name, text] : lines)
        text = shownOrigin(text);
    return lines;
}

} // namespace nv
