#pragma once

#include "reports/case/Redaction.h"

#include <cstdint>
#include <string>

namespace nv {

/// Which rows of a case report have a card of their own.
enum class CaseCards : std::uint8_t {
    ticked,
    all,
    none,
    tagged, ///< with the tick or a tag by name
};

/// What a case report is to hold beside its rows.
struct CaseOptions {
    CaseCards cards = CaseCards::ticked;
    bool timeline = true; ///< the picture of time and the hours of the day
    bool evidence = true; ///< the list of files with their hashes
    bool tagNotes = true; ///< what the examiner noted of tags, and of rows' tags
    RedactionRules redactions;
    /// Which rows were chosen, for people: "the rows of the query ...". Empty for all.
    std::string content;
};

} // namespace nv
