// The lines of norvelane-jet become records: any text may stand in them, as evidence decides it.
//   input = lines, each ended by a line break, the first for the table's head

#include "readers/ContentProbe.h"
#include "readers/results/NetAnalysisRow.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

namespace {

struct StillClock final : nv::Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return std::chrono::minutes(90); }
};

struct CountingSink final : nv::RecordSink {
    void save(nv::URLClass &record) override { bytes += record.URL.size() + record.Status.size(); }
    std::uint64_t bytes = 0;
};

struct CountingLog final : nv::FailureLog {
    void write(const nv::Failure &) override { ++entries; }
    std::uint64_t entries = 0;
};

void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    static const nv::Evidence evidence("/nowhere/evidence");
    nv::HistoryFile file;
    file.FullPath = "/nowhere/evidence/one.net";
    nv::ContentProbe content;
    const StillClock clock;
    CountingSink sink;
    CountingLog log;
    nv::Unwatched task;
    nv::ReadContext context{file, evidence, content, clock, {}, sink, log, task};
    const auto columns = nv::kNetAnalysisColumns.size();
    nv::JetLines lines(columns,
                       {[&](const nv::JetHead &head) { require(head.kinds.size() == columns); },
                        [&](const nv::JetRow &row) {
                            if (!row.damage.empty())
                                return true;
                            nv::URLClass record = nv::netAnalysisRecord(context, row, "C:\\Cache");
                            require(record.RunTimeContentPath.empty());
                            sink.save(record);
                            return true;
                        }});
    std::size_t begin = 0;
    for (std::size_t end = input.find('\n'); end != std::string_view::npos;
         end = input.find('\n', begin)) {
        if (!lines.take(input.substr(begin, end - begin))) {
            require(!lines.failure().empty());
            break;
        }
        begin = end + 1;
    }
    return 0;
}
