#include "support/builders/Mork.h"

#include <fmt/format.h>

namespace nv::test {

namespace {

/// As the browser escapes a value that stands in parentheses.
std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == ')' || c == '\\' || c == '$')
            out += '\\';
        out += c;
    }
    return out;
}

/// A title's characters in two bytes each, the lower one first.
std::string wide(std::string_view title) {
    std::string out;
    for (const char c : title)
        out += fmt::format("{}$00", c);
    return out;
}

} // namespace

MorkHistory &MorkHistory::firstLine(std::string text) {
    m_firstLine = std::move(text);
    return *this;
}

MorkHistory &MorkHistory::columnMark(std::string text) {
    m_columnMark = std::move(text);
    return *this;
}

std::string MorkHistory::value(std::string_view text) {
    const std::string id = fmt::format("{:X}", m_nextValue++);
    rawValue(id, escaped(text));
    return id;
}

MorkHistory &MorkHistory::rawValue(std::string_view id, std::string_view text) {
    last().values.push_back(fmt::format("({}={})", id, text));
    return *this;
}

MorkHistory &MorkHistory::rawRow(std::string_view text) {
    last().rows.emplace_back(text);
    return *this;
}

MorkHistory &MorkHistory::behindTable(std::string_view text) {
    m_behind += text;
    return *this;
}

MorkHistory &MorkHistory::beginGroup() {
    m_parts.emplace_back();
    return *this;
}

MorkHistory &MorkHistory::add(const Page &page) {
    std::string row = page.rowId.empty() ? fmt::format("{:X}", m_nextRow++) : page.rowId;
    const auto named = [&](std::string_view column, const std::string &text) {
        if (!text.empty())
            row += fmt::format("(^{}^{})", column, value(text));
    };
    named("82", page.url);
    named("84", page.lastVisit);
    named("85", page.firstVisit);
    named("83", page.referrer);
    named("88", page.host);
    if (!page.title.empty()) {
        rawValue(fmt::format("{:X}", m_nextValue), wide(page.title));
        row += fmt::format("(^87^{:X})", m_nextValue++);
    }
    if (!page.visitCount.empty())
        row += fmt::format("(^86={})", page.visitCount);
    if (page.hidden)
        row += "(^89=1)";
    if (page.typed)
        row += "(^8A=1)";
    return rawRow("[" + row + "]");
}

std::string MorkHistory::dictionary(const Part &part) const {
    if (part.values.empty())
        return {};
    std::string text = "<";
    for (std::size_t i = 0; i < part.values.size(); ++i)
        text += (i == 0 ? "" : i % 2 == 0 ? m_lineEnd + "  " : "") + part.values[i];
    return line(text + ">");
}

std::string MorkHistory::bytes() const {
    std::string text = line(m_firstLine) + line(m_columnMark);
    text += line("  (8A=Typed)(8B=LastPageVisited)(8C=ByteOrder)");
    text += line("  (80=ns:history:db:row:scope:history:all)");
    text += line("  (81=ns:history:db:table:kind:history)(82=URL)(83=Referrer)");
    text += line("  (84=LastVisitDate)(85=FirstVisitDate)(86=VisitCount)(87=Name)");
    text += line("  (88=Hostname)(89=Hidden)>") + m_lineEnd;
    text += dictionary(m_parts.front());
    text += line("{1:^80 {(k^81:c)(s=9)[1(^8C=LE)]} ");
    for (const std::string &row : m_parts.front().rows)
        text += line("  " + row);
    text += line("}");
    for (std::size_t i = 1; i < m_parts.size(); ++i) {
        text += m_lineEnd + line(fmt::format("@$${{{}{{@", i)) + dictionary(m_parts[i]);
        for (const std::string &row : m_parts[i].rows)
            text += line(row);
        text += line(fmt::format("@$$}}{}}}@", i));
    }
    return text + m_behind;
}

std::string morkTime(std::int64_t unixSeconds) {
    return std::to_string(unixSeconds) + "314923";
}

void addExamplePages(MorkHistory &history) {
    history.add({.url = "http://www.example.com/",
                 .lastVisit = morkTime(1300000000),
                 .firstVisit = morkTime(1290000000),
                 .host = "example.com",
                 .title = "Example"});
    history.add({.url = "http://mail.example.org/inbox?page=2",
                 .lastVisit = morkTime(1300000100),
                 .host = "mail.example.org",
                 .visitCount = "17",
                 .typed = true});
    history.add({.url = "http://ads.example.net/frame.html",
                 .lastVisit = morkTime(1300000200),
                 .host = "ads.example.net",
                 .hidden = true});
}

} // namespace nv::test
