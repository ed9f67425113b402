#include "reports/pages/AllowedCss.h"

#include "base/Text.h"
#include "markup/WordSet.h"

namespace nv {

namespace {

std::string_view withoutMaker(std::string_view name) {
    for (const std::string_view maker : {"-webkit-", "-moz-", "-ms-", "-o-"})
        if (name.starts_with(maker))
            return name.substr(maker.size());
    return name;
}

constexpr std::string_view kRules =
    "container counter-style font-face keyframes layer media page property scope starting-style "
    "supports "
    "top-left top-center top-right bottom-left bottom-center bottom-right";

constexpr std::string_view kFunctions =
    "abs acos alpha any asin atan atan2 attr blur brightness calc calc-size circle clamp color "
    "color-mix color-stop conic-gradient contrast cos counter counters cross-fade cubic-bezier "
    "dir drop-shadow ellipse env exp fit-content format from grayscale has host host-context "
    "hsl hsla hue-rotate hwb hypot image image-set inset invert is lab lang layer lch light-dark "
    "linear "
    "linear-gradient local log matches matrix matrix3d max min minmax mod not nth-child "
    "nth-last-child nth-last-of-type nth-of-type oklab oklch opacity part path perspective polygon "
    "pow radial-gradient ray rect rem repeat repeating-conic-gradient "
    "repeating-linear-gradient repeating-radial-gradient rgb rgba rotate rotate3d rotatex rotatey "
    "rotatez round saturate scale scale3d scalex scaley scalez selector sepia sign sin skew skewx "
    "skewy slotted sqrt state steps style supports symbols tan tech to translate translate3d "
    "translatex "
    "translatey translatez var where xywh cue gradient";

constexpr std::string_view kTextFunctions =
    "attr counter counters format lang local not is where has any matches symbols path dir tech";

constexpr std::string_view kAddressProperties =
    "background background-image border-image border-image-source box-reflect clip-path content "
    "cursor fill filter backdrop-filter list-style list-style-image marker marker-start marker-mid "
    "marker-end mask mask-image mask-border mask-border-source mask-box-image "
    "mask-box-image-source offset offset-path shape-outside src stroke";

constexpr std::string_view kTextProperties =
    "animation animation-name content quotes font font-family font-feature-settings "
    "font-language-override font-variation-settings grid grid-area grid-template "
    "grid-template-areas hyphenate-character list-style list-style-type text-emphasis "
    "text-emphasis-style text-overflow transition symbols additive-symbols prefix suffix negative "
    "pad syntax";

} // namespace

bool isAllowedRule(std::string_view name) {
    static const WordSet rules = wordSetOf(kRules);
    return rules.contains(withoutMaker(name));
}

bool isAllowedFunction(std::string_view name) {
    static const WordSet functions = wordSetOf(kFunctions);
    return functions.contains(withoutMaker(name));
}

bool takesText(std::string_view function) {
    static const WordSet functions = wordSetOf(kTextFunctions);
    return functions.contains(withoutMaker(function));
}

bool mayHoldAddress(std::string_view property) {
    static const WordSet properties = wordSetOf(kAddressProperties);
    return properties.contains(withoutMaker(property));
}

bool mayHoldText(std::string_view property) {
    static const WordSet properties = wordSetOf(kTextProperties);
    return properties.contains(withoutMaker(property));
}

} // namespace nv
