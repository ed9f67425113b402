#include "rebuild/exact/BytePlaces.h"

#include "markup/Charsets.h"

#include <array>

namespace nv {

namespace {

constexpr std::size_t kUnits = 4096;

std::size_t utf8Size(UChar unit) {
    if (unit < 0x80)
        return 1;
    if (unit < 0x800)
        return 2;
    return U16_IS_SURROGATE(unit) ? 2 : 3; // each half of a pair stands for two of four bytes
}

class PlaceFinder {
  public:
    PlaceFinder(std::string_view bytes, const std::vector<std::size_t> &wanted)
        : m_bytes(bytes), m_wanted(wanted) {
        m_found.reserve(wanted.size());
    }

    std::optional<std::vector<std::size_t>> find(UConverter *converter);

  private:
    void take(UChar unit, std::size_t place);

    std::string_view m_bytes;
    const std::vector<std::size_t> &m_wanted;
    std::vector<std::size_t> m_found;
    std::size_t m_at = 0; ///< in the text
};

void PlaceFinder::take(UChar unit, std::size_t place) {
    while (m_found.size() < m_wanted.size() && m_wanted[m_found.size()] == m_at)
        m_found.push_back(place);
    m_at += utf8Size(unit);
}

std::optional<std::vector<std::size_t>> PlaceFinder::find(UConverter *converter) {
    std::array<UChar, kUnits> units{};
    std::array<std::int32_t, kUnits> offsets{};
    const char *from = m_bytes.data();
    const char *const end = from + m_bytes.size();
    UErrorCode status = U_BUFFER_OVERFLOW_ERROR;
    while (status == U_BUFFER_OVERFLOW_ERROR) {
        const char *const begin = from;
        UChar *to = units.data();
        status = U_ZERO_ERROR;
        ucnv_toUnicode(converter, &to, units.data() + units.size(), &from, end, offsets.data(), 1,
                       &status);
        const auto base = begin - m_bytes.data();
        const auto count = static_cast<std::size_t>(to - units.data());
        for (std::size_t i = 0; i < count; ++i) {
            // A unit that the last round had no room for has no place of its own.
            const std::int64_t place = offsets[i] < 0 ? base : base + offsets[i];
            take(units[i], static_cast<std::size_t>(place));
        }
    }
    while (m_found.size() < m_wanted.size() && m_wanted[m_found.size()] == m_at)
        m_found.push_back(m_bytes.size());
    if (U_FAILURE(status) || m_found.size() < m_wanted.size())
        return std::nullopt;
    return std::move(m_found);
}

} // namespace

std::optional<std::vector<std::size_t>> bytePlaces(std::string_view bytes, std::string_view charset,
                                                   const std::vector<std::size_t> &places) {
    const Converter converter = converterOf(charset);
    if (!converter)
        return std::nullopt;
    return PlaceFinder(bytes, places).find(converter.get());
}

} // namespace nv
