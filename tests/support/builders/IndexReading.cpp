#include "support/builders/IndexReading.h"

#include "base/Files.h"

namespace nv::test {

IndexReading::IndexReading(HistoryFileType type, RecordReader reader) : m_reader(reader) {
    file.historyFileType = type;
    file.sourceFileID = SourceFileId{7};
}

void IndexReading::name(const std::filesystem::path &path) {
    file.fullPath = path;
    file.fileName = textOf(path.filename());
    file.fileParentPath = textOf(path.parent_path());
    file.fileExt = "dat";
}

IndexReading &IndexReading::readBytes(const std::string &bytes, const std::filesystem::path &path) {
    Unwatched task;
    return readBytes(bytes, task, path);
}

IndexReading &IndexReading::readBytes(const std::string &bytes, TaskMonitor &task,
                                      const std::filesystem::path &path) {
    name(path);
    const Evidence evidence("");
    ContentProbe content;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task, deleted, classicOnly};
    result = m_reader.bytes(ctx, viewOf(bytes));
    return *this;
}

IndexReading &IndexReading::readFile(const std::filesystem::path &path,
                                     const std::filesystem::path &base, TaskMonitor &task) {
    name(path);
    const Evidence evidence(base);
    ContentProbe content;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task, deleted, classicOnly};
    result = m_reader.file(ctx);
    return *this;
}

IndexReading &IndexReading::readFile(const std::filesystem::path &path,
                                     const std::filesystem::path &base) {
    Unwatched task;
    return readFile(path, base, task);
}

} // namespace nv::test
