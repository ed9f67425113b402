#include "support/MacCacheReading.h"

#include "readers/ContentProbe.h"

namespace nv::test {

MacCacheReading &MacCacheReading::readBytes(const std::string &bytes, TaskMonitor &task) {
    file.fullPath = "/evidence/MS Preference Panels/Cache/cache.waf";
    file.sourceFileID = SourceFileId{7};
    const Evidence evidence("/evidence");
    ContentProbe content;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task, deleted};
    result = readMACIECache(ctx, viewOf(bytes));
    return *this;
}

MacCacheReading &MacCacheReading::readBytes(const std::string &bytes) {
    Unwatched task;
    return readBytes(bytes, task);
}

MacCacheReading &MacCacheReading::readFile(const std::filesystem::path &path) {
    file.fullPath = path;
    const Evidence evidence(path.parent_path());
    ContentProbe content;
    MemoryTask task;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task, deleted};
    result = parseMACIECache(ctx);
    return *this;
}

} // namespace nv::test
