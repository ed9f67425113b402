#pragma once

#include "reports/report/ReportContext.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A part of a case report that the side bar leads to: cards, the rows of a kind or of a tag, or
/// the appendix.
struct CaseSection {
    enum class Part : std::uint8_t { cards, kind, tag, appendix };
    Part part = Part::kind;
    std::string title;
    std::string name;  ///< of its files: "history" makes "history-1.htm", "history.csv"
    std::string color; ///< of a tag, "#rrggbb"
    std::string note;  ///< what a tag is for, as far as the report tells it
    std::uint64_t rows = 0;
    std::size_t rowsAPage = 1;

    std::size_t pages() const { return (rows + rowsAPage - 1) / rowsAPage; }
    std::string page(std::size_t number) const; ///< from 1
    std::string list() const { return name + ".csv"; }
};
using CaseSections = std::vector<CaseSection>;

/// What stands around the content of each page.
struct CaseFrame {
    std::string title; ///< of the report; plain text
    std::string version;
    CaseSections sections;

    /// `page` is the file's name; `heading` is plain text.
    void writeHead(std::ostream &file, std::string_view page, std::string_view heading) const;
    void writeTail(std::ostream &file) const;
    /// Links to the pages before and after, in a section of several.
    std::string pager(const CaseSection &section, std::size_t number) const;
};

/// The line that searches in the page; hidden until the page's script is there.
std::string_view findLine();

inline constexpr std::string_view kCaseIndex = "index.htm";

} // namespace nv
