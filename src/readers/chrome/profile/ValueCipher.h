#pragma once

#include "base/ByteView.h"

#include <optional>
#include <string>
#include <string_view>

namespace nv {

// How Chromium encrypts single values; docs/formats/chrome-cookies.md has the ways.

/// "v10", the way and key of an encrypted value; empty for bytes that don't begin with a version.
std::string_view cipherVersion(ByteView encrypted);

/// "encrypted, v20, 131 bytes"
std::string encryptionText(ByteView encrypted);

/// What a value of Linux's "v10" holds: its key is the same on every machine and publicly known.
/// Nothing for all others, and for a "v10" of another system, which that key doesn't fit.
std::optional<std::string> decryptedByPublicKey(ByteView encrypted);

/// What a browser stores as a value: UTF-8 without control characters other than a tab. Bytes that
/// a wrong key gives are no such text.
bool isPlainValue(std::string_view text);

} // namespace nv
