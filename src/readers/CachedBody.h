#pragma once

#include "base/FailureLog.h"
#include "db/records/UrlRecord.h"
#include "readers/Body.h"
#include "readers/Evidence.h"
#include "readers/Reader.h"

#include <filesystem>
#include <optional>
#include <string_view>

namespace nv {

/// What fetching bodies needs; all must outlive it.
struct Extraction {
    const Evidence &evidence;
    std::filesystem::path folder; ///< an existing folder of the program's own, for the body
    FailureLog &log;
    /// The type of the record's file where the caller knows it, as an import does. Otherwise the
    /// record's kind and file say how its body is fetched.
    HistoryFileType source = HistoryFileType::none;
    bool isAsStored = false; ///< bodies aren't unpacked
    /// By the classic rules alone: bodies of their caches are unpacked as those rules know it.
    bool classicOnly = false;
};

/// How a cache keeps what servers packed.
enum class Packing {
    /// Beyond what its headers name, gzip is known by its first bytes, and stays packed when it is
    /// damaged: earlier cases were counted so.
    classic,
    classicOnly, ///< the same without what its headers name, which changes categories and pictures
    byHeaders,
};

/// Unpacks the body of a record, and sets in the record what its first bytes say. bodyOf() does so
/// with what it fetches; a reader does that holds a body itself.
void settleBody(UrlRecord &record, Body &body, Packing packing, std::uint64_t inMemory,
                FailureLog &log);

/// The record's content: evidence is named where it lies; what is held in block files or tables is
/// fetched, up to `inMemory` bytes into memory, and otherwise into the folder of `ctx`, where
/// `RunTimeTempFilePath` says. Nothing when it is gone.
[[nodiscard]] std::optional<Body> bodyOf(UrlRecord &record, const Extraction &ctx,
                                         std::uint64_t inMemory);

/// The same as a plain file.
[[nodiscard]] std::optional<std::filesystem::path> contentOf(UrlRecord &record,
                                                             const Extraction &ctx);

} // namespace nv
