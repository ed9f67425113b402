#include "readers/Certificate.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>
#include <string>

namespace nv {
namespace {

void addName(X509_NAME *name, const char *kind, const std::string &text) {
    X509_NAME_add_entry_by_txt(name, kind, MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(text.data()),
                               static_cast<int>(text.size()), -1, 0);
}

/// A certificate in DER, signed by itself.
std::string made(const std::string &name, const std::string &issuer, const std::string &host = {}) {
    EVP_PKEY *key = EVP_EC_gen("P-256");
    X509 *certificate = X509_new();
    X509_set_version(certificate, X509_VERSION_3);
    X509_set_pubkey(certificate, key);
    X509_gmtime_adj(X509_getm_notBefore(certificate), 0);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 1000);
    if (!name.empty())
        addName(X509_get_subject_name(certificate), "CN", name);
    addName(X509_get_issuer_name(certificate), "O", issuer);
    if (!host.empty()) {
        const std::string value = "IP:192.0.2.1,DNS:" + host;
        X509_EXTENSION *extension =
            X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, value.c_str());
        X509_add_ext(certificate, extension, -1);
        X509_EXTENSION_free(extension);
    }
    X509_sign(certificate, key, EVP_sha256());
    std::string der(static_cast<std::size_t>(i2d_X509(certificate, nullptr)), '\0');
    auto *next = reinterpret_cast<unsigned char *>(der.data());
    i2d_X509(certificate, &next);
    X509_free(certificate);
    EVP_PKEY_free(key);
    return der;
}

TEST(Certificate, tellsWhomItNames) {
    const auto certificate = certificateOf(viewOf(made("host.example", "K\xC3\xB6nig CA")));
    ASSERT_TRUE(certificate);
    EXPECT_EQ(certificate->name, "host.example");
    EXPECT_EQ(certificate->issuer, "K\xC3\xB6nig CA");
    const auto nameless = certificateOf(viewOf(made("", "CA", "alt.example")));
    ASSERT_TRUE(nameless);
    EXPECT_EQ(nameless->name, "alt.example");
}

TEST(Certificate, isFoundInOtherBytes) {
    const std::string bytes = "0\x82 0\x82\x01" + made("host.example", "CA") + "more";
    const auto certificate = certificateIn(viewOf(bytes));
    ASSERT_TRUE(certificate);
    EXPECT_EQ(certificate->name, "host.example");
    EXPECT_FALSE(certificateIn(viewOf("")));
    std::string many;
    for (int i = 0; i < 1000; ++i)
        many += "0\x82";
    EXPECT_FALSE(certificateIn(viewOf(many)));
}

TEST(Certificate, cutAnywhereIsNone) {
    const std::string whole = made("host.example", "CA", "alt.example");
    for (std::size_t cut = 0; cut < whole.size(); ++cut)
        EXPECT_FALSE(certificateOf(viewOf(whole).sub(0, cut))) << cut;
}

} // namespace
} // namespace nv
