// The URL standard's own cases, read from the folder that NV_STANDARDS names.
// docs/formats/addresses.md says how many hold.

#include "address/WebAddress.h"
#include "base/Files.h"
#include "support/Samples.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace nv {
namespace {

using nlohmann::json;

class UrlCases : public testing::Test {
  protected:
    void SetUp() override {
        const auto folder = test::standardsFolder();
        if (!folder)
            GTEST_SKIP() << "no folder of the standards' cases: NV_STANDARDS names it";
        m_folder = *folder / "url";
    }
    /// Without the comments that stand between the cases.
    json casesOf(const char *file) const {
        const Bytes bytes = readWhole(m_folder / file);
        json cases = json::array();
        for (const json &row : json::parse(ByteView(bytes).raw()))
            if (row.is_object())
                cases.push_back(row);
        return cases;
    }

  private:
    std::filesystem::path m_folder;
};

std::string textOf(const json &row, const char *key) {
    return row.contains(key) && row[key].is_string() ? row[key].get<std::string>() : std::string();
}

/// By the names that scripts of pages know.
json partsOf(const WebAddress &address) {
    const std::string port = address.port() ? std::to_string(*address.port()) : std::string();
    const auto behind = [](char sign, const std::optional<std::string> &part) {
        return part.value_or("").empty() ? std::string() : sign + *part;
    };
    return {{"href", address.href()},
            {"protocol", address.scheme() + ":"},
            {"username", address.username()},
            {"password", address.password()},
            {"host", address.host() + (port.empty() ? "" : ":" + port)},
            {"hostname", address.host()},
            {"port", port},
            {"pathname", address.path()},
            {"search", behind('?', address.query())},
            {"hash", behind('#', address.fragment())},
            {"origin", address.origin()}};
}

std::optional<WebAddress> parsedCase(const json &row) {
    const std::string baseText = textOf(row, "base");
    const auto base = WebAddress::parsed(baseText);
    const bool hasBase = row["base"].is_string();
    EXPECT_TRUE(base || !hasBase) << row;
    return WebAddress::parsed(textOf(row, "input"), hasBase && base ? &*base : nullptr);
}

TEST_F(UrlCases, addresses) {
    const json cases = casesOf("urltestdata.json");
    EXPECT_GE(cases.size(), 891U);
    for (const json &row : cases) {
        const auto address = parsedCase(row);
        EXPECT_EQ(!address, row.value("failure", false)) << row;
        if (!address)
            continue;
        const json parts = partsOf(*address);
        for (const auto &[key, value] : parts.items()) {
            if (row.contains(key)) {
                EXPECT_EQ(value, row[key]) << key << " of " << row;
            }
        }
        EXPECT_EQ(WebAddress::parsed(address->href()), address) << row;
    }
}

TEST_F(UrlCases, hosts) {
    const json cases = casesOf("toascii.json");
    EXPECT_GE(cases.size(), 87U);
    for (const json &row : cases) {
        const auto address = WebAddress::parsed("https://" + textOf(row, "input") + "/x");
        EXPECT_EQ(address.has_value(), row["output"].is_string()) << row;
        EXPECT_EQ(address ? address->host() : "", textOf(row, "output")) << row;
    }
}

TEST_F(UrlCases, charsetsOfQueries) {
    const json cases = casesOf("percent-encoding.json");
    EXPECT_GE(cases.size(), 7U);
    for (const json &row : cases)
        for (const auto &[charset, expected] : row["output"].items()) {
            const auto address = WebAddress::parsed("https://example.org/?" + textOf(row, "input"),
                                                    nullptr, charset);
            ASSERT_TRUE(address) << row;
            EXPECT_EQ(address->query(), expected.get<std::string>()) << charset << " of " << row;
        }
}

} // namespace
} // namespace nv
