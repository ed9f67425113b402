#include "app/program/TempFolder.h"

#include "base/Files.h"

#include <fmt/format.h>

#include <string_view>

namespace nv {

namespace {

constexpr std::string_view kPage = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>{0}</title>
<style>body{{font-family:sans-serif;margin:3em;color:#333}}</style></head>
<body><h1>{0}</h1><p>{1}</p></body></html>
)";

void replacePage(const std::filesystem::path &path, std::string_view title, std::string_view text) {
    std::filesystem::remove(path);
    writeWhole(path, fmt::format(kPage, title, text));
}

} // namespace

TempFileNames tempFileNames(const std::filesystem::path &scratchFolder) {
    return {scratchFolder / "~tmp",
            scratchFolder / "~blob",
            scratchFolder / "~badurl.htm",
            scratchFolder / "~badreport.htm",
            scratchFolder / "~pleasewait.htm",
            scratchFolder / "~cmdtemp.nvp"};
}

void writeScratchPages(const TempFileNames &names) {
    replacePage(names.badUrl, "Nothing to show",
                "The content of this record is not in the evidence, or it can't be shown here.");
    replacePage(names.badReport, "No report yet",
                "Choose the rows and then Report in the main menu to make one.");
    replacePage(names.pleaseWait, "Please wait", "The page is being prepared.");
}

} // namespace nv
