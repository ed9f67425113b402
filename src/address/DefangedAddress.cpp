#include "address/DefangedAddress.h"

#include "base/Text.h"

#include <algorithm>
#include <optional>

namespace nv {

namespace {

/// What stands between scheme and host, also as the value of a parameter has it: each sign as it is
/// or percent-coded, once or more.
struct Mark {
    std::size_t begin = 0;
    std::size_t colonEnd = 0;
    std::size_t end = 0;
};

/// The length of a sign at `at`: itself, or "%3A", "%253A" and so on; 0 for another.
std::size_t signAt(std::string_view text, std::size_t at, char sign, std::string_view code) {
    if (at < text.size() && text[at] == sign)
        return 1;
    if (at >= text.size() || text[at] != '%')
        return 0;
    std::size_t end = at + 1;
    while (text.substr(end).starts_with("25"))
        end += 2;
    return startsWithNoCase(text.substr(end), code) ? end + code.size() - at : 0;
}

std::optional<Mark> nextMark(std::string_view text, std::size_t from) {
    for (std::size_t at = text.find_first_of(":%", from); at != std::string_view::npos;
         at = text.find_first_of(":%", at + 1)) {
        Mark mark{at, at + signAt(text, at, ':', "3A"), 0};
        if (mark.colonEnd == at)
            continue;
        const std::size_t first = signAt(text, mark.colonEnd, '/', "2F");
        const std::size_t second = first > 0 ? signAt(text, mark.colonEnd + first, '/', "2F") : 0;
        mark.end = mark.colonEnd + first + second;
        if (second > 0)
            return mark;
    }
    return std::nullopt;
}

bool isOfScheme(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' ||
           c == '-' || c == '.';
}

/// A host ends before these; escapes but that of a point end it too.
std::size_t hostEndAt(std::string_view text, std::size_t at) {
    for (std::size_t end = at;;) {
        end = std::min(text.find_first_of("/?#\\&;\"'<> %", end), text.size());
        const std::size_t point = signAt(text, end, '.', "2E");
        if (point == 0)
            return end;
        end += point;
    }
}

std::string defangedHost(std::string_view host) {
    std::string text;
    for (std::size_t at = 0; at < host.size();) {
        const std::size_t point = signAt(host, at, '.', "2E");
        const std::string_view piece = host.substr(at, std::max<std::size_t>(point, 1));
        text.append(point > 0 ? "[" : "").append(piece).append(point > 0 ? "]" : "");
        at += piece.size();
    }
    return text;
}

/// The scheme in front of a mark is taken off `done`, and both are written anew.
std::string defangedScheme(std::string &done, std::string_view text, const Mark &mark) {
    std::size_t begin = done.size();
    while (begin > 0 && isOfScheme(done[begin - 1]))
        --begin;
    if (begin > 0 && done[begin - 1] == '%') { // the digits of a sign in front, as of "%3D"
        while (done.compare(begin, 2, "25") == 0)
            begin += 2;
        begin = std::min(begin + 2, done.size());
    }
    const std::string scheme = done.substr(begin);
    const std::string_view colon = text.substr(mark.begin, mark.colonEnd - mark.begin);
    const std::string_view slashes = text.substr(mark.colonEnd, mark.end - mark.colonEnd);
    done.resize(begin);
    for (const std::string_view known : {"https", "http"})
        if (equalsNoCase(scheme, known))
            return std::string("hxxp").append(scheme.substr(4)).append(colon).append(slashes);
    if (equalsNoCase(scheme, "ftp"))
        return std::string("fxp").append(colon).append(slashes);
    return std::string(scheme).append("[").append(colon).append("]").append(slashes);
}

} // namespace

std::string defangedAddress(std::string_view address) {
    std::string text;
    std::size_t at = 0;
    auto mark = nextMark(address, 0);
    if (!mark || address.find_first_of("/?#\\") < mark->begin) { // it begins with its host
        at = hostEndAt(address, 0);
        text = defangedHost(address.substr(0, at));
        mark = nextMark(address, at);
    }
    for (; mark; mark = nextMark(address, at)) {
        text += address.substr(at, mark->begin - at);
        const std::string scheme = defangedScheme(text, address, *mark);
        text += scheme;
        at = hostEndAt(address, mark->end);
        text += defangedHost(address.substr(mark->end, at - mark->end));
    }
    return text.append(address.substr(at));
}

} // namespace nv
