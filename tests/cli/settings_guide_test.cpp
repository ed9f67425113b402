// What the guides say of settings, held against the table of them.
#include "app/settings/Settings.h"
#include "base/Files.h"
#include "base/Text.h"
#include "support/Places.h"
#include "support/SettingOfTheGuide.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cctype>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

fs::path root() {
    return test::readmeFile().parent_path();
}

std::string doc(std::string_view name) {
    const Bytes bytes = readWhole(root() / "docs" / name);
    return std::string(ByteView(bytes).raw());
}

std::string withoutBlanks(std::string_view text) {
    std::string bare(text);
    std::erase_if(bare, [](unsigned char c) { return std::isspace(c); });
    return bare;
}

TEST(SettingsGuideTest, theGuidesRowIsTheOneThatIsTried) {
    const std::string guide = doc("adding-a-setting.md");
    const std::size_t begin = guide.find("```cpp") + 6;
    EXPECT_EQ(withoutBlanks(guide.substr(begin, guide.find("```", begin) - begin)),
              withoutBlanks(setting::kTextOfTheGuide));
}

TEST(SettingsGuideTest, theGuideForSettingsNamesWhatIsThere) {
    const std::string guide = doc("adding-a-setting.md");
    const fs::path tree = root();
    int named = 0;
    for (const char *start : {"src/", "docs/"})
        for (std::size_t at = guide.find(fmt::format("`{}", start)); at != std::string::npos;
             at = guide.find(fmt::format("`{}", start), at + 1), ++named) {
            const std::string path = guide.substr(at + 1, guide.find('`', at + 1) - at - 1);
            EXPECT_TRUE(fs::is_regular_file(tree / path)) << path;
        }
    EXPECT_GE(named, 6);
}

TEST(SettingsGuideTest, theGuideOfOptionsTellsOfEachControl) {
    const std::string page = doc("guide/options.md");
    int controls = 0;
    for (const SettingFacts &row : settingsTable()) {
        if (!row.control.name)
            continue;
        std::string label = replaceAll(row.control.label, "&", "");
        if (label.starts_with("Include ")) // two of them share a line
            label = label.substr(8);
        EXPECT_THAT(page, HasSubstr(label)) << fullName(row);
        ++controls;
    }
    EXPECT_GE(controls, 10);
}

std::string valuesOf(const SettingFacts &row) {
    switch (row.kind) {
    case SettingKind::flag:
        return "True or False";
    case SettingKind::number:
        return fmt::format("{} to {}", row.least, row.most);
    case SettingKind::choice:
        return replaceAll(row.choices, ";", ", ");
    case SettingKind::file:
        return "a file";
    case SettingKind::folder:
    case SettingKind::tempFolder:
    case SettingKind::baseFolder:
        return "a folder";
    case SettingKind::zone:
        return "a zone's number or name";
    case SettingKind::text:
        break;
    }
    return "text";
}

std::string defaultShown(const SettingFacts &row) {
    const auto code = [](std::string_view text) {
        return text.empty() ? std::string() : fmt::format("`{}`", text);
    };
    std::string text = code(row.byDefault);
    if (!row.offered.empty())
        text += ", in Options " + code(row.offered);
    if (!row.whenEmptied.empty())
        text += ", when its box is emptied " + code(row.whenEmptied);
    return text;
}

std::string settingsPage() {
    std::string page =
        "# All settings\n\n"
        "What stands in the settings file `Norvelane.ini`. [Options](options.md) shows most of it; "
        "`norvelane-cli options set` changes each\n"
        "after a check, and [`options get`](command-line.md) tells the values in force. A default "
        "may lie in the folder of what the examiner adds\n"
        "(`<home>`), of logs and scratch files (`<state>`) or beside the program (`<program>`). "
        "What "
        "windows keep for themselves, such as their\n"
        "places, stands in the section BEYOND too.\n";
    std::string_view section;
    for (const SettingFacts &row : settingsTable()) {
        if (row.section != section)
            page += fmt::format("\n## [{}]\n\n| Key | Value | Default | What it changes |\n"
                                "|---|---|---|---|\n",
                                row.section);
        section = row.section;
        page += fmt::format("| {} | {} | {} | {} |\n", row.key, valuesOf(row), defaultShown(row),
                            row.what);
    }
    return page;
}

TEST(SettingsGuideTest, theGuidesListIsTheTable) {
    const std::string page = settingsPage();
    if (page == doc("guide/settings.md"))
        return;
    const fs::path written = test::manualFile().parent_path() / "settings.md";
    writeWhole(written, page);
    FAIL() << "docs/guide/settings.md isn't the table of settings: copy " << written;
}

} // namespace
} // namespace nv
