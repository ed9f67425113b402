#include "reports/report/ImportPage.h"

#include "base/Grouped.h"
#include "base/OneLine.h"
#include "base/Paths.h"
#include "reports/pages/PolicyHash.h"
#include "reports/report/Html.h"
#include "time/DateFormat.h"
#include "views/overview/LightColors.h"

#include <fmt/format.h>

#include <array>

namespace nv {

namespace {

/// A page of more would hardly open.
constexpr std::size_t kMostGaps = 20'000;

constexpr std::array kLights = {ImportLight::green, ImportLight::amber, ImportLight::red};

constexpr std::string_view kStyle = R"css(
:root{color-scheme:light dark;--ground:#fff;--text:#1b1f24;--dim:#57606a;--line:#d0d7de;--soft:#f6f8fa}
@media(prefers-color-scheme:dark){:root{--ground:#14181d;--text:#e6e9ec;--dim:#a0a8b0;--line:#38414a;--soft:#1d232a}}
*{box-sizing:border-box}
body{margin:0 auto;max-width:70rem;padding:1.2rem 1.6rem;font:15px/1.45 system-ui,"Segoe UI",Roboto,"DejaVu Sans",sans-serif;
color:var(--text);background:var(--ground)}
h1{font-size:1.5rem;line-height:1.25;margin:.2rem 0 .8rem;overflow-wrap:anywhere}
h2{font-size:1.15rem;margin:1.6rem 0 .5rem;border-bottom:1px solid var(--line);padding-bottom:.2rem}
dl{display:grid;grid-template-columns:max-content minmax(0,1fr);gap:.2rem 1rem;margin:.8rem 0}
dt{color:var(--dim)}
dd{margin:0;overflow-wrap:anywhere}
.light{display:flex;gap:.8rem;align-items:center;border:2px solid currentColor;border-radius:6px;padding:.6rem .9rem;margin:0}
.light b{display:inline-block;min-width:2rem;height:2rem;line-height:1.8rem;border:2px solid currentColor;border-radius:50%;
text-align:center;font-size:1.1rem;flex:none}
.light span{min-width:0;overflow-wrap:anywhere}
table{border-collapse:collapse;width:100%;font-size:13px}
th,td{border-bottom:1px solid var(--line);padding:.3rem .45rem;text-align:left;vertical-align:top;overflow-wrap:anywhere}
th{background:var(--soft)}
.w{width:20%}
.s{white-space:nowrap}
.n{text-align:right;font-variant-numeric:tabular-nums;white-space:nowrap}
.u{font-family:ui-monospace,"DejaVu Sans Mono",Consolas,monospace;font-size:.92em}
footer{margin-top:2rem;color:var(--dim);font-size:12px;border-top:1px solid var(--line);padding-top:.5rem}
@media(max-width:760px){
body{padding:.8rem}
dl{grid-template-columns:minmax(0,1fr);gap:0}
dd{margin-bottom:.4rem}
thead{display:none}
table,tbody,tr,td{display:block;width:auto}
tr{border:1px solid var(--line);border-radius:4px;margin:0 0 .5rem;padding:.2rem}
td{border:0;padding:.1rem .3rem}
.n{text-align:left}
td[data-h]::before{content:attr(data-h) ": ";color:var(--dim)}
td:empty{display:none}
}
@page{margin:14mm 12mm}
@media print{
:root{color-scheme:light;--ground:#fff;--text:#000;--dim:#444;--line:#999;--soft:#f2f2f2}
body{padding:0;max-width:none;font-size:9.5pt}
table{font-size:8pt}
thead{display:table-header-group}
tr,dl>*,.light{break-inside:avoid}
h2{break-after:avoid}
.light{color:#000!important;background:#fff!important}
}
)css";

std::string className(ImportLight light) {
    return fmt::format("l{}", static_cast<int>(light));
}

/// With the colours of the lights, which the window paints alike.
const std::string &style() {
    static const std::string whole = [] {
        std::string light;
        std::string dark;
        for (const ImportLight each : kLights) {
            const auto rule = [each](bool isDark) {
                const LightColors colors = lightColors(each, isDark);
                return fmt::format(".{}{{color:#{:06x};background:#{:06x}}}\n", className(each),
                                   colors.text, colors.ground);
            };
            light += rule(false);
            dark += rule(true);
        }
        return fmt::format("\n{}@media(prefers-color-scheme:dark){{\n{}}}{}", light, dark, kStyle);
    }();
    return whole;
}

std::string field(std::string_view name, std::string_view value) {
    return value.empty() ? std::string()
                         : fmt::format("<dt>{}</dt><dd>{}</dd>\n", name, htmlText(value));
}

std::string cell(std::string_view heading, std::string_view value, std::string_view kind = {}) {
    const std::string name = kind.empty() ? std::string() : fmt::format(" class=\"{}\"", kind);
    if (value.empty())
        return "<td></td>"; // which narrow pages leave out
    return fmt::format("<td data-h=\"{}\"{}><bdi>{}</bdi></td>", heading, name, htmlText(value));
}

std::string head(std::string_view headings) {
    return fmt::format("<table><thead><tr>{}</tr></thead>\n<tbody>\n", headings);
}

/// Nothing to tell apart: one entry without a name.
bool saysNothing(const std::vector<ImportCount> &counts) {
    return counts.empty() || (counts.size() == 1 && counts.front().name.empty());
}

std::string nameOf(const ImportCount &count) {
    return count.name.empty() ? "(not known)" : count.name;
}

std::string countsSection(std::string_view heading, std::string_view column,
                          const std::vector<ImportCount> &counts) {
    if (saysNothing(counts))
        return {};
    std::string text = fmt::format(
        "<h2>{}</h2>\n{}", heading,
        head(fmt::format("<th scope=\"col\">{}</th><th scope=\"col\" class=\"n\">Records</th>"
                         "<th scope=\"col\">First event (UTC)</th>"
                         "<th scope=\"col\">Last event (UTC)</th>",
                         column)));
    for (const ImportCount &count : counts)
        text += "<tr>" + cell(column, nameOf(count)) +
                cell("Records", grouped(count.rows.rows), "n") +
                cell("First event (UTC)", isoUtc(count.rows.first)) +
                cell("Last event (UTC)", isoUtc(count.rows.last)) + "</tr>\n";
    return text + "</tbody></table>\n";
}

std::string gapsSection(const ImportOverview &overview) {
    std::string text = "<h2>What was not read, or only in part</h2>\n";
    if (overview.gaps.empty())
        return text + "<p>Nothing: each file that was found was read to its end.</p>\n";
    text += head("<th scope=\"col\" class=\"w\">File</th><th scope=\"col\">What</th><th "
                 "scope=\"col\">Why</th>"
                 "<th scope=\"col\">Place</th>");
    for (std::size_t at = 0; at < overview.gaps.size() && at < kMostGaps; ++at) {
        const ImportGap &gap = overview.gaps[at];
        text += "<tr>" + cell("File", gap.file, "u") +
                cell("What", fmt::format("{} {}", lightSign(gap.light), gap.state), "s") +
                cell("Why", gap.reason) + cell("Place", gap.place, "u") + "</tr>\n";
    }
    text += "</tbody></table>\n";
    if (overview.gaps.size() > kMostGaps)
        text += fmt::format("<p>{} more stand in the case trail.</p>\n",
                            grouped(overview.gaps.size() - kMostGaps));
    return text;
}

std::string notesSection(const ImportOverview &overview) {
    std::string items;
    for (const std::string &note : notesOf(overview))
        items += fmt::format("<li>{}</li>\n", htmlText(note));
    return items.empty() ? items : fmt::format("<h2>Also to know</h2>\n<ul>\n{}</ul>\n", items);
}

std::string lightBox(const ImportOverview &overview) {
    const ImportLight light = lightOf(overview);
    return fmt::format("<p class=\"light {}\"><b aria-hidden=\"true\">{}</b><span><strong>{}."
                       "</strong> {}</span></p>\n",
                       className(light), lightSign(light), lightWord(light),
                       htmlText(lightText(overview)));
}

std::string countLines(std::string_view heading, const std::vector<ImportCount> &counts) {
    if (saysNothing(counts))
        return {};
    std::string text = fmt::format("{}\n", heading);
    for (const ImportCount &count : counts)
        text += fmt::format("{:>12}  {}\n", grouped(count.rows.rows), oneLine(nameOf(count)));
    return text;
}

} // namespace

std::string importPage(const ImportOverview &overview, const ImportPageFacts &facts) {
    const std::string title = "Summary of the import - " + htmlText(facts.project);
    std::string page = fmt::format(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src {}; "
        "base-uri 'none'; form-action 'none'\">\n"
        "<meta name=\"referrer\" content=\"no-referrer\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>{}</title>\n<style>{}</style>\n</head>\n<body>\n<main>\n",
        policyHash(style()), title, style());
    page += fmt::format("<h1>{}</h1>\n", htmlText(headlineOf(overview))) + lightBox(overview);
    page += "<dl>\n" + field("Project", facts.project) +
            field("Import ended (UTC)", isoUtc(overview.ended)) +
            field("Imported by version", overview.version) +
            field("Events (UTC)", spanText(overview.rows)) +
            field("Files found", grouped(overview.found)) +
            field("Read to the end", grouped(overview.read)) + "</dl>\n";
    page += gapsSection(overview);
    page += countsSection("People", "Person", overview.people);
    page += countsSection("Browsers", "Browser", overview.browsers);
    page += countsSection("Profiles", "Profile", overview.profiles);
    page += countsSection("Kinds of records", "Kind", overview.kinds);
    page += notesSection(overview);
    page += fmt::format("</main>\n<footer>{}. Made with Norvelane {}. Nothing in this page leads "
                        "out of it.</footer>\n</body>\n</html>\n",
                        title, htmlText(facts.version));
    return page;
}

std::string importText(const ImportOverview &overview) {
    const ImportLight light = lightOf(overview);
    std::string text = headlineOf(overview) + '\n';
    text += fmt::format("{} {}. {}\n", lightSign(light), lightWord(light), lightText(overview));
    if (const std::string span = spanText(overview.rows); !span.empty())
        text += fmt::format("Events from {}\n", span);
    text += countLines("People", overview.people) + countLines("Browsers", overview.browsers) +
            countLines("Profiles", overview.profiles) + countLines("Kinds", overview.kinds);
    if (!overview.gaps.empty())
        text += "Not read, or only in part\n";
    for (const ImportGap &gap : overview.gaps)
        text += fmt::format("{} {:<12} {}/{}\n    {}\n", lightSign(gap.light), gap.state,
                            oneLine(gap.place), oneLine(gap.file), oneLine(gap.reason));
    for (const std::string &note : notesOf(overview))
        text += oneLine(note) + '\n';
    return text;
}

} // namespace nv
