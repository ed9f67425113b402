#include "db/records/RecordStore.h"
#include "db/sql/WriteBatch.h"
#include "import/ImportSink.h"
#include "support/TestProject.h"

#include <benchmark/benchmark.h>

namespace nv {
namespace {

/// A record of a cache index of usual size.
UrlRecord cacheRecord(std::int64_t n) {
    UrlRecord record;
    record.URLRawValue = "http://www.host" + std::to_string(n % 997) +
                         ".example/folder/page.php?id=" + std::to_string(n * 7919 % 1000003);
    record.URL = record.URLRawValue;
    record.URLProtocol = "http";
    record.host = "www.host.example";
    record.User = "user";
    record.HashedURL = "0123456789abcdef0123456789abcdef";
    record.cacheType = "IE Cache";
    record.Action = "Cached";
    record.ActionDateUTC = Date::fromDays(40000 + static_cast<double>(n % 3000) / 7);
    record.OtherDate = record.ActionDateUTC;
    record.OtherDateMeaning = "Last Modified";
    record.HistoryFilePath = "/evidence/user/Temporary Internet Files/Content.IE5/index.dat";
    record.HistoryVersion = "5.2";
    record.RootPath = "/evidence/";
    record.CacheFolderName = "ABCDEFGH";
    record.CacheFileName = "page[1].htm";
    record.CacheFileExt = "htm";
    record.CacheFileRelativePath = "user/Temporary Internet Files/Content.IE5/ABCDEFGH/page[1].htm";
    record.MetaData = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 14520\r\n";
    record.MIMEType = "text/html";
    return record;
}

/// Rows a second into a project that grows, in batches as an import writes them.
void saveRecord(benchmark::State &state) {
    test::TestProject project;
    RecordStore store = project.store();
    WriteBatch batch(project.connection());
    std::int64_t n = 0;
    for (auto _ : state) {
        UrlRecord record = cacheRecord(++n);
        store.saveRecord(record, project.file);
        batch.written();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(saveRecord)->Iterations(400'000)->Unit(benchmark::kMicrosecond);

/// The same with the facts of a visit.
void saveRecordWithFacts(benchmark::State &state) {
    test::TestProject project;
    RecordStore store = project.store();
    WriteBatch batch(project.connection());
    std::int64_t n = 0;
    for (auto _ : state) {
        UrlRecord record = cacheRecord(++n);
        record.facts.add("source_table", "visits");
        record.facts.add("source_rowid", n);
        record.facts.add("visit_id", n);
        record.facts.add("from_visit_id", n - 1);
        record.facts.add("transition", "typed, from the address bar", 805306369);
        record.facts.add("visit_duration", static_cast<double>(n % 100), n % 100 * 1'000'000);
        record.facts.add("visit_source", "browsed");
        record.facts.add("typed_count", n % 7);
        store.saveRecord(record, project.file);
        batch.written();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(saveRecordWithFacts)->Iterations(200'000)->Unit(benchmark::kMicrosecond);

/// The same with everything that a record of an import undergoes.
void saveThroughTheSink(benchmark::State &state) {
    test::TestProject project;
    RecordStore store = project.store();
    WriteBatch batch(project.connection());
    const Evidence evidence("/evidence");
    ContentProbe content;
    const Extraction extraction{evidence, project.folder.path(), project.log};
    ArtefactResult result;
    const ContentLooks looks = {Signatures::verify, false, false};
    ImportSink sink(store, looks, extraction, content, batch, project.file, result);
    std::int64_t n = 0;
    for (auto _ : state) {
        UrlRecord record = cacheRecord(++n);
        sink.save(record);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(saveThroughTheSink)->Iterations(400'000)->Unit(benchmark::kMicrosecond);

/// Reading rows back in an order as a table that is scrolled asks for them.
void getUrl(benchmark::State &state) {
    constexpr std::int64_t kRows = 50'000;
    test::TestProject project;
    RecordStore store = project.store();
    {
        WriteBatch batch(project.connection());
        for (std::int64_t n = 0; n < kRows; ++n) {
            UrlRecord record = cacheRecord(n);
            store.saveRecord(record, project.file);
        }
    }
    std::int64_t n = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(store.getURL(UrlId{n++ * 7919 % kRows + 1}));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(getUrl)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace nv
