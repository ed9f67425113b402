#include "app/TempFolder.h"

#include "base/Files.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

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

TempFileNames tempFileNames(const std::filesystem::path &tempFolder) {
    return {
        tempFolder / "~tmp",           tempFolder / "~blob",           tempFolder / "~badurl.htm",
        tempFolder / "~badreport.htm", tempFolder / "~pleasewait.htm", tempFolder / "~cmdtemp.nvp"};
}

void EmptyTempFolder(const std::filesystem::path &tempFolder, TaskMonitor &task) {
    task.describe({"EMPTYING CONTENTS OF TEMP FOLDER", "", "", ""});
    std::vector<std::filesystem::path> entries;
    for (const auto &entry : std::filesystem::directory_iterator(tempFolder))
        entries.push_back(entry.path());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!task.advance(static_cast<double>(i) / static_cast<double>(entries.size())))
            return;
        if (task.wantsStep())
            task.show({fmt::format("Deleting {} of {}...", i + 1, entries.size()),
                       static_cast<std::int64_t>(i + 1), static_cast<std::int64_t>(entries.size()),
                       "", 0, 0});
        std::filesystem::remove_all(entries[i]);
    }
}

void WriteScratchPages(const TempFileNames &names) {
    replacePage(names.badUrl, "Nothing to show",
                "The content of this record is not in the evidence, or it can't be shown here.");
    replacePage(names.badReport, "No report yet",
                "Choose the rows and then Report in the main menu to make one.");
    replacePage(names.pleaseWait, "Please wait", "The page is being prepared.");
}

} // namespace nv
