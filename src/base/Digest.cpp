#include "base/Digest.h"

#include "base/Files.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace nv {

namespace {

using Fetched = std::unique_ptr<EVP_MD, decltype(&EVP_MD_free)>;

Fetched fetch(const char *name) {
    Fetched algorithm(EVP_MD_fetch(nullptr, name, nullptr), &EVP_MD_free);
    if (!algorithm)
        throw std::runtime_error(std::string("the cryptographic library offers no ") + name);
    return algorithm;
}

/// Fetched once: looking an algorithm up costs more than hashing a URL with it.
const EVP_MD *fetched(DigestAlgorithm algorithm) {
    if (algorithm == DigestAlgorithm::md5) {
        static const Fetched md5 = fetch("MD5");
        return md5.get();
    }
    if (algorithm == DigestAlgorithm::sha1) {
        static const Fetched sha1 = fetch("SHA1");
        return sha1.get();
    }
    static const Fetched sha256 = fetch("SHA256");
    return sha256.get();
}

std::string hexOf(const std::array<unsigned char, EVP_MAX_MD_SIZE> &digest, unsigned size) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string hex;
    hex.reserve(std::size_t{size} * 2);
    for (unsigned i = 0; i < size; ++i) {
        hex.push_back(kDigits[digest[i] >> 4]);
        hex.push_back(kDigits[digest[i] & 0xF]);
    }
    return hex;
}

} // namespace

struct Digest::Context {
    const EVP_MD *algorithm = nullptr;
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> evp{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
    void start() const { EVP_DigestInit_ex2(evp.get(), algorithm, nullptr); }
};

Digest::Digest(DigestAlgorithm algorithm) : m_context(std::make_unique<Context>()) {
    m_context->algorithm = fetched(algorithm);
    m_context->start();
}
Digest::~Digest() = default;

void Digest::add(std::string_view bytes) {
    EVP_DigestUpdate(m_context->evp.get(), bytes.data(), bytes.size());
}

std::string Digest::takeHex() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    EVP_DigestFinal_ex(m_context->evp.get(), digest.data(), &size);
    m_context->start();
    return hexOf(digest, size);
}

namespace {

constexpr std::uint64_t kBlock = std::uint64_t{1} << 20; ///< bytes

} // namespace

std::optional<FileHashes> hashesOfFile(const std::filesystem::path &path,
                                       const std::function<bool(std::uint64_t)> &goOn) {
    FileHashing hashes;
    const bool whole = readInBlocks(path, [&](std::string_view block, std::uint64_t readSoFar) {
        hashes.add(block);
        return !goOn || goOn(readSoFar);
    });
    return whole ? std::optional(hashes.take()) : std::nullopt;
}

std::optional<FileHashes> hashesOfFile(const FileReader &file,
                                       const std::function<bool(std::uint64_t)> &goOn) {
    FileHashing hashes;
    for (Bytes block = file.read(0, kBlock); !block.empty();
         block = file.read(hashes.size(), kBlock)) {
        hashes.add(ByteView(block).raw());
        if (goOn && !goOn(hashes.size()))
            return std::nullopt;
    }
    return hashes.take();
}

} // namespace nv
