#include "readers/chrome/profile/ValueCipher.h"
#include "support/builders/ChromiumProfile.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace cipher = test::cipher;

std::optional<std::string> decrypted(const std::string &bytes) {
    return decryptedByPublicKey(viewOf(bytes));
}

TEST(ValueCipher, readsWhatLinuxEncryptsWithItsPublicKey) {
    EXPECT_EQ(decrypted(test::v10(cipher::kPlain)), "harbour light");
    EXPECT_EQ(decrypted(test::v10(cipher::kOfHost))->substr(32), "harbour light");
    EXPECT_EQ(decrypted(test::v10(cipher::kNoText)), "\x01\x02\x03");
}

TEST(ValueCipher, leavesAllOthersAlone) {
    const std::string blocks = test::bytesOfHex(cipher::kPlain);
    for (const std::string &bytes : {"v11" + blocks, "v20" + blocks, blocks, std::string("v10"),
                                     std::string("v1"), std::string(), "v10" + blocks + "x",
                                     "v10" + std::string(28, 'x'), "v10" + std::string(16, 'x')})
        EXPECT_EQ(decrypted(bytes), std::nullopt) << bytes.size();
}

TEST(ValueCipher, isToldByVersionAndLength) {
    EXPECT_EQ(encryptionText(viewOf("v20" + std::string(128, 'x'))), "encrypted, v20, 131 bytes");
    EXPECT_EQ(encryptionText(viewOf("\x01")), "encrypted, without a version, 1 byte");
    EXPECT_EQ(cipherVersion(viewOf("vx0")), "");
    EXPECT_EQ(cipherVersion(viewOf("v99")), "v99");
}

TEST(ValueCipher, takesNoControlCharactersForAValue) {
    EXPECT_TRUE(isPlainValue("größer\tals"));
    EXPECT_TRUE(isPlainValue(""));
    EXPECT_FALSE(isPlainValue("\x01"));
    EXPECT_FALSE(isPlainValue("\xFF"));
}

} // namespace
} // namespace nv
