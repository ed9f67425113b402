#pragma once

#include "views/explain/SourceValues.h"

#include <optional>
#include <string>

namespace nv {

/// A value as the project has it.
struct KeptValue {
    std::string text;
    std::string raw; ///< as the source stores it, of facts whose value is another; may be empty
};

/// Whether the cell gives the value, by a form that is no date. Nothing where the two can't be
/// compared; the note then says why, and otherwise what else was done.
std::optional<bool> cellAgrees(SourceForm form, const SourceValue &cell, const KeptValue &kept,
                               std::string &note);

} // namespace nv
