#include "import/ChoiceTable.h"

#include "import/ImportClass.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

using Options = std::vector<const SourceOption *>;

constexpr std::array kColumns = {RecordGroup::cache, RecordGroup::history, RecordGroup::cookies,
                                 RecordGroup::bookmarks, RecordGroup::other};

const SourceOption *find(const Options &options, const BrowserFamily *family, RecordGroup group) {
    const auto found = std::ranges::find_if(options, [&](const SourceOption *option) {
        return option->family == family && option->group == group;
    });
    return found == options.end() ? nullptr : *found;
}

std::vector<RecordGroup> columnsOf(const Options &options) {
    std::vector<RecordGroup> columns;
    std::ranges::copy_if(kColumns, std::back_inserter(columns), [&options](RecordGroup group) {
        return std::ranges::any_of(options, [group](const SourceOption *option) {
            return option->family && option->group == group;
        });
    });
    return columns;
}

} // namespace

ChoiceTable choiceTable(Formats formats) {
    const Options options = importOptions(formats);
    ChoiceTable table{columnsOf(options), {}, {}};
    for (const BrowserFamily *family : browserFamilies()) {
        ChoiceTable::Row row{family, {}};
        for (const RecordGroup group : table.columns)
            row.boxes.push_back(find(options, family, group));
        if (std::ranges::any_of(row.boxes, [](const SourceOption *box) { return box != nullptr; }))
            table.rows.push_back(std::move(row));
    }
    std::ranges::copy_if(options, std::back_inserter(table.others),
                         [](const SourceOption *option) { return !option->family; });
    std::ranges::stable_sort(table.others, {}, &SourceOption::place);
    return table;
}

} // namespace nv
