// site.tsv = address TAB type TAB coding TAB body TAB group TAB shows
// body     = "file" NAME | "scene" NAME WIDTH | "tile" NAME | "sign" NAME | "font" | "sound"
//          | "moved" ADDRESS | "gone"             "unkept" before it: no cache has it

#include "support/builders/site/MadeSite.h"

#include "base/Files.h"
#include "base/Text.h"
#include "support/Places.h"
#include "support/builders/Packed.h"
#include "support/builders/site/SitePictures.h"
#include "support/builders/site/WebFont.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <ctime>
#include <fstream>
#include <stdexcept>

namespace nv::test {

namespace fs = std::filesystem;

namespace {

void put(std::string &bytes, std::uint32_t number, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

/// A stroke of a bell as a WAV file of one second.
std::string bell() {
    constexpr std::uint32_t kRate = 8000;
    std::string points;
    for (std::uint32_t i = 0; i < kRate; ++i) {
        const double time = static_cast<double>(i) / kRate;
        points +=
            static_cast<char>(std::lround(128 + 90 * std::exp(-4 * time) * std::sin(time * 4147)));
    }
    std::string bytes = "RIFF";
    put(bytes, static_cast<std::uint32_t>(36 + points.size()), 4);
    bytes += "WAVEfmt ";
    put(bytes, 16, 4);
    put(bytes, 1, 2);
    put(bytes, 1, 2);
    put(bytes, kRate, 4);
    put(bytes, kRate, 4);
    put(bytes, 1, 2);
    put(bytes, 8, 2);
    bytes += "data";
    put(bytes, static_cast<std::uint32_t>(points.size()), 4);
    return bytes + points;
}

std::string textOfFile(std::string_view name) {
    return std::string(ByteView(readWhole(siteFolder() / std::string(name))).raw());
}

/// Fills in what the words of the column "body" say.
void make(SiteAnswer &answer, const std::vector<std::string_view> &words) {
    const std::string_view kind = words.at(0);
    if (kind == "file")
        answer.body = textOfFile(words.at(1));
    else if (kind == "scene")
        answer.body = sceneOf(words.at(1), std::stoi(std::string(words.at(2))));
    else if (kind == "tile")
        answer.body = tileOf(words.at(1));
    else if (kind == "sign")
        answer.body = signOf(words.at(1));
    else if (kind == "font")
        answer.body = pierFont();
    else if (kind == "sound")
        answer.body = bell();
    else if (kind == "moved") {
        answer.status = 302;
        answer.location = words.at(1);
    } else if (kind == "gone") {
        answer.status = 404;
    } else {
        throw std::invalid_argument("site.tsv: no body " + std::string(kind));
    }
}

SiteAnswer answerOf(const std::string &line) {
    const std::vector<std::string_view> columns = split(line, '\t');
    SiteAnswer answer;
    answer.url = columns.at(0);
    answer.type = columns.at(1);
    answer.coding = columns.at(2);
    std::vector<std::string_view> words = split(columns.at(3), ' ');
    answer.isKept = words.at(0) != "unkept";
    if (!answer.isKept)
        words.erase(words.begin());
    if (columns.size() > 5) {
        answer.group = columns[4];
        answer.shows = columns[5];
    }
    make(answer, words);
    return answer;
}

std::string httpDate(std::int64_t unixSeconds) {
    const auto time = static_cast<std::time_t>(unixSeconds);
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::array<char, 40> text{};
    const std::size_t size =
        std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts);
    return {text.data(), size};
}

} // namespace

std::string SiteAnswer::sent() const {
    if (coding == "gzip")
        return gzip(body);
    if (coding == "br")
        return brotli(body);
    if (coding == "zstd")
        return zstd(body);
    if (coding == "deflate")
        return zlibDeflate(body);
    if (coding == "raw deflate")
        return rawDeflate(body);
    return body;
}

std::vector<std::string> SiteAnswer::head(std::int64_t unixSeconds) const {
    std::vector<std::string> lines;
    lines.emplace_back(status == 200   ? "HTTP/1.1 200 OK"
                       : status == 302 ? "HTTP/1.1 302 Found"
                                       : "HTTP/1.1 404 Not Found");
    lines.push_back("Date: " + httpDate(unixSeconds));
    lines.emplace_back("Server: quay/1.4");
    if (!type.empty())
        lines.push_back("Content-Type: " + type);
    if (!coding.empty())
        lines.push_back(std::string("Content-Encoding: ") +
                        (coding == "raw deflate" ? "deflate" : coding));
    if (!location.empty())
        lines.push_back("Location: " + location);
    lines.push_back(fmt::format("Content-Length: {}", sent().size()));
    lines.emplace_back("Cache-Control: max-age=86400");
    lines.emplace_back("Access-Control-Allow-Origin: *");
    return lines;
}

MadeSite madeSite() {
    MadeSite site;
    std::ifstream list(siteFolder() / "site.tsv");
    for (std::string line; std::getline(list, line);)
        if (!line.empty() && line.front() != '#')
            site.push_back(answerOf(line));
    if (site.empty())
        throw std::runtime_error("there is no list of the made site");
    return site;
}

MadeSite partOf(const MadeSite &site, std::string_view host) {
    MadeSite part;
    for (const SiteAnswer &answer : site)
        if (split(answer.url, '/').at(2).ends_with(host))
            part.push_back(answer);
    return part;
}

void writeForServer(const MadeSite &site, const fs::path &folder) {
    constexpr std::int64_t kNoon = 1792238400; // 2026-10-17 12:00:00 UTC
    fs::create_directories(folder);
    std::string list;
    for (std::size_t i = 0; i < site.size(); ++i) {
        const SiteAnswer &answer = site[i];
        writeWhole(folder / std::to_string(i), answer.sent());
        list += fmt::format("{}\t{}\t{}\t{}\t{}", i, answer.status, answer.url, answer.group,
                            answer.shows);
        const std::vector<std::string> head = answer.head(kNoon);
        for (std::size_t line = 1; line < head.size(); ++line)
            list += '\t' + head[line];
        list += '\n';
    }
    writeWhole(folder / "answers.tsv", list);
}

} // namespace nv::test
