#include "markup/SvgNames.h"

#include "markup/WordSet.h"

namespace nv {

namespace {

constexpr std::string_view kElements =
    "circle clipPath defs ellipse feBlend feColorMatrix feComponentTransfer feComposite "
    "feConvolveMatrix feDiffuseLighting feDisplacementMap feDistantLight feDropShadow feFlood "
    "feFuncA feFuncB feFuncG feFuncR feGaussianBlur feMerge feMergeNode feMorphology feOffset "
    "fePointLight feSpecularLighting feSpotLight feTile feTurbulence filter g image line "
    "linearGradient marker mask path pattern polygon polyline radialGradient rect stop svg switch "
    "symbol text textPath tspan use view";

constexpr std::string_view kAttributes =
    "amplitude azimuth baseFrequency bias class clipPathUnits cx cy d diffuseConstant divisor dx "
    "dy "
    "edgeMode elevation exponent filterUnits fr fx fy gradientTransform gradientUnits height id in "
    "in2 intercept k1 k2 k3 k4 kernelMatrix kernelUnitLength lang lengthAdjust limitingConeAngle "
    "markerHeight markerUnits markerWidth maskContentUnits maskUnits media method mode numOctaves "
    "offset operator order orient pathLength patternContentUnits patternTransform patternUnits "
    "points pointsAtX pointsAtY pointsAtZ preserveAlpha preserveAspectRatio primitiveUnits r "
    "radius "
    "refX refY result rotate rx ry scale seed side slope spacing specularConstant specularExponent "
    "spreadMethod startOffset stdDeviation stitchTiles surfaceScale systemLanguage tableValues "
    "targetX targetY textLength transform type values version viewBox width x x1 x2 "
    "xChannelSelector y y1 y2 yChannelSelector z";

constexpr std::string_view kProperties =
    "alignment-baseline baseline-shift clip clip-path clip-rule color color-interpolation "
    "color-interpolation-filters cursor direction display dominant-baseline enable-background fill "
    "fill-opacity fill-rule filter flood-color flood-opacity font-family font-size "
    "font-size-adjust "
    "font-stretch font-style font-variant font-weight image-rendering kerning letter-spacing "
    "lighting-color marker marker-end marker-mid marker-start mask opacity overflow paint-order "
    "pointer-events shape-rendering stop-color stop-opacity stroke stroke-dasharray "
    "stroke-dashoffset stroke-linecap stroke-linejoin stroke-miterlimit stroke-opacity "
    "stroke-width "
    "text-anchor text-decoration text-rendering unicode-bidi visibility word-spacing writing-mode";

} // namespace

bool isSvgElement(std::string_view name) {
    static const WordSet elements = wordSetOf(kElements);
    return elements.contains(name);
}

bool isSvgAttribute(std::string_view name) {
    static const WordSet attributes = wordSetOf(kAttributes);
    return attributes.contains(name);
}

bool isSvgProperty(std::string_view name) {
    static const WordSet properties = wordSetOf(kProperties);
    return properties.contains(name);
}

} // namespace nv
