#include "rebuild/Scripts.h"

#include "rebuild/PageText.h"

#include <array>
#include <utility>

namespace nv {

namespace {

using Replacement = std::pair<std::string_view, std::string_view>;

// In this order. The last two rows but one mend what comments within comments leave behind.
constexpr std::array<Replacement, 8> kScripts = {{{"<script", "<!-- <script"},
                                                  {"text/javascript", ""},
                                                  {"</script>", "</script> -->"},
                                                  {"<noscript", "<!-- <noscript"},
                                                  {"</noscript>", "</noscript> -->"},
                                                  {"--> -->", " -->"},
                                                  {"-->  -->", " -->"},
                                                  {"onload", "void"}}};

constexpr std::array<std::string_view, 4> kHandlers = {
    " onload=", " onunload=", " onmouseover=", " onmouseout="};

} // namespace

std::string striptScriptTags(std::string_view text) {
    std::string stripped(text);
    for (const auto &[find, replacement] : kScripts)
        stripped = replaceAllText(stripped, find, replacement);
    return stripped;
}

std::string neutraliseEventHandlers(std::string_view text) {
    std::string neutral(text);
    for (const std::string_view handler : kHandlers)
        neutral = replaceAllText(neutral, handler, " void=");
    return neutral;
}

} // namespace nv
