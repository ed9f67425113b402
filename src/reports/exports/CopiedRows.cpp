#include "reports/exports/CopiedRows.h"

#include "base/TextRows.h"
#include "reports/exports/ExportWriter.h"

#include <utility>

namespace nv {

namespace {

/// Addresses stay texts: an escaped ":" keeps programs that show Markdown from making links of
/// them.
std::string markdownText(const std::string &text) {
    constexpr std::string_view kSigns = "\\`*_{}[]<>()#+-!|~&:";
    std::string line;
    line.reserve(text.size());
    for (const char c : text) {
        if (c == '\n' || c == '\r' || c == '\t') {
            line += ' ';
            continue;
        }
        if (kSigns.find(c) != std::string_view::npos)
            line += '\\';
        line += c;
    }
    return line;
}

std::string markdownLine(const std::vector<std::string> &texts) {
    std::string line = "|";
    for (const std::string &text : texts)
        line.append(" ").append(markdownText(text)).append(" |");
    return line + '\n';
}

std::string safeText(const Cell &cell) {
    const auto *text = std::get_if<std::string>(&cell);
    return text != nullptr && looksLikeFormula(*text) ? "'" + *text : plainText(cell);
}

} // namespace

CopiedRows::CopiedRows(CopyForm form, std::vector<std::string> headings)
    : m_form(form), m_headings(std::move(headings)) {
    if (form == CopyForm::csv)
        m_text = csvLine(m_headings);
    else if (form == CopyForm::json)
        m_text = "[";
    else {
        m_text = markdownLine(m_headings) + "|";
        for (std::size_t count = m_headings.size(); count > 0; --count)
            m_text += " --- |";
        m_text += '\n';
    }
}

void CopiedRows::add(const std::vector<Cell> &cells) {
    if (m_form == CopyForm::json) {
        std::string line = jsonLine(m_headings, cells);
        while (line.ends_with('\n'))
            line.pop_back();
        m_text.append(std::exchange(m_hasRows, true) ? ",\n" : "\n").append(line);
        return;
    }
    std::vector<std::string> texts;
    texts.reserve(cells.size());
    for (const Cell &cell : cells)
        texts.push_back(m_form == CopyForm::csv ? safeText(cell) : plainText(cell));
    m_text += m_form == CopyForm::csv ? csvLine(texts) : markdownLine(texts);
}

std::string CopiedRows::take() {
    if (m_form == CopyForm::json)
        m_text += "\n]\n";
    return std::move(m_text);
}

} // namespace nv
