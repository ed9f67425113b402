#pragma once

#include "base/Clock.h"
#include "db/marks/RebuildAudit.h"
#include "db/marks/RebuiltParts.h"
#include "db/records/UrlRecord.h"
#include "rebuild/RebuildContext.h"
#include "rebuild/RebuildMethod.h"

#include <span>
#include <string>
#include <string_view>

namespace nv {

// What a rebuild keeps in the page's record and row. Both throw what the database says.

/// The form of `RebuiltDateTime`.
inline constexpr std::string_view kRebuiltTimeFormat = "dd-mm-yyyy Hh:Nn:Ss";

/// The page in `RunTimeRebuiltFilePath`, whose text is `RebuiltSourceCode` and whose substitution
/// log `IngredientIDs`, is the record's rebuild from now on; `notes` tell of the log's lines. An
/// archive of an earlier one goes. `RebuiltDateTime` is a text in the machine's local time.
void storeRebuilt(UrlRecord &page, std::span<const ReferenceNote> notes, const RebuildContext &ctx,
                  const Clock &clock);

/// The same of a page over which a template was laid, whose own page was rebuilt by `method`.
void storeFromTemplate(UrlRecord &page, RebuildMethod method, const RebuildContext &ctx,
                       const Clock &clock);

/// The same of a page that was rebuilt exactly; `notes` tell of its references.
void storeRebuiltExactly(UrlRecord &page, std::span<const PartNote> notes,
                         const RebuildContext &ctx, const Clock &clock);

/// `log` is the page's substitution log from now on.
void storeSubstitutions(UrlRecord &page, std::string log, const RebuildContext &ctx);

} // namespace nv
