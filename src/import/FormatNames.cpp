#include "import/FormatNames.h"

#include <algorithm>
#include <iterator>

namespace nv {

namespace {

std::vector<const Reader *> classicOf(Formats formats) {
    std::vector<const Reader *> classic;
    std::ranges::copy_if(formats, std::back_inserter(classic),
                         [](const Reader *reader) { return !reader->isBeyondClassic; });
    return classic;
}

} // namespace

FormatNames::FormatNames(const ImportSettings &job, Formats formats)
    : m_formats(formats), m_mask(maskText(job, formats)),
      m_classicMask(maskText(job, classicOf(formats))) {
    for (const Reader *reader : formats)
        m_ownMasks.emplace_back(reader->mask);
}

std::vector<const Reader *> FormatNames::formatsFor(std::string_view fileName) const {
    const bool isClassic = m_classicMask.matches(fileName);
    std::vector<const Reader *> formats;
    for (std::size_t i = 0; i < m_formats.size(); ++i)
        if (m_formats[i]->isBeyondClassic ? m_ownMasks[i].matches(fileName) : isClassic)
            formats.push_back(m_formats[i]);
    return formats;
}

std::vector<const Reader *> FormatNames::all() const {
    return {m_formats.begin(), m_formats.end()};
}

} // namespace nv
