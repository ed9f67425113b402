#pragma once

#include "app/jobs/RecordTools.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace nv {

/// A record with its cached content as a plain file.
struct RecordContent {
    UrlRecord record;
    std::optional<std::filesystem::path> file;
    std::string reason; ///< why there is none, in plain words
};

/// Fetches the content into the scratch folder when it doesn't lie by itself. Nothing when the
/// project has no such record; a failure is logged.
std::optional<RecordContent> contentOfRecord(RecordTools &tools, UrlId url);

/// Why a record has no content, with the place where it was to be found.
std::string missingContent(const UrlRecord &record);

/// Where the record itself stands in the evidence.
struct SourcePlace {
    std::filesystem::path file;
    std::uint64_t offset = 0; ///< 0 too where the format's records have none
};

/// Neither file nor folder that the record was read from lies where the project looks for it, as
/// when the evidence was moved.
bool isSourceGone(const UrlRecord &record);
/// Why sourceOfRecord() gave nothing.
std::string missingSource(const UrlRecord &record);

/// The artefact file that the record was read from; nothing when it isn't there any more, is a
/// folder, or stands for others in which the record's offset lies.
std::optional<SourcePlace> sourceOfRecord(const UrlRecord &record);

} // namespace nv
