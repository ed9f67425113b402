#pragma once

#include "reports/exports/ExportWriter.h"

namespace nv {

/// What forms of text share: lines go to the job, which hands them on to the file.
class TextExport : public ExportWriter {
  public:
    explicit TextExport(Export &job) : m_job(job) {}

    void begin(const std::vector<ExportColumn> &columns) override {
        m_columns = columns;
        m_job.exportText = heading();
    }
    void row(ExportCells &cells, std::size_t place) override {
        appendRow(cells, place);
        m_job.drain();
    }
    void finish() override {
        m_job.exportText += ending();
        m_job.exportToFile();
    }

  protected:
    virtual std::string heading() = 0;
    virtual void appendRow(ExportCells &cells, std::size_t place) = 0;
    virtual std::string ending() { return {}; }

    const std::vector<ExportColumn> &columns() const { return m_columns; }
    Export &job() { return m_job; }
    std::string &text() { return m_job.exportText; }

  private:
    Export &m_job;
    std::vector<ExportColumn> m_columns;
};

} // namespace nv
