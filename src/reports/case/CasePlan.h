#pragma once

#include "readers/RecordKind.h"
#include "reports/case/CaseFrame.h"
#include "reports/case/CaseTagRows.h"
#include "reports/case/Redactor.h"
#include "views/rows/IdLoader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace nv {

class ReportWriter;

/// The kinds in the order of their tables.
inline constexpr std::array<RecordGroup, 5> kCaseGroups = {
    RecordGroup::history, RecordGroup::cache, RecordGroup::cookies, RecordGroup::bookmarks,
    RecordGroup::other};

/// What is known of a row before it is written: a byte each, so that of all rows only these and
/// their keys are held.
enum RowMark : std::uint8_t {
    groupMask = 0x07,
    tickedMark = 0x08,
    leftOutMark = 0x10,
    brokenMark = 0x20,
    taggedMark = 0x40, ///< by a tag with a name
};

/// Which rows stand where in the report of a case.
struct CasePlan {
    /// The report must outlive it.
    CasePlan(const ReportWriter &report, CaseTagRows tagRows)
        : tags(std::move(tagRows)), m_report(report) {}

    RowIds ids;
    std::vector<std::uint8_t> marks; ///< by the places of the ids
    CaseTagRows tags;

    bool isLeftOut(std::size_t place) const { return (marks[place] & leftOutMark) != 0; }
    bool isOf(std::size_t place, RecordGroup group) const {
        return !isLeftOut(place) && (marks[place] & groupMask) == static_cast<int>(group);
    }
    bool isOfTag(std::size_t place, std::size_t tag) const {
        return !isLeftOut(place) && tags.has(tag, ids[place]);
    }
    bool hasCard(std::size_t place) const;
    /// The rows that the appendix tells.
    RowIds explained() const;
    /// All parts: cards, kinds, tags, the appendix. Those without rows have no pages.
    CaseSections sections(Redactor &redactor) const;

  private:
    void addTags(CaseSections &sections, Redactor &redactor) const;

    const ReportWriter &m_report;
};

} // namespace nv
