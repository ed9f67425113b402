#pragma once

#include "base/ByteView.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

/// What a field of the index holds. The other tags that browsers write are stepped over.
enum class OperaTag : std::uint16_t {
    url = 3,
    visited = 5,
    status = 7,
    size = 8,
    mimeType = 9,
    fileName = 13,
};

/// A field whose tag is one of OperaTag.
struct OperaField {
    OperaTag tag = OperaTag::url;
    ByteView value;
    bool isCut = false;       ///< the file ends within the value
    std::uint64_t length = 0; ///< of the whole field
};

/// The field at `at`; nothing where no such field begins.
std::optional<OperaField> operaFieldAt(ByteView file, std::uint64_t at);

/// The value as text: UTF-8 or Windows-1252, up to a zero byte.
std::string textOf(const OperaField &field);
/// Nothing when there is no such number.
std::optional<std::uint64_t> numberOf(const OperaField &field);
/// No date for 0, which is stored for none, and beyond of what 32 bits hold.
Date dateOf(const OperaField &field);

} // namespace nv
