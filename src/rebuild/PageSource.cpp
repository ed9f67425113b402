#include "rebuild/PageSource.h"

#include "base/Files.h"
#include "rebuild/LocalNames.h"
#include "rebuild/PageText.h"

namespace nv {

const std::optional<std::string> &PageSource::text() {
    if (!m_isFetched)
        m_text = fetched();
    m_isFetched = true;
    return m_text;
}

std::optional<std::string> PageSource::fetched() {
    m_page.RunTimeTempFilePath.clear(); // what another step left there may be another page's
    const auto content = contentOf(m_page, m_ctx.extraction());
    if (!content)
        return std::nullopt;
    if (m_page.RunTimeTempFilePath.empty()) {
        m_page.RunTimeContentPath = *content;
        m_page.RunTimeTempFilePath = m_ctx.TempFolderPath / kPageCopy;
        copyToScratch(*content, m_page.RunTimeTempFilePath);
    } else {
        m_page.RunTimeContentPath = m_page.RunTimeTempFilePath;
    }
    return ReadTextFile(m_page.RunTimeTempFilePath, LineBreaks::strip);
}

} // namespace nv
