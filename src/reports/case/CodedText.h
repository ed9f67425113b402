#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Whether one of the texts or bytes that it is asked about is what is looked for.
using CodedTest = std::function<bool(std::string_view bytes)>;

/// Letters of base64, of either form, that stand beside each other, hexadecimal digits among them:
/// as many as `fewest` bytes take at least.
std::vector<std::string_view> codedRuns(std::string_view text, std::size_t fewest);

/// Asks about what a run may stand for, until the answer is yes: of base64 from each of four
/// letters on and of hexadecimal digits from each of two, since nobody tells where the code begins.
bool anyReading(std::string_view run, std::size_t fewest, const CodedTest &test);

/// The same of all runs of a text, of runs that line breaks part, and of pairs of hexadecimal
/// digits that a blank, a colon or a hyphen parts.
bool anyCoded(std::string_view text, std::size_t fewest, const CodedTest &test);

} // namespace nv
