#include "rebuild/TemplateList.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "rebuild/TemplateFile.h"
#include "rebuild/Templates.h"

#include <cerrno>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// A template is read whole: no page with its pictures is larger.
constexpr std::uintmax_t kLargest = std::uintmax_t{1} << 30;

TemplateRow rowOf(const fs::path &file) {
    TemplateRow row;
    row.file = file;
    std::error_code gone; // between listing and looking
    const std::uintmax_t size = fs::file_size(file, gone);
    row.bytes = gone ? 0 : size;
    const auto changed = fs::last_write_time(file, gone);
    if (!gone)
        row.changed = std::chrono::time_point_cast<Clock::TimePoint::duration>(
            std::chrono::file_clock::to_sys(changed));
    return row;
}

void readIndex(TemplateRow &row) {
    if (row.bytes > kLargest)
        throw FileFailure("can't read the template", row.file, EFBIG);
    const Bytes bytes = readWhole(row.file);
    const PageTemplate made = readTemplate(ByteView(bytes));
    row.webpageTitle = made.webpageTitle;
    row.method = made.method;
    row.files = made.records.count();
}

} // namespace

std::vector<TemplateRow> listTemplates(const fs::path &folder, FailureLog &log) {
    std::vector<TemplateRow> rows;
    for (const fs::path &file : templatesIn(folder)) {
        rows.push_back(rowOf(file));
        trapped(log, Severity::Warning, "MainForm.LoadTemplates()", kContactSupport,
                [&row = rows.back()] { readIndex(row); });
    }
    return rows;
}

} // namespace nv
