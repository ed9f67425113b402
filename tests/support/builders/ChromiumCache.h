#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

// Chromium's caches since 2012, made from their layouts. Texts are raw bytes, times microseconds
// since 1601.

/// The head of an answer as all of them store it.
struct ChromiumAnswer {
    std::vector<std::string> lines = {"HTTP/1.1 200 OK", "Content-Type: text/plain"};
    std::int64_t requested = 0;
    std::int64_t answered = 0;
    std::optional<std::int64_t> first{};
    std::string certificate{};
    std::string server = "192.0.2.7";
    std::uint32_t port = 443;
    bool isTruncated = false;

    std::string bytes() const;
};

/// The browser's hash of a key.
std::uint32_t chromiumKeyHash(std::string_view key);

/// Makes the files of a Simple cache.
class SimpleCacheFiles {
  public:
    struct Stretch {
        std::int64_t offset = 0;
        std::string bytes{};
        std::optional<std::int64_t> length{}; ///< where it isn't that of the bytes
    };

    /// Adds "HASH_0" and lists it.
    SimpleCacheFiles &add(std::uint64_t hash, const std::string &key, const std::string &head,
                          const std::string &body, std::int64_t lastUsed = 1);
    SimpleCacheFiles &addStretches(std::uint64_t hash, const std::string &key,
                                   const std::vector<Stretch> &stretches);
    SimpleCacheFiles &list(std::uint64_t hash, std::int64_t lastUsed);

    /// The bytes of a file, to be damaged.
    std::string &file(const std::string &name) { return m_files.at(name); }
    void rename(const std::string &from, const std::string &to);
    void remove(const std::string &name) { m_files.erase(name); }
    /// Writes all files, with the list unless there is one among them.
    void write(const std::filesystem::path &folder, bool withList = true) const;

    static std::string name(std::uint64_t hash, char part);

  private:
    std::string listBytes() const;

    std::map<std::string, std::string> m_files;
    std::vector<std::pair<std::uint64_t, std::int64_t>> m_listed;
};

} // namespace nv::test
