#pragma once

#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// A line of the substitution log.
struct Substitution {
    std::int64_t tagURLID = 0; ///< 0 for a reference without a part
    std::string originalTag;
    std::string newTag;
};
/// The lines of `IngredientIDs`. Throws std::out_of_range for an id above 32,767 unless wide ids
/// are on: earlier versions could not hold it, and cases made with them have no such parts.
std::vector<Substitution> substitutionsOf(std::string_view ingredientIDs,
                                          const RebuildSettings &settings);

/// Whether the log names a part that only wide ids allow, while they are off.
bool needsWideIds(std::string_view ingredientIDs, const RebuildSettings &settings);

inline constexpr std::int64_t kLargestNarrowId = 32767;

/// Where pages of this id are rebuilt: a folder "0000017.NVR" below the Temp folder.
std::filesystem::path rebuildFolderOf(UrlId id, const RebuildContext &ctx);

enum class Batch { no, yes };

/// Copies each cached part that the page's substitution log names into `folder`, beside the page,
/// under its local name, and writes the list of them to "_TagIDs.txt" there. The page itself is
/// written from the project when the folder doesn't have it. All other files of the folder are
/// removed first. A part that is gone leaves no file. False after a failure, which is logged.
[[nodiscard]] bool harvestParts(UrlRecord &page, const std::filesystem::path &folder, Batch batch,
                                const RebuildContext &ctx);

/// Stores the list of the harvested as the page's substitution log. False when there is none.
[[nodiscard]] bool storeIngredientIDs(UrlRecord &page, const RebuildContext &ctx);

/// Makes the rebuild folder anew from what the project holds, and leaves a copy of the page in
/// `RunTimeTempFilePath`. False after a failure, which is logged.
[[nodiscard]] bool unpackIngredients(UrlRecord &page, const RebuildContext &ctx);

} // namespace nv
