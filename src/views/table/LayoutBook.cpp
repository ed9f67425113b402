#include "views/table/LayoutBook.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

namespace nv {

namespace {

using C = UrlColumn;

// What comes first is on the screen without scrolling: when, by which program, what, where.
constexpr UrlColumn kExaminerColumns[] = {
    C::Tag,          C::TagNames, C::Icon,   C::LocalDate, C::Browser, C::Type,   C::Host,
    C::WebpageTitle, C::Value,    C::Person, C::User,      C::Visits,  C::Status, C::Note};
constexpr UrlColumn kCacheColumns[] = {
    C::Tag,         C::Icon,          C::LocalDate,     C::Browser, C::Host,
    C::FileName,    C::MimeType,      C::CacheFileSize, C::Value,   C::WebpageTitle,
    C::Category,    C::FileExists,    C::Rebuilt,       C::Status,  C::HashSets,
    C::CacheFolder, C::CacheFileName, C::Person,        C::Profile, C::Note};
constexpr UrlColumn kPictureColumns[] = {
    C::Tag,      C::Icon,         C::LocalDate,     C::Browser,       C::Host,  C::FileName,
    C::FileExt,  C::PictureWidth, C::PictureHeight, C::CacheFileSize, C::Value, C::FileExists,
    C::HashSets, C::Person,       C::Profile,       C::Note};

struct BuiltInLayout {
    std::string_view name;
    std::span<const UrlColumn> columns; ///< none for all of Classic
};
constexpr std::array<BuiltInLayout, 4> kBuiltIn = {{{LayoutBook::kExaminer, kExaminerColumns},
                                                    {LayoutBook::kCaches, kCacheColumns},
                                                    {LayoutBook::kPictures, kPictureColumns},
                                                    {LayoutBook::kClassic, {}}}};
constexpr std::size_t kExaminerPlace = 0;

constexpr std::string_view kActiveName = "ColumnLayout";
constexpr std::size_t kMostLayouts = 100;

/// All are hidden, and shown ones are as wide as what they hold.
TableLayout emptyLayout() {
    TableLayout layout;
    for (const UrlColumnFacts &facts : kTableColumns) {
        layout.setHidden(facts.column, true);
        layout.fit(facts.column);
    }
    return layout;
}

TableLayout builtInLayout(std::size_t place) {
    const std::span<const UrlColumn> columns = kBuiltIn.at(place).columns;
    if (columns.empty())
        return {};
    TableLayout layout = emptyLayout();
    int at = 0;
    for (const UrlColumn column : columns) {
        layout.setHidden(column, false);
        layout.move(column, at++);
    }
    return layout;
}

/// Shown columns from left to right, each as its number and its width in twips: "0:0 14:5000"
/// (docs/formats/project-file.md). A width of 0 is that of what the column holds.
std::string textOf(const TableLayout &layout) {
    std::string text;
    for (const UrlColumn column : layout.shownColumns())
        text += fmt::format("{}{}:{}", text.empty() ? "" : " ", indexOf(column),
                            layout.isFitted(column) ? 0 : layout.widthTwips(column));
    return text;
}

bool takeColumn(std::string_view text, TableLayout &layout, int place) {
    const char *const end = text.data() + text.size();
    std::size_t index = kTableColumnCount;
    const auto [colon, error] = std::from_chars(text.data(), end, index);
    if (error != std::errc() || index >= kTableColumnCount || colon == end || *colon != ':')
        return false;
    const auto column = static_cast<UrlColumn>(index);
    int twips = 0;
    const auto [rest, widthError] = std::from_chars(colon + 1, end, twips);
    if (widthError != std::errc() || rest != end || !layout.hidden(column))
        return false;
    layout.setHidden(column, false);
    layout.setWidthTwips(column, twips);
    layout.move(column, place);
    return true;
}

/// What makes no sense is left out.
TableLayout layoutIn(std::string_view text) {
    TableLayout layout = emptyLayout();
    int place = 0;
    for (const std::string_view piece : split(text, ' '))
        if (takeColumn(piece, layout, place))
            ++place;
    return layout;
}

std::string nameSetting(std::size_t number) {
    return fmt::format("ColumnLayout{}_Name", number);
}

std::string columnsSetting(std::size_t number) {
    return fmt::format("ColumnLayout{}_Columns", number);
}

bool wasLeftByTheWindow(const TableLayout::Read &read) {
    return std::ranges::any_of(kUrlColumns, [&read](const UrlColumnFacts &facts) {
        const std::string key(facts.key);
        return !read(key + "_ColIsHidden").empty() || !read(key + "_ColPos").empty();
    });
}

} // namespace

LayoutBook::LayoutBook() {
    m_pages.reserve(kBuiltIn.size());
    for (std::size_t place = 0; place < kBuiltIn.size(); ++place)
        m_pages.push_back({std::string(kBuiltIn.at(place).name), builtInLayout(place)});
}

bool LayoutBook::isBuiltIn() const {
    return m_active < kBuiltIn.size();
}

std::vector<std::string> LayoutBook::names() const {
    std::vector<std::string> names;
    names.reserve(m_pages.size());
    for (const Page &each : m_pages)
        names.push_back(each.name);
    return names;
}

TableLayout LayoutBook::defaults() const {
    return builtInLayout(isBuiltIn() ? m_active : kExaminerPlace);
}

std::size_t LayoutBook::find(std::string_view name) const {
    const auto found = std::ranges::find_if(
        m_pages, [name](const Page &each) { return equalsNoCase(each.name, trim(name)); });
    return static_cast<std::size_t>(found - m_pages.begin());
}

bool LayoutBook::choose(std::string_view name) {
    const std::size_t place = find(name);
    if (place == m_pages.size())
        return false;
    m_active = place;
    return true;
}

LayoutNameFault LayoutBook::check(std::string_view name, bool renamesActive) const {
    if (trim(name).empty())
        return LayoutNameFault::Empty;
    if (charCount(trim(name)) > kLongestName)
        return LayoutNameFault::TooLong;
    const std::size_t place = find(name);
    const bool taken = place < m_pages.size() && !(renamesActive && place == m_active);
    return taken ? LayoutNameFault::Taken : LayoutNameFault::None;
}

void LayoutBook::saveAs(std::string_view name) {
    m_pages.push_back({std::string(trim(name)), layout()});
    m_active = m_pages.size() - 1;
}

void LayoutBook::rename(std::string_view name) {
    if (!isBuiltIn())
        m_pages[m_active].name = trim(name);
}

void LayoutBook::remove() {
    if (isBuiltIn())
        return;
    m_pages.erase(m_pages.begin() + static_cast<std::ptrdiff_t>(m_active));
    m_active = 0;
}

void LayoutBook::restore(const TableLayout::Read &read) {
    *this = LayoutBook();
    restoreOthers(read);
    if (!wasLeftByTheWindow(read))
        return;
    const std::string name(trim(read(kActiveName)));
    if (!choose(name.empty() ? kClassic : name))
        saveAs(name);
    layout() = isBuiltIn() ? defaults() : emptyLayout();
    layout().restore(read);
}

void LayoutBook::restoreOthers(const TableLayout::Read &read) {
    for (m_kept = 0; m_kept < kMostLayouts; ++m_kept) {
        const std::string name(trim(read(nameSetting(m_kept + 1))));
        if (name.empty())
            return;
        const TableLayout kept = layoutIn(read(columnsSetting(m_kept + 1)));
        const std::size_t place = find(name);
        if (place == m_pages.size())
            m_pages.push_back({name, kept});
        else
            m_pages[place].layout = kept;
    }
}

/// Built-in layouts that nobody has changed need no text.
void LayoutBook::save(const TableLayout::Write &write) const {
    write(kActiveName, active());
    layout().save(write);
    const LayoutBook fresh;
    std::size_t number = 0;
    for (std::size_t place = 0; place < m_pages.size(); ++place) {
        const Page &each = m_pages[place];
        if (place < kBuiltIn.size() && each.layout == fresh.m_pages[place].layout)
            continue;
        write(nameSetting(++number), each.name);
        write(columnsSetting(number), textOf(each.layout));
    }
    while (number < m_kept) {
        write(nameSetting(++number), "");
        write(columnsSetting(number), "");
    }
}

} // namespace nv
