#include "base/CertificateText.h"

#include "base/Text.h"

#include <fmt/format.h>
#include <openssl/bio.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <memory>

namespace nv {

namespace {

template <auto Free>
struct Freeing {
    template <class T>
    void operator()(T *object) const {
        Free(object);
    }
};
using Certificate = std::unique_ptr<X509, Freeing<X509_free>>;
using Names = std::unique_ptr<GENERAL_NAMES, Freeing<GENERAL_NAMES_free>>;
using Memory = std::unique_ptr<BIO, Freeing<BIO_free>>;

/// A hostile certificate may hold any number.
constexpr int kMostNames = 30;

std::string textOfName(const X509_NAME *name) {
    const Memory memory(BIO_new(BIO_s_mem()));
    if (!memory || !name || X509_NAME_print_ex(memory.get(), name, 0, XN_FLAG_RFC2253) < 0)
        return {};
    char *bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    return size > 0 ? decodeText({bytes, static_cast<std::size_t>(size)}) : std::string();
}

std::string hostsOf(const X509 &certificate) {
    const Names names(static_cast<GENERAL_NAMES *>(
        X509_get_ext_d2i(&certificate, NID_subject_alt_name, nullptr, nullptr)));
    std::string hosts;
    for (int i = 0; names && i < sk_GENERAL_NAME_num(names.get()) && i < kMostNames; ++i) {
        const GENERAL_NAME *name = sk_GENERAL_NAME_value(names.get(), i);
        if (name->type != GEN_DNS)
            continue;
        const auto size = static_cast<std::size_t>(ASN1_STRING_length(name->d.dNSName));
        const auto *bytes = reinterpret_cast<const char *>(ASN1_STRING_get0_data(name->d.dNSName));
        hosts += fmt::format("{}{}", hosts.empty() ? "" : ", ", decodeText({bytes, size}));
    }
    return hosts;
}

} // namespace

std::string certificateText(ByteView der) {
    const std::string_view raw = der.raw();
    const auto *at = reinterpret_cast<const unsigned char *>(raw.data());
    const Certificate certificate(d2i_X509(nullptr, &at, static_cast<long>(raw.size())));
    if (!certificate)
        return {};
    std::string text = textOfName(X509_get_subject_name(certificate.get()));
    if (const std::string hosts = hostsOf(*certificate); !hosts.empty())
        text += fmt::format("; names {}", hosts);
    return text +
           fmt::format("; issued by {}", textOfName(X509_get_issuer_name(certificate.get())));
}

} // namespace nv
