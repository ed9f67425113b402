#pragma once

#include "readers/Registry.h"
#include "readers/SourceOption.h"

#include <string_view>
#include <vector>

namespace nv {

/// What the wizard's page offers, by the options of the formats: a row a family of browsers, a
/// column a group of records, and beside them what belongs to no family.
struct ChoiceTable {
    struct Row {
        const BrowserFamily *family;
        std::vector<const SourceOption *> boxes; ///< by column; null where there is none
    };
    std::vector<RecordGroup> columns;
    std::vector<Row> rows;
    std::vector<const SourceOption *> others;
};

ChoiceTable choiceTable(Formats formats = registry());

} // namespace nv
