#include "readers/Certificate.h"

#include "base/Text.h"

#include <openssl/asn1.h>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>

namespace nv {

namespace {

template <auto Free>
struct Freeing {
    template <class Object>
    void operator()(Object *object) const {
        Free(object);
    }
};

std::string textOf(const ASN1_STRING *text) {
    if (!text)
        return {};
    const auto *data = reinterpret_cast<const char *>(ASN1_STRING_get0_data(text));
    unsigned char *utf8 = nullptr;
    const int size = ASN1_STRING_to_UTF8(&utf8, text);
    if (size < 0) {
        ERR_clear_error();
        return decodeText({data, static_cast<std::size_t>(ASN1_STRING_length(text))});
    }
    std::string decoded =
        decodeText({reinterpret_cast<const char *>(utf8), static_cast<std::size_t>(size)});
    OPENSSL_free(utf8);
    return decoded;
}

std::string entryOf(const X509_NAME *name, int kind) {
    const int at = X509_NAME_get_index_by_NID(name, kind, -1);
    return at < 0 ? std::string() : textOf(X509_NAME_ENTRY_get_data(X509_NAME_get_entry(name, at)));
}

std::string firstHostOf(const X509 *certificate) {
    const std::unique_ptr<GENERAL_NAMES, Freeing<GENERAL_NAMES_free>> names(
        static_cast<GENERAL_NAMES *>(
            X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr)));
    for (int i = 0; names && i < sk_GENERAL_NAME_num(names.get()); ++i) {
        const GENERAL_NAME *name = sk_GENERAL_NAME_value(names.get(), i);
        if (name->type == GEN_DNS)
            return textOf(name->d.dNSName);
    }
    return {};
}

} // namespace

std::optional<Certificate> certificateOf(ByteView der) {
    const auto *next = reinterpret_cast<const unsigned char *>(der.raw().data());
    const std::unique_ptr<X509, Freeing<X509_free>> parsed(
        d2i_X509(nullptr, &next, static_cast<long>(der.size())));
    if (!parsed) {
        ERR_clear_error();
        return std::nullopt;
    }
    Certificate certificate;
    certificate.name = entryOf(X509_get_subject_name(parsed.get()), NID_commonName);
    if (certificate.name.empty())
        certificate.name = firstHostOf(parsed.get());
    const X509_NAME *issuer = X509_get_issuer_name(parsed.get());
    certificate.issuer = entryOf(issuer, NID_commonName);
    if (certificate.issuer.empty())
        certificate.issuer = entryOf(issuer, NID_organizationName);
    return certificate;
}

std::optional<Certificate> certificateIn(ByteView bytes) {
    constexpr std::string_view kSequence = "\x30\x82"; // with a length of two bytes
    constexpr int kMostTries = 100;
    auto at = bytes.find(kSequence);
    for (int i = 0; at && i < kMostTries; ++i, at = bytes.find(kSequence, *at + 1))
        if (auto certificate = certificateOf(bytes.from(*at)))
            return certificate;
    return std::nullopt;
}

} // namespace nv
