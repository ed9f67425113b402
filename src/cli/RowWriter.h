#pragma once

#include "base/Cell.h"

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace nv::cli {

enum class Format { table, csv, tsv, jsonl };

/// Writes rows to a stream as they come. Nothing that stands in a cell can break the form: text for
/// people has its control characters replaced, so that evidence can't drive the terminal.
class RowWriter {
  public:
    virtual ~RowWriter() = default;
    virtual void row(const std::vector<Cell> &cells) = 0;
    /// Call after the last row.
    virtual void finish() {}
};

/// Writes the headings at once where the format has any.
std::unique_ptr<RowWriter> makeRowWriter(Format format, std::ostream &out,
                                         std::vector<std::string> headings);

/// One line for people, as displayText() has it, but bytes that are no UTF-8 are taken for
/// Windows-1252. What is longer than `columns` characters ends in an ellipsis; 0 leaves the length.
std::string printable(std::string_view text, std::size_t columns = 0);

/// The same for a text of several lines, which it keeps.
std::string printableLines(std::string_view text);

} // namespace nv::cli
