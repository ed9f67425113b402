#include "readers/results/LooseFile.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/ContentProbe.h"
#include "readers/WholeFile.h"
#include "readers/ie/CachedFile.h"
#include "readers/ie/Kinds.h"
#include "readers/results/Kinds.h"
#include "readers/sqlite/HistoryRow.h"

#include <cstdint>
#include <filesystem>

namespace nv {

namespace {

namespace fs = std::filesystem;

/// The record has no URL and names no history file: nothing is known of where the file came from.
URLClass recordOf(const ReadContext &ctx) {
    const fs::path &file = ctx.file.FullPath;
    const FileFacts facts = ctx.evidence.factsOf(file);
    URLClass record;
    record.SourceFile_ID = ctx.file.SourceFile_ID;
    record.Category = "HTML";
    record.CacheFolderName = textOf(file.parent_path().filename());
    record.CacheFileCreatedGMTDOS = facts.created;
    record.CacheFileLastAccessed = facts.lastAccessed;
    record.CacheFileName = textOf(file.filename());
    record.CacheFileNameDecoded = percentDecode(record.CacheFileName);
    record.MapFileOffset = 1;
    record.RootPath = ctx.evidence.rootOf(file);
    record.CacheFileRelativePath = ctx.evidence.relativeOf(file);
    record.CacheFileSize = static_cast<std::int64_t>(facts.size);
    record.RecordSize = facts.size;
    record.IsWebPage = true;
    record.Visits = kVisitsUnknown;
    return record;
}

/// Where the two formats differ.
struct Kind {
    std::string_view procedure;
    std::string_view action;
    std::string_view cacheType;
    bool exists;
};

ReadResult readLooseFile(ReadContext &ctx, const Kind &kind) {
    return trapped(
        ctx.log, Severity::Warning, kind.procedure, kContactSupport, unreadable(ctx), [&] {
            URLClass record = recordOf(ctx);
            record.WebpageTitle = ctx.content.facts(ctx.evidence, ctx.file.FullPath).title;
            record.Action = kind.action;
            record.cacheType = kind.cacheType;
            record.CacheFileExists = kind.exists;
            ctx.sink.save(record);
            return ReadResult();
        });
}

} // namespace

ReadResult ParseSimpleHTML(ReadContext &ctx) {
    return readLooseFile(ctx,
                         {"ParserClass.ParseSimpleHTML()", "Not Known", kSimpleHtml.word, true});
}

ReadResult ParseCSVFile(ReadContext &ctx) {
    return readLooseFile(ctx, {"ParserClass.ParseCSVFile()", "", kUnallocated.word, false});
}

} // namespace nv
