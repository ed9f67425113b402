#include "support/WarcReading.h"

#include "base/Files.h"
#include "base/Text.h"
#include "support/Places.h"
#include "support/TempFolder.h"

#include <cstdlib>

namespace nv::test {

WarcReading::WarcReading(const std::filesystem::path &file) {
    const TempFolder said;
    const std::string out = said.path() / "out";
    const std::string err = said.path() / "err";
    const std::filesystem::path reader = goldenFolder().parent_path() / "support" / "read_warc.py";
    const std::string command = std::string("python3 \"") + reader.string() + "\" \"" +
                                file.string() + "\" >\"" + out + "\" 2>\"" + err + '"';
    const int exit = std::system(command.c_str());
    problem = ByteView(readWhole(err)).raw();
    if (exit != 0 && problem.empty())
        problem = "the reader could not be run";
    if (exit != 0)
        return;
    const Bytes lines = readWhole(out);
    for (const std::string_view line : split(ByteView(lines).raw(), '\n'))
        if (!line.empty())
            records.push_back(nlohmann::json::parse(line));
}

std::vector<nlohmann::json> WarcReading::of(const std::string &type) const {
    std::vector<nlohmann::json> found;
    for (const nlohmann::json &record : records)
        if (record.at("type") == type)
            found.push_back(record);
    return found;
}

nlohmann::json WarcReading::at(const std::string &type, const std::string &target) const {
    for (const nlohmann::json &record : records)
        if (record.at("type") == type && record.at("fields").value("WARC-Target-URI", "") == target)
            return record;
    return nullptr;
}

} // namespace nv::test
