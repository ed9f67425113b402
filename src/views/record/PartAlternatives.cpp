#include "views/record/PartAlternatives.h"

#include "base/Text.h"
#include "db/marks/PartChoices.h"
#include "db/sql/BindId.h"
#include "rebuild/exact/PartCandidates.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace nv {

namespace {

std::string withoutFragment(const std::string &address) {
    return address.substr(0, address.find('#'));
}

/// Collects records in the order in which they are to be offered, each once.
class Alternatives {
  public:
    Alternatives(const UrlRecord &page, SQLite::Database &project)
        : m_page(page), m_row(project, "SELECT URLs.URL, URLs.CacheType, URLs.ActionDateUTC, "
                                       "SourceFiles.FilePath FROM URLs LEFT JOIN SourceFiles ON "
                                       "SourceFiles.SourceFile_ID = URLs.SourceFile_ID "
                                       "WHERE URLs.URL_ID = ? AND URLs.CacheFileExists") {}

    void add(UrlId id, std::string_view rule) {
        const auto isIt = [id](const PartAlternative &one) { return one.id == id; };
        if (id == UrlId::none || std::ranges::any_of(m_found, isIt))
            return;
        m_row.reset();
        bindId(m_row, 1, id);
        if (m_row.executeStep())
            m_found.push_back(alternative(id, rule));
    }
    void add(const CandidateList &list) {
        for (const PartCandidate &candidate : list.best)
            if (candidate.hasBody)
                add(candidate.id, list.rule);
    }
    std::vector<PartAlternative> take() { return std::move(m_found); }

  private:
    PartAlternative alternative(UrlId id, std::string_view rule) {
        PartAlternative found;
        found.id = id;
        found.rule = rule;
        found.url = m_row.getColumn(0).getString();
        found.kind = m_row.getColumn(1).getString();
        const SQLite::Column date = m_row.getColumn(2);
        found.time = date.isFloat() || date.isInteger() ? Date::fromDays(date.getDouble()) : Date();
        found.file = m_row.getColumn(3).getString();
        if (found.time.has() && m_page.ActionDateUTC.has())
            found.seconds = found.time.unixSeconds() - m_page.ActionDateUTC.unixSeconds();
        return found;
    }

    const UrlRecord &m_page;
    SQLite::Statement m_row;
    std::vector<PartAlternative> m_found;
};

} // namespace

PartQuestion partQuestion(const UrlRecord &page, const PartNote &note, SQLite::Database &project) {
    PartQuestion question;
    question.page = page.URLID;
    question.reference = note.original;
    question.address = withoutFragment(note.address);
    const auto choices = PartChoices(project).of(page.URLID);
    if (const auto kept = choices.find(question.address); kept != choices.end())
        question.kept = kept->second;
    Alternatives alternatives(page, project);
    alternatives.add(note.part, note.rule);
    PartCandidates candidates(project, page);
    alternatives.add(candidates.of(note.address));
    alternatives.add(candidates.byHttps(note.address));
    alternatives.add(candidates.byLetters(note.address));
    alternatives.add(candidates.byOtherQuery(note.address));
    for (const std::int64_t id : note.candidates)
        alternatives.add(UrlId{id}, note.rule);
    question.alternatives = alternatives.take();
    return question;
}

std::string whyNoPart(UrlId id, SQLite::Database &project) {
    SQLite::Statement row(project, "SELECT CacheFileExists FROM URLs WHERE URL_ID = ?");
    bindId(row, 1, id);
    if (!row.executeStep())
        return fmt::format("The project has no record {}.", id);
    return row.getColumn(0).getInt() != 0 ? ""
                                          : fmt::format("Record {} has no cached content.", id);
}

bool isOfAnotherAddress(const PartNote &note) {
    return note.rule.ends_with(partrule::kOtherQuery) || note.rule.ends_with(partrule::kDecoded) ||
           note.rule.ends_with(partrule::kSameSet);
}

std::string timeApart(std::int64_t seconds) {
    struct Unit {
        std::uint64_t seconds;
        std::string_view name;
    };
    constexpr std::array<Unit, 4> kUnits = {{{86'400, "d"}, {3'600, "h"}, {60, "min"}, {1, "s"}}};
    if (seconds == 0)
        return "same second";
    const auto bits = static_cast<std::uint64_t>(seconds);
    std::uint64_t rest = seconds < 0 ? 0 - bits : bits;
    std::size_t at = 0;
    while (rest < kUnits.at(at).seconds)
        ++at;
    std::string text = fmt::format("{} {}", rest / kUnits.at(at).seconds, kUnits.at(at).name);
    rest %= kUnits.at(at).seconds;
    // One unit more says enough.
    if (++at < kUnits.size() && rest >= kUnits.at(at).seconds)
        text += fmt::format(" {} {}", rest / kUnits.at(at).seconds, kUnits.at(at).name);
    return text + (seconds < 0 ? " earlier" : " later");
}

} // namespace nv
