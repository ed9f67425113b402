#pragma once

#include <nlohmann/json.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace nv::cli {

/// A cell: null, boolean, number or text. Text is UTF-8 and may hold anything that evidence holds.
using Cell = nlohmann::ordered_json;

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

/// A cell as a text, True and False for booleans, nothing for null.
std::string plainText(const Cell &cell);

/// The JSON text of a cell; bytes that are no UTF-8 are replaced, never thrown at.
std::string jsonText(const Cell &cell, int indent = -1);

} // namespace nv::cli
