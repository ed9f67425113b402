#include "rebuild/exact/RecordProfile.h"

#include "db/sql/BindId.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <optional>
#include <string_view>

namespace nv {

namespace {

/// The path up to the last folder of that name, with it; empty for none. Evidence may lie below
/// folders of such names too.
std::string upTo(std::string_view path, std::string_view folder) {
    constexpr std::string_view kSeparators = "/\\";
    for (std::size_t end = path.size(); !folder.empty() && end > 0;) {
        const std::size_t separator = path.find_last_of(kSeparators, end - 1);
        const std::size_t begin = separator == std::string_view::npos ? 0 : separator + 1;
        if (path.substr(begin, end - begin) == folder)
            return std::string(path.substr(0, end));
        end = begin == 0 ? 0 : begin - 1;
    }
    return {};
}

std::string placeOf(const FileProfile &file) {
    std::string place = upTo(file.file, file.person);
    if (place.empty())
        place = upTo(file.file, file.profile);
    return place.empty() ? file.file : place;
}

bool hasOrigins(SQLite::Database &project) {
    return project
               .execAndGet("SELECT count(*) FROM pragma_table_xinfo('SourceFiles') WHERE name IN "
                           "('Browser', 'Profile', 'Person')")
               .getInt() == 3;
}

} // namespace

std::string FileProfile::text() const {
    std::string words;
    for (const std::string *word : {&browser, &profile, &person})
        if (!word->empty())
            words += (words.empty() ? "" : ", ") + *word;
    if (words.empty() || file.empty())
        return words + file;
    return fmt::format("{}: {}", words, file);
}

/// Of a project that has columns for it.
struct RecordProfiles::Rows {
    explicit Rows(SQLite::Database &project)
        : file(project,
               fmt::format("SELECT {}, FilePath FROM SourceFiles WHERE SourceFile_ID = ?",
                           hasOrigins(project) ? "Browser, Profile, Person" : "NULL, NULL, NULL")),
          record(project, "SELECT SourceFile_ID FROM URLs WHERE URL_ID = ?") {}

    SQLite::Statement file;
    SQLite::Statement record;
};

RecordProfiles::RecordProfiles(SQLite::Database &project) : m_project(project) {}

RecordProfiles::~RecordProfiles() = default;

const FileProfile &RecordProfiles::of(std::int64_t source) {
    const auto known = m_known.find(source);
    if (known != m_known.end())
        return known->second;
    if (!m_rows)
        m_rows = std::make_unique<Rows>(m_project);
    FileProfile &found = m_known[source];
    SQLite::Statement &row = m_rows->file;
    row.reset();
    row.bind(1, source);
    if (row.executeStep()) {
        found.browser = row.getColumn(0).getString();
        found.profile = row.getColumn(1).getString();
        found.person = row.getColumn(2).getString();
        found.file = row.getColumn(3).getString();
        found.place = placeOf(found);
    }
    row.reset();
    return found;
}

std::string RecordProfiles::textOf(UrlId record) {
    if (record == UrlId::none)
        return {};
    if (!m_rows)
        m_rows = std::make_unique<Rows>(m_project);
    SQLite::Statement &row = m_rows->record;
    row.reset();
    bindId(row, 1, record);
    const std::int64_t source = row.executeStep() ? row.getColumn(0).getInt64() : 0;
    row.reset();
    return of(source).text();
}

bool RecordProfiles::isSame(std::int64_t one, std::int64_t other) {
    if (one == other)
        return true;
    const FileProfile &first = of(one); // stays where it is
    const FileProfile &second = of(other);
    return first.isKnown() && first.browser == second.browser && first.profile == second.profile &&
           first.person == second.person && first.place == second.place;
}

} // namespace nv
