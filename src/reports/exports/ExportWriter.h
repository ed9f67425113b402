#pragma once

#include "reports/exports/Export.h"
#include "views/table/UrlTable.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nv {

/// A column that takes part.
struct ExportColumn {
    std::string header;
    std::string key;
    std::optional<UrlColumn> column; ///< nothing for the row's number
    int widthTwips = 0;
};
/// What csv and jsonl call it. Classic csv has headings, and the key where there is none.
std::string nameOf(const ExportColumn &column, const Export &job);

/// Cells of the table without the cut that the grid makes of long ones.
class ExportCells {
  public:
    explicit ExportCells(UrlTable &table) : m_table(table), m_facts(table.factReader()) {}

    /// As the grid shows it: one line, with stand-ins for characters that would deceive. A tick is
    /// "True" or "False".
    std::string shown(std::size_t place, const ExportColumn &column);
    /// As programs want it: texts as they are stored but in valid UTF-8, dates in ISO 8601.
    Cell machine(std::size_t place, const ExportColumn &column);
    Cell machine(std::size_t place, UrlColumn column);
    Date actionDate(std::size_t place);
    FactList facts(std::size_t place) { return m_table.facts(place, m_facts); }
    std::vector<RowTag> tags(std::size_t place) { return m_table.tagsOf(place); }
    bool isRead(std::size_t place) { return m_table.isRead(place); }
    UrlId idAt(std::size_t place) const { return m_table.idAt(place); }

  private:
    UrlTable &m_table;
    RecordFacts m_facts;
};

/// One form of an export. Rows come in their order; each of the three throws StorageFailure.
class ExportWriter {
  public:
    virtual ~ExportWriter() = default;
    virtual void begin(const std::vector<ExportColumn> &columns) = 0;
    /// `place` is the 0-based row of the table.
    virtual void row(ExportCells &cells, std::size_t place) = 0;
    /// The file is in its place after it.
    virtual void finish() = 0;
};

std::unique_ptr<ExportWriter> makeDelimitedWriter(Export &job);
std::unique_ptr<ExportWriter> makeCsvWriter(Export &job);
std::unique_ptr<ExportWriter> makeJsonLinesWriter(Export &job);
/// `scratch` is an existing folder for the sheet on its way.
std::unique_ptr<ExportWriter> makeXlsxWriter(Export &job, const std::filesystem::path &scratch);
/// Of `contents` of the job.
std::unique_ptr<ExportWriter> makeWarcWriter(Export &job);
/// Of both forms, as the job says.
std::unique_ptr<ExportWriter> makeTimesketchWriter(Export &job);
std::unique_ptr<ExportWriter> makeBodyWriter(Export &job);
std::unique_ptr<ExportWriter> makeL2tWriter(Export &job);
/// Pictures come from `contents` of the job; without it only addresses tell places.
std::unique_ptr<ExportWriter> makeKmlWriter(Export &job);

/// Programs of spreadsheets take such a text for a formula.
bool looksLikeFormula(std::string_view text);

} // namespace nv
