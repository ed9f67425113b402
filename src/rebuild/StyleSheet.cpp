#include "rebuild/StyleSheet.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/KeyWalk.h"
#include "db/sql/SqliteErrors.h"
#include "rebuild/PageText.h"
#include "rebuild/WebMail.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_map>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kProcedure = "MainBAS.FindReplaceCSSTags()";
constexpr std::string_view kWorkName = "~csstmp";
// A line of thousands of pairs would be written thousands of times: beyond this much only its last
// form is, which shows the same.
constexpr std::size_t kMostRepeated = 16U << 20;
/// Pictures that one sheet may bring: every mention is a copy.
constexpr std::size_t kMostPictures = 10'000;
constexpr std::array<std::string_view, 6> kPictures = {"gif", "jpg", "jpeg", "jpe", "bmp", "png"};

/// 1-based position of `c` after the 1-based `position`, or 0.
std::size_t behind(std::size_t position, std::string_view line, char c) {
    const std::size_t found = line.find(c, position);
    return found == std::string_view::npos ? 0 : found + 1;
}

std::string withoutQuotes(std::string_view text) {
    std::string plain;
    std::ranges::copy_if(text, std::back_inserter(plain),
                         [](char c) { return c != '\'' && c != ' ' && c != '"'; });
    return plain;
}

class SheetRewriting {
  public:
    /// `taken` is counted on by the names given.
    SheetRewriting(fs::path folder, const UrlRecord &sheet, const RebuildContext &ctx,
                   std::size_t &taken)
        : m_folder(std::move(folder)), m_sheet(sheet), m_ctx(ctx), m_taken(taken) {}

    void addLine(std::string line) {
        for (;;) {
            const std::size_t open = behind(m_close, line, '(');
            m_close = behind(open, line, ')');
            const bool isPair = open > 0 && m_close > open;
            if (isPair)
                replacePicture(line, open);
            if (!isPair || m_output.size() < kMostRepeated)
                m_output += line + "\r\n";
            if (!isPair)
                return;
        }
    }

    const std::string &output() const { return m_output; }
    std::size_t replaced() const { return m_replaced; }

  private:
    void replacePicture(std::string &line, std::size_t open) {
        const std::string inner =
            withoutQuotes(std::string_view(line).substr(open, m_close - open - 1));
        const std::string extension = getFileExtension(fromAnsi(inner));
        if (std::ranges::find(kPictures, extension) == kPictures.end() || isFull())
            return;
        const auto id = pictureOf(std::string(getFilenameFromPath(fromAnsi(inner))), extension);
        auto picture = id ? m_ctx.records.getURL(*id) : std::nullopt;
        if (!picture)
            return;
        const std::string name = fmt::format("_css{:07}.{}", ++m_taken, extension);
        ++m_replaced;
        const auto content = bodyOf(*picture, m_ctx.extraction(), 0);
        if (m_ctx.partFetched)
            m_ctx.partFetched(*picture, content ? &*content : nullptr);
        if (content)
            copyToScratch(content->file, m_folder / name);
        line = replaceAllText(line, inner, name);
        if (line.find(';') == std::string::npos)
            line += ';';
    }

    bool isFull() {
        if (m_replaced < kMostPictures)
            return false;
        if (!std::exchange(m_saidSo, true))
            m_ctx.log.write(
                {fmt::format("the style sheet of record {} names more than {} pictures; "
                             "the rest is left as it stands",
                             m_sheet.URLID, kMostPictures),
                 std::string(kProcedure), Severity::Low, std::string(kContactSupport)});
        return true;
    }

    std::optional<UrlId> pictureOf(const std::string &file, const std::string &extension) {
        const auto known = m_known.find(file);
        return known != m_known.end() ? known->second : m_known[file] = lookUp(file, extension);
    }

    /// The first record whose URL ends in the picture's file name, from the sheet's own host.
    std::optional<UrlId> lookUp(const std::string &file, const std::string &extension) const {
        std::string base = file;
        if (const std::string end = "." + extension; toLower(base).ends_with(end))
            base.resize(base.size() - end.size());
        SQLite::Statement row(m_ctx.project,
                              "SELECT URL_ID FROM URLs WHERE URL_ID >= ?1 AND URL LIKE ?2 AND "
                              "CacheFileName LIKE ?3 AND (Host = ?4 OR Host = ?5) ORDER BY URL_ID");
        row.bind(2, "%" + file);
        row.bind(3, base + "%." + extension);
        row.bind(4, m_sheet.host);
        row.bind(5, isWebMail(m_sheet.host) ? std::string(kWebMailParts) : m_sheet.host);
        // The search for the page's own parts has told of rows that can't be read.
        KeyWalk walk(m_ctx.project, row, [this](std::int64_t) { return m_ctx.task.advance(0.85); });
        if (walk.next() != KeyStep::Row)
            return std::nullopt;
        return UrlId{row.getColumn(0).getInt64()};
    }

    fs::path m_folder;
    const UrlRecord &m_sheet;
    const RebuildContext &m_ctx;
    std::size_t &m_taken;
    std::string m_output;
    std::unordered_map<std::string, std::optional<UrlId>> m_known; ///< by file name
    std::size_t m_replaced = 0;
    bool m_saidSo = false;
    std::size_t m_close = 0; ///< 1-based; where the search in the next line begins
};

void rewrite(const fs::path &path, const UrlRecord &sheet, const RebuildContext &ctx,
             std::size_t &taken) {
    if (!fs::exists(path))
        return;
    SheetRewriting rewriting(path.parent_path(), sheet, ctx, taken);
    const std::string text = readTextFile(path, LineBreaks::keep);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        rewriting.addLine(text.substr(at, end - at));
        at = end + 2;
    }
    const fs::path work = ctx.tempFolderPath / kWorkName;
    writeWhole(work, rewriting.output());
    if (rewriting.replaced() > 0)
        copyToScratch(work, path);
}

} // namespace

std::size_t findReplaceCSSTags(const fs::path &path, const UrlRecord &sheet,
                               const RebuildContext &ctx, std::size_t taken) {
    // After a failure too: pictures may lie there by then.
    trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport,
            [&] { onRow([&] { rewrite(path, sheet, ctx, taken); }); });
    return taken;
}

} // namespace nv
