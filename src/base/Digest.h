#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

class FileReader;

enum class DigestAlgorithm { md5, sha1, sha256 };

/// A digest over bytes that arrive in pieces. Hexadecimal results are lower-case.
class Digest {
  public:
    explicit Digest(DigestAlgorithm algorithm);
    ~Digest();
    Digest(const Digest &) = delete;
    Digest &operator=(const Digest &) = delete;

    void add(std::string_view bytes);
    /// The digest so far; the object then starts anew.
    [[nodiscard]] std::string takeHex();

  private:
    struct Context;
    std::unique_ptr<Context> m_context;
};

/// What tells whether a file is still the one that was examined: MD5 for comparing with other
/// tools, SHA-256 since MD5s can be forged.
struct FileHashes {
    std::string md5;
    std::string sha256;
    std::uint64_t size = 0; ///< bytes that were hashed

    bool operator==(const FileHashes &) const = default;
};

/// Both over the bytes of a file that arrives in blocks.
class FileHashing {
  public:
    void add(std::string_view block) {
        m_md5.add(block);
        m_sha256.add(block);
        m_size += block.size();
    }
    std::uint64_t size() const { return m_size; }
    [[nodiscard]] FileHashes take() { return {m_md5.takeHex(), m_sha256.takeHex(), m_size}; }

  private:
    Digest m_md5{DigestAlgorithm::md5};
    Digest m_sha256{DigestAlgorithm::sha256};
    std::uint64_t m_size = 0; ///< bytes
};

/// Both of a whole file, which is read once in blocks. `goOn` is asked after each block with the
/// number of bytes read so far; false ends the reading and gives nothing. Throws FileFailure.
[[nodiscard]] std::optional<FileHashes>
hashesOfFile(const std::filesystem::path &path,
             const std::function<bool(std::uint64_t)> &goOn = {});
/// The same of a file that is open already.
[[nodiscard]] std::optional<FileHashes>
hashesOfFile(const FileReader &file, const std::function<bool(std::uint64_t)> &goOn = {});

} // namespace nv
