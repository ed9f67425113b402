// The lines of norvelane-jet become records: any text may stand in them, as evidence decides it.
//   input = lines, each ended by a line break, the first for the table's head

#include "fuzz/Reading.h"
#include "readers/results/NetAnalysisRow.h"

#include <cstdint>
#include <string>
#include <string_view>

using nv::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    static const nv::Evidence evidence("/nowhere/evidence");
    nv::fuzz::CountingSink sink;
    nv::fuzz::Reading reading("/nowhere/evidence/one.net", evidence, sink);
    const auto columns = nv::kNetAnalysisColumns.size();
    nv::JetLines lines(columns,
                       {[&](const nv::JetHead &head) { require(head.kinds.size() == columns); },
                        [&](const nv::JetRow &row) {
                            if (!row.damage.empty())
                                return true;
                            nv::UrlRecord record =
                                nv::netAnalysisRecord(reading.context, row, "C:\\Cache");
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
