#pragma once

#include "readers/TextPlaces.h"
#include "readers/json/JsonSpans.h"

#include <span>

namespace nv {

/// Which member of a record's object a field is made of.
struct JsonFieldRule {
    std::string_view field;
    std::string_view member; ///< of objects below with "." between
    SourceForm form = SourceForm::text;
};

/// Tells of the fields that the object's members give: of several rules for a field the first whose
/// member is there.
void placeJsonMembers(const JsonFound &object, std::span<const JsonFieldRule> rules,
                      TextPlaces &text);

} // namespace nv
