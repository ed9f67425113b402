#include "reports/pages/PolicyHash.h"

#include "base/Base64.h"
#include "base/Digest.h"

#include <cstdint>
#include <vector>

namespace nv {

std::string policyHash(std::string_view text) {
    Digest digest(DigestAlgorithm::sha256);
    digest.add(text);
    const std::string hex = digest.takeHex();
    std::vector<std::uint8_t> bytes;
    bytes.reserve(hex.size() / 2);
    for (std::size_t at = 0; at < hex.size(); at += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(at, 2), nullptr, 16)));
    return "'sha256-" + base64(ByteView(bytes)) + "'";
}

} // namespace nv
