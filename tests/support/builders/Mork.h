#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv::test {

/// A history.dat of Firefox 2 as the browser lays it out: values in dictionaries, rows that name
/// them. Every piece can be written by hand instead.
class MorkHistory {
  public:
    explicit MorkHistory(std::string lineEnd = "\r\n") : m_lineEnd(std::move(lineEnd)) {}

    struct Page {
        std::string url{};
        std::string lastVisit{}; ///< microseconds since 1970 in digits
        std::string firstVisit{};
        std::string host{};
        std::string title{};
        std::string referrer{};
        std::string visitCount{}; ///< empty for a page that was visited once
        bool typed = false;
        bool hidden = false;
        std::string rowId{}; ///< the next free one when empty
    };

    /// The texts before the dictionaries, as they are to stand in the file.
    MorkHistory &firstLine(std::string text);
    MorkHistory &columnMark(std::string text);

    MorkHistory &add(const Page &page);
    /// Adds a value of the dictionary and returns its id.
    std::string value(std::string_view text);
    /// Adds a value with an id of the caller's, its text not escaped.
    MorkHistory &rawValue(std::string_view id, std::string_view text);
    /// Adds a line among the rows.
    MorkHistory &rawRow(std::string_view text);
    /// Adds text after the table.
    MorkHistory &behindTable(std::string_view text);
    /// Begins a change of the file, as the browser appends it: pages that are added now stand in a
    /// group with a dictionary of its own.
    MorkHistory &beginGroup();

    std::string bytes() const;

  private:
    struct Part {
        std::vector<std::string> values;
        std::vector<std::string> rows;
    };

    std::string line(std::string_view text) const { return std::string(text) + m_lineEnd; }
    std::string dictionary(const Part &part) const;
    Part &last() { return m_parts.back(); }

    std::string m_lineEnd;
    std::string m_firstLine = "// <!-- <mdb:mork:z v=\"1.4\"/> -->";
    std::string m_columnMark = "< <(a=c)> // (f=iso-8859-1)";
    std::vector<Part> m_parts{1};
    std::string m_behind;
    unsigned m_nextValue = 0x81;
    unsigned m_nextRow = 2;
};

/// Microseconds since 1970, as the file holds them.
std::string morkTime(std::int64_t unixSeconds);

/// Three pages: one visited once, one typed and visited often, one hidden.
void addExamplePages(MorkHistory &history);

} // namespace nv::test
