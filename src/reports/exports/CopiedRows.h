#pragma once

#include "base/Cell.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv {

/// The forms in which rows go to the clipboard, beside lines that are divided by tabs.
enum class CopyForm : std::uint8_t { csv, markdown, json };

/// Makes one text of rows. Nothing that stands in a cell can break the form: CSV is quoted, and
/// what a spreadsheet would run gets an apostrophe before it; signs of Markdown are escaped, and
/// line breaks are blanks; JSON is a list of objects.
class CopiedRows {
  public:
    CopiedRows(CopyForm form, std::vector<std::string> headings);

    void add(const std::vector<Cell> &cells);
    /// The whole text. Nothing may be added after that.
    std::string take();

  private:
    CopyForm m_form;
    std::vector<std::string> m_headings;
    std::string m_text;
    bool m_hasRows = false;
};

} // namespace nv
