#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace nv::test {

/// The records of an archive as a reader of its own finds them (read_warc.py), which checks it by
/// the standard. A file that breaks it gives none, and what the reader said in `problem`.
struct WarcReading {
    explicit WarcReading(const std::filesystem::path &file);

    /// Those of a type, in their order.
    std::vector<nlohmann::json> of(const std::string &type) const;
    /// The first one of a type with that address; null when there is none.
    nlohmann::json at(const std::string &type, const std::string &target) const;

    std::vector<nlohmann::json> records;
    std::string problem;
};

} // namespace nv::test
