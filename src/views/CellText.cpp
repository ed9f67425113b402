#include "views/CellText.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace nv {
namespace {

constexpr std::array<std::string_view, 13> kTypeWords = {
    "FIREFOX2 HISTORY", "FIREFOX3 HISTORY", "FIREFOX COOKIES", "OPERA HISTORY",  "OPERA COOKIES",
    "SAFARI HISTORY",   "SAFARI COOKIES",   "CHROME HISTORY",  "CHROME COOKIES", "IE HISTORY",
    "IE DAILY",         "IE WEEKLY",        "IE COOKIES"};

} // namespace

std::string typeWord(std::string_view cacheType) {
    const std::string upper = toUpper(trim(cacheType));
    if (std::find(kTypeWords.begin(), kTypeWords.end(), upper) != kTypeWords.end())
        return upper;
    if (upper == "IE COOKIE") // the same artefact under its other name
        return "IE COOKIES";
    return upper.find("HISTORY") != std::string::npos ? "HISTORY" : displayText(upper);
}

} // namespace nv
