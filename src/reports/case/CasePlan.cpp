#include "reports/case/CasePlan.h"

#include "base/Text.h"
#include "reports/case/CaseCards.h"
#include "reports/case/CaseOrigins.h"
#include "reports/case/CaseTables.h"
#include "reports/report/ReportWriter.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

CaseSection cardSection(CaseCards chosen) {
    CaseSection cards;
    cards.part = CaseSection::Part::cards;
    cards.title = chosen == CaseCards::ticked   ? "Ticked"
                  : chosen == CaseCards::tagged ? "Ticked or tagged"
                                                : "All rows";
    cards.name = chosen == CaseCards::ticked   ? "ticked"
                 : chosen == CaseCards::tagged ? "tagged"
                                               : "cards";
    cards.rowsAPage = kCaseCardsAPage;
    return cards;
}

} // namespace

bool CasePlan::hasCard(std::size_t place) const {
    if (isLeftOut(place))
        return false;
    switch (m_report.caseOptions.cards) {
    case CaseCards::none:
        return false;
    case CaseCards::all:
        return true;
    case CaseCards::ticked:
        return (marks[place] & tickedMark) != 0;
    case CaseCards::tagged:
        return (marks[place] & (tickedMark | taggedMark)) != 0;
    }
    return false;
}

/// Where cards are of the tick alone, so is the appendix.
RowIds CasePlan::explained() const {
    const int wanted = m_report.caseOptions.cards == CaseCards::ticked
                           ? static_cast<int>(tickedMark)
                           : tickedMark | taggedMark;
    RowIds told;
    if (!m_report.includeOrigins)
        return told;
    for (std::size_t place = 0; place < ids.size(); ++place)
        if (!isLeftOut(place) && (marks[place] & wanted) != 0)
            told.push_back(ids[place]);
    return told;
}

CaseSections CasePlan::sections(Redactor &redactor) const {
    CaseSections sections;
    CaseSection cards = cardSection(m_report.caseOptions.cards);
    for (std::size_t place = 0; place < ids.size(); ++place)
        cards.rows += hasCard(place) ? 1 : 0;
    sections.push_back(std::move(cards));
    for (const RecordGroup group : kCaseGroups) {
        CaseSection section;
        section.title = groupWord(group);
        section.name = toLower(section.title);
        section.rowsAPage = kCaseRowsAPage;
        for (std::size_t place = 0; place < ids.size(); ++place)
            section.rows += isOf(place, group) ? 1 : 0;
        sections.push_back(std::move(section));
    }
    addTags(sections, redactor);
    CaseSection origins;
    origins.part = CaseSection::Part::appendix;
    origins.title = "How each value is known";
    origins.name = "origins";
    origins.rowsAPage = kCaseOriginsAPage;
    origins.rows = std::min(explained().size(), kMostCaseOrigins);
    sections.push_back(std::move(origins));
    return sections;
}

/// A tag's name may be what is redacted, so files are called by its place.
void CasePlan::addTags(CaseSections &sections, Redactor &redactor) const {
    for (std::size_t tag = 0; tag < tags.tags().size(); ++tag) {
        const NamedTag &named = tags.tags()[tag].tag;
        CaseSection section;
        section.part = CaseSection::Part::tag;
        section.title = redactor.text(named.name);
        section.name = fmt::format("tag{}", tag + 1);
        section.color = named.color;
        if (m_report.caseOptions.tagNotes)
            section.note = redactor.text(named.note);
        section.rowsAPage = kCaseRowsAPage;
        for (std::size_t place = 0; place < ids.size(); ++place)
            section.rows += isOfTag(place, tag) ? 1 : 0;
        sections.push_back(std::move(section));
    }
}

} // namespace nv
