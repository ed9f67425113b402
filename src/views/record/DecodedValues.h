#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Something that a value of a record holds in another form, and by which rule it was read.
struct DecodedValue {
    std::string field; ///< of the record: "URL"
    std::string name;  ///< where in it: "q"; "continue > q" within an address within; "path"
    std::string value; ///< for people; times are in UTC
    std::string rule;  ///< "Query parameter", "Unix time in seconds"

    friend bool operator==(const DecodedValue &, const DecodedValue &) = default;
};

/// The rule of what somebody has searched for.
inline constexpr std::string_view kSearchTermRule = "Search term";

/// What is found in one text is bounded by these: a hostile one costs no more.
inline constexpr std::size_t kMostDecodedBytes = std::size_t{64} << 10; ///< that are looked at
inline constexpr std::size_t kMostDecodedValues = 300;
inline constexpr std::size_t kLongestDecodedValue = 4096; ///< bytes; what is longer ends in "…"

/// Parameters, search terms, times, base64 and addresses within an address, in its order. Empty for
/// a text that is none with a scheme and "//". It has its escapes: an address without them is asked
/// about by the form below.
std::vector<DecodedValue> decodedAddress(std::string_view field, std::string_view address);

/// The same of an address whose escapes are undone, by the text as found that it was made of
/// (rawAddressOf). Where that doesn't give it only what holds either way is told.
std::vector<DecodedValue> decodedAddress(std::string_view field, std::string_view address,
                                         std::string_view stored);

/// The same of the value of a cookie or a form, which may be parameters, a number, a list of
/// numbers or base64. `name` is that of the cookie or the field.
std::vector<DecodedValue> decodedText(std::string_view field, std::string_view text,
                                      std::string_view name = {});

} // namespace nv
