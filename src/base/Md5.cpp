#include "base/Md5.h"

#include "base/Files.h"
#include "base/Text.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace nv {

namespace {

/// Fetched once: looking the algorithm up costs more than hashing a URL with it.
const EVP_MD *algorithm() {
    static const std::unique_ptr<EVP_MD, decltype(&EVP_MD_free)> md5(
        EVP_MD_fetch(nullptr, "MD5", nullptr), &EVP_MD_free);
    if (!md5)
        throw std::runtime_error("the cryptographic library offers no MD5");
    return md5.get();
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

struct Md5::Context {
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> evp{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
    void start() const { EVP_DigestInit_ex2(evp.get(), algorithm(), nullptr); }
};

Md5::Md5() : m_context(std::make_unique<Context>()) {
    m_context->start();
}
Md5::~Md5() = default;

void Md5::add(std::string_view bytes) {
    EVP_DigestUpdate(m_context->evp.get(), bytes.data(), bytes.size());
}

std::string Md5::takeHex() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    EVP_DigestFinal_ex(m_context->evp.get(), digest.data(), &size);
    m_context->start();
    return hexOf(digest, size);
}

std::string md5Hex(std::string_view bytes) {
    thread_local Md5 hash;
    hash.add(bytes);
    return hash.takeHex();
}

std::optional<std::string> FileMD5(const std::filesystem::path &path,
                                   const std::function<bool(std::uint64_t)> &goOn) {
    Md5 hash;
    const bool whole = readInBlocks(path, [&](std::string_view block, std::uint64_t readSoFar) {
        hash.add(block);
        return !goOn || goOn(readSoFar);
    });
    return whole ? std::optional(hash.takeHex()) : std::nullopt;
}

std::string hashOfUrl(std::string_view url) {
    return md5Hex(toAnsi(url));
}

} // namespace nv
