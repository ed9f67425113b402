#include "reports/exports/ExportWriter.h"
#include "reports/warc/WarcWriter.h"

#include <stdexcept>

namespace nv {

namespace {

/// Its rows are contents, and no cells of the table.
class WarcExport final : public ExportWriter {
  public:
    explicit WarcExport(Export &job) : m_job(job), m_warc(job.outputFilePath, sourceOf(job)) {}

    void begin(const std::vector<ExportColumn> &) override {}
    void row(ExportCells &cells, std::size_t place) override {
        const UrlId id = cells.idAt(place);
        if (m_warc.add(id) == WarcAdded::unread)
            noteUnread(m_job.counts.unread, id);
    }
    void finish() override {
        m_warc.finish();
        m_job.counts.archived = m_warc.counts();
        m_job.counts.rows = m_job.counts.archived.contents;
    }

  private:
    static const WarcSource &sourceOf(const Export &job) {
        if (!job.contents)
            throw std::logic_error("an export of contents was not told where they are");
        return *job.contents;
    }

    Export &m_job;
    WarcWriter m_warc;
};

} // namespace

std::unique_ptr<ExportWriter> makeWarcWriter(Export &job) {
    return std::make_unique<WarcExport>(job);
}

} // namespace nv
