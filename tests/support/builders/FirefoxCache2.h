#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nv::test {

/// One entry of Firefox's cache2, as one file. Texts are raw bytes.
struct FirefoxCache2Entry {
    std::string key = ":https://host.example/page.html";
    std::string body = "<html>page</html>";
    std::string headers = "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\n";
    std::vector<std::pair<std::string, std::string>> elements = {}; ///< behind the headers
    std::string alternative = {};                                   ///< what stands behind the body
    std::uint32_t version = 4;
    std::uint32_t fetchCount = 3;
    std::uint32_t fetched = 1700000000; ///< seconds since 1970: 2023-11-14 22:13:20
    std::uint32_t modified = 1699999999;
    std::uint32_t frecency = 1234;
    std::uint32_t expires = 0xFFFFFFFF;
    std::uint32_t flags = 0;
    bool hasVersionAtEnd = true; ///< as late browsers write it

    /// 40 digits of the key's SHA-1.
    std::string name() const;
    std::string bytes() const;
    /// Below a folder of entries, which is made. Returns the file's path.
    std::filesystem::path writeTo(const std::filesystem::path &folder) const;
};

} // namespace nv::test
