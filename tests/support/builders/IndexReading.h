#pragma once

#include "readers/ContentProbe.h"
#include "readers/ie/Cookies.h"
#include "readers/ie/Index.h"
#include "readers/results/HistEx.h"
#include "readers/results/Nvd.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <string>

namespace nv::test {

/// A reader of index records, of bytes in memory and of a file.
struct RecordReader {
    ReadResult (*bytes)(ReadContext &, ByteView);
    ReadResult (*file)(ReadContext &);
};
inline constexpr RecordReader kIndexReader = {readIEIndex, parseIECacheFile};
inline constexpr RecordReader kCookiesReader = {readIECookies, parseIECookies};
inline constexpr RecordReader kHistExReader = {readHistEx, parseHistExFile};
inline constexpr RecordReader kNvdReader = {readNvd, parseNorvelaneNVDFile};

/// One reading of an index, or of another file that holds its records, with all that it says.
struct IndexReading {
    HistoryFile file;
    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    ReadResult result;
    bool deleted = false;
    bool classicOnly = true;

    explicit IndexReading(HistoryFileType type = HistoryFileType::ieHistory,
                          RecordReader reader = kIndexReader);

    /// Reads bytes as a file of that path, which need not exist.
    IndexReading &readBytes(const std::string &bytes,
                            const std::filesystem::path &path = "/evidence/index.dat");
    IndexReading &readBytes(const std::string &bytes, TaskMonitor &task,
                            const std::filesystem::path &path = "/evidence/index.dat");
    /// Reads the file at `path`, with `base` as the base folder of the evidence.
    IndexReading &readFile(const std::filesystem::path &path, const std::filesystem::path &base,
                           TaskMonitor &task);
    IndexReading &readFile(const std::filesystem::path &path, const std::filesystem::path &base);
    const std::vector<UrlRecord> &records() const { return sink.records; }

  private:
    void name(const std::filesystem::path &path);

    RecordReader m_reader;
};

} // namespace nv::test
