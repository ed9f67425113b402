// Value = "v" digit digit bytes
//   v10 of Linux: AES-128-CBC, PKCS#7, 16 blanks before the first block, and as key
//   PBKDF2-HMAC-SHA1("peanuts", "saltysalt", 1 round, 16 bytes).

#include "readers/chrome/profile/ValueCipher.h"

#include "base/Text.h"

#include <fmt/format.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::size_t kVersionLength = 3;
constexpr std::size_t kBlock = 16; // bytes; those of the key too

using Block = std::array<unsigned char, kBlock>;
using Cipher = std::unique_ptr<EVP_CIPHER, decltype(&EVP_CIPHER_free)>;
using Context = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

/// Made once: deriving it costs more than decrypting a value.
const Block &publicKey() {
    static const Block key = [] {
        constexpr std::string_view kPassword = "peanuts";
        constexpr std::string_view kSalt = "saltysalt";
        std::array<unsigned char, kSalt.size()> salt{};
        std::ranges::copy(kSalt, salt.begin());
        Block derived{};
        if (PKCS5_PBKDF2_HMAC_SHA1(kPassword.data(), static_cast<int>(kPassword.size()),
                                   salt.data(), static_cast<int>(salt.size()), 1,
                                   static_cast<int>(derived.size()), derived.data()) != 1)
            throw std::runtime_error("the cryptographic library derives no key");
        return derived;
    }();
    return key;
}

const EVP_CIPHER *cipher() {
    static const Cipher fetched(EVP_CIPHER_fetch(nullptr, "AES-128-CBC", nullptr),
                                &EVP_CIPHER_free);
    if (!fetched)
        throw std::runtime_error("the cryptographic library offers no AES-128-CBC");
    return fetched.get();
}

/// Nothing when the last block doesn't end as a sound one does.
std::optional<std::string> decrypted(ByteView blocks) {
    Block blanks;
    blanks.fill(' ');
    const Context context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    Bytes plain(blocks.size() + kBlock);
    const Bytes stored(blocks.raw().begin(), blocks.raw().end());
    int length = 0;
    int last = 0;
    if (!context ||
        EVP_DecryptInit_ex2(context.get(), cipher(), publicKey().data(), blanks.data(), nullptr) !=
            1 ||
        EVP_DecryptUpdate(context.get(), plain.data(), &length, stored.data(),
                          static_cast<int>(stored.size())) != 1 ||
        EVP_DecryptFinal_ex(context.get(), plain.data() + length, &last) != 1)
        return std::nullopt;
    return std::string(plain.begin(), plain.begin() + length + last);
}

} // namespace

std::string_view cipherVersion(ByteView encrypted) {
    const std::string_view version = encrypted.raw().substr(0, kVersionLength);
    const auto isDigit = [](char each) { return each >= '0' && each <= '9'; };
    return version.size() == kVersionLength && version[0] == 'v' && isDigit(version[1]) &&
                   isDigit(version[2])
               ? version
               : std::string_view();
}

std::string encryptionText(ByteView encrypted) {
    const std::string_view version = cipherVersion(encrypted);
    return fmt::format("encrypted, {}, {}", version.empty() ? "without a version" : version,
                       counted(encrypted.size(), "byte"));
}

std::optional<std::string> decryptedByPublicKey(ByteView encrypted) {
    constexpr std::size_t kLongest = std::numeric_limits<int>::max() / 2;
    if (cipherVersion(encrypted) != "v10" || encrypted.size() > kLongest)
        return std::nullopt;
    const ByteView blocks = encrypted.from(kVersionLength);
    if (blocks.empty() || blocks.size() % kBlock != 0)
        return std::nullopt;
    return decrypted(blocks);
}

bool isPlainValue(std::string_view text) {
    constexpr unsigned char kFirstPrintable = 0x20;
    return isUtf8(text) && std::ranges::all_of(text, [](char each) {
               return each == '\t' || static_cast<unsigned char>(each) >= kFirstPrintable;
           });
}

} // namespace nv
