#include "rebuild/exact/ShownParts.h"

#include "base/Base64.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "rebuild/exact/DrawingText.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// Of a property of the page's own, which is as likely to be shown where a file would do. In bytes.
constexpr std::size_t kSmall = std::size_t{48} << 10;
constexpr std::string_view kVtt = "text/vtt";

} // namespace

std::optional<std::string> ShownParts::address(const Reference &reference, const PartFile &file,
                                               const std::string &place) {
    const std::string beside = file.name + place;
    if (reference.element == "use")
        return used(file, place).value_or(beside);
    const std::string_view type = insideTypeOf(getFileExtension(file.name));
    const bool isTrack = reference.use == RefUse::track;
    if (reference.place == RefPlace::beside || type.empty() || isTrack != (type == kVtt))
        return beside;
    const bool isChoice = reference.place == RefPlace::insideIfSmall;
    const auto &data = inside(file, type, isChoice ? kSmall : kLargestInside);
    if (!data || data->size() + place.size() > m_room)
        return isChoice ? std::optional(beside) : std::nullopt;
    m_room -= data->size() + place.size();
    return *data + place;
}

/// The same picture may stand in a sheet a thousand times. What is kept is bounded as what is
/// written: nothing more is made than there is room for.
const std::optional<std::string> &ShownParts::inside(const PartFile &file, std::string_view type,
                                                     std::size_t most) {
    const auto [known, isNew] = m_inside.try_emplace({file.name, most});
    if (isNew && m_kept < kMostInside)
        known->second =
            trapped(m_log, Severity::Warning, "ShownParts.Inside()", kNotSerious,
                    std::optional<std::string>(), [&] { return made(file, type, most); });
    m_kept += isNew && known->second ? known->second->size() : 0;
    return known->second;
}

std::optional<std::string> ShownParts::made(const PartFile &file, std::string_view type,
                                            std::size_t most) const {
    const auto bytes = m_files.bytesOf(file, std::min(most, m_room));
    if (!bytes)
        return std::nullopt;
    if (file.form != PartForm::svg)
        return fmt::format("data:{};base64,{}", type, base64(ByteView(*bytes)));
    const std::string drawing = selfContained(*bytes, file.headers);
    return fmt::format("data:{};base64,{}", type, base64(viewOf(drawing)));
}

/// Nothing where the file itself is named instead, of which no browser shows anything there.
std::optional<std::string> ShownParts::used(const PartFile &file, const std::string &place) {
    if (!m_takesDrawings || file.form != PartForm::svg)
        return std::nullopt;
    if (!m_used.knows(file.record)) {
        const auto bytes = m_files.bytesOf(file, kLargestInside);
        m_used.add(file.record, bytes ? decodedDrawing(*bytes, file.headers).text : std::string());
    }
    return m_used.place(file.record, percentDecode(place.substr(place.empty() ? 0 : 1)));
}

} // namespace nv
