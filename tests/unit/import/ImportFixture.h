#pragma once

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "import/ImportRun.h"
#include "support/TestProject.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>

namespace nv::test {

/// What parts the records of a file that the reader of lines takes: any byte but this one may stand
/// in a record.
inline constexpr char kRecordEnd = '\x1E';

inline bool saveUrl(ReadContext &ctx, std::string_view url) {
    URLClass record;
    record.URL = url;
    record.cacheType = "Unallocated";
    ctx.sink.save(record);
    return ctx.task.advance(0.5);
}

inline ReadResult readLines(ReadContext &ctx) {
    const Bytes bytes = readWhole(ctx.file.FullPath);
    for (const std::string_view line : split(ByteView(bytes).raw(), kRecordEnd))
        if (!saveUrl(ctx, line))
            return {ReadState::cancelled, "cancelled", 0, {}};
    return {};
}

inline ReadResult throwing(ReadContext &ctx) {
    saveUrl(ctx, "http://saved/before");
    throw std::runtime_error("the reader broke down");
}

inline ReadResult cutShort(ReadContext &ctx) {
    saveUrl(ctx, "http://saved/before");
    ctx.file.HistoryFileType = HistoryFileType::ieDaily;
    return {ReadState::cutShort, "chain leaves the file", 3, {{"no signature", 2}, {"empty", 5}}};
}

inline ReadResult failing(ReadContext &) {
    return {ReadState::failed, "not of this format", 0, {}};
}

inline ReadResult fillingTheDisk(ReadContext &ctx) {
    saveUrl(ctx, "http://saved/before");
    throw StorageFailure("database or disk is full");
}

inline ReadResult usingScratch(ReadContext &ctx) {
    if (!std::filesystem::is_empty(ctx.scratch))
        throw std::runtime_error("the scratch folder holds something");
    writeWhole(ctx.scratch / "body", "bytes");
    saveUrl(ctx, textOf(ctx.scratch));
    return {};
}

constexpr Reader madeUp(HistoryFileType type, std::string_view key,
                        ReadResult (*read)(ReadContext &)) {
    return {.type = type, .key = key, .kind = "", .read = read};
}

inline constexpr std::array<Reader, 7> kMadeUp = {
    madeUp(HistoryFileType::norvelaneNVD, "lines", readLines),
    madeUp(HistoryFileType::simpleHTML, "throwing", throwing),
    madeUp(HistoryFileType::netAnalysis, "cut-short", cutShort),
    madeUp(HistoryFileType::safariHistory, "failing", failing),
    madeUp(HistoryFileType::safariCache, "full-disk", fillingTheDisk),
    madeUp(HistoryFileType::csv, "scratch", usingScratch),
    madeUp(HistoryFileType::operaCache, "later", nullptr),
};

/// Readers made for the tests: nvd reads a record a line, html throws behind its first record,
/// netAnalysis is cut short, safariHistory fails, safariCache finds the disk full, csv leaves a
/// file in its scratch folder and saves its path, operaCache has no reader yet.
inline const Reader *madeUpReader(HistoryFileType type) {
    for (const Reader &reader : kMadeUp)
        if (reader.type == type)
            return &reader;
    return nullptr;
}

/// A project and an import into it.
class ImportFixture : public testing::Test {
  protected:
    /// Writes a file and puts it into the list.
    HistoryFile &add(HistoryFileType type, const std::string &name, const std::string &bytes);
    ImportSummary import(TaskMonitor &task, const Reader *(*readers)(HistoryFileType));
    ImportSummary import(TaskMonitor &task) { return import(task, madeUpReader); }
    ImportSummary import() {
        Unwatched task;
        return import(task);
    }

    std::int64_t rows() { return project.number("SELECT Count(*) FROM URLs"); }

    TestProject project;
    ImportClass job;
    std::filesystem::path scratch = project.folder.path();
};

inline HistoryFile &ImportFixture::add(HistoryFileType type, const std::string &name,
                                       const std::string &bytes) {
    HistoryFile file;
    file.FullPath = project.folder.write(name, bytes);
    file.FileName = name;
    file.FileParentPath = textOf(file.FullPath.parent_path());
    file.FileSize = bytes.size();
    file.MD5Hash = md5Hex(bytes);
    file.HistoryFileType = type;
    return job.HistoryFiles.Add(std::move(file));
}

inline ImportSummary ImportFixture::import(TaskMonitor &task,
                                           const Reader *(*readers)(HistoryFileType)) {
    const Evidence evidence(project.folder.path());
    const ImportRun run{project.connection(),
                        project.projectZone(),
                        evidence,
                        project.clock,
                        project.log,
                        task,
                        scratch,
                        readers};
    return runImport(run, job);
}

} // namespace nv::test
