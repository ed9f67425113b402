#include "support/builders/FirefoxCache2.h"

#include "base/Digest.h"
#include "base/Files.h"
#include "base/Text.h"

#include <array>

namespace nv::test {

namespace {

constexpr std::size_t kChunk = 262144;

std::string big(std::uint64_t number, int bytes) {
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        text += static_cast<char>(number >> shift & 0xFF);
    return text;
}

/// Of Bob Jenkins's hash of 1996, over a table of its nine steps.
std::uint32_t hashOf(std::string_view bytes) {
    std::array<std::uint32_t, 3> state = {0x9E3779B9, 0x9E3779B9, 0};
    const auto mix = [&state] {
        constexpr std::array<int, 9> kShifts = {-13, 8, -13, -12, 16, -5, -3, 10, -15};
        for (std::size_t i = 0; i < kShifts.size(); ++i) {
            std::uint32_t &target = state.at(i % 3);
            const std::uint32_t next = state.at((i + 1) % 3);
            const std::uint32_t last = state.at((i + 2) % 3);
            target -= next + last;
            const int shift = kShifts.at(i);
            target ^= shift < 0 ? last >> -shift : last << shift;
        }
    };
    std::size_t at = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t in = i % 12;
        // Of the last, unfinished block the third word keeps its lowest byte for the length.
        const bool isLast = bytes.size() - (i - in) < 12;
        const std::size_t shift = 8 * (in % 4 + (isLast && in >= 8 ? 1 : 0));
        state.at(in / 4) += std::uint32_t{static_cast<std::uint8_t>(bytes[i])} << shift;
        if (in == 11)
            mix();
        at = i + 1;
    }
    state[2] += static_cast<std::uint32_t>(at);
    mix();
    return state[2];
}

std::string element(std::string_view name, std::string_view value) {
    std::string text(name);
    text += '\0';
    text += value;
    return text += '\0';
}

} // namespace

std::string FirefoxCache2Entry::name() const {
    Digest sha1(DigestAlgorithm::sha1);
    sha1.add(key);
    return toUpper(sha1.takeHex());
}

std::string FirefoxCache2Entry::bytes() const {
    const std::string stored = body + alternative;
    std::string covered;
    for (std::size_t at = 0; at < stored.size(); at += kChunk)
        covered += big(hashOf(std::string_view(stored).substr(at, kChunk)) & 0xFFFF, 2);
    for (const std::uint32_t number : {version, fetchCount, fetched, modified, frecency, expires,
                                       static_cast<std::uint32_t>(key.size())})
        covered += big(number, 4);
    covered += version > 1 ? big(flags, 4) : std::string();
    covered += key + '\0';
    if (!headers.empty())
        covered += element("response-head", headers);
    for (const auto &[each, value] : elements)
        covered += element(each, value);
    return stored + big(hashOf(covered), 4) + covered +
           (hasVersionAtEnd ? big(version, 4) : std::string()) + big(stored.size(), 4);
}

std::filesystem::path FirefoxCache2Entry::writeTo(const std::filesystem::path &folder) const {
    std::filesystem::create_directories(folder);
    const std::filesystem::path file = folder / name();
    writeWhole(file, bytes());
    return file;
}

} // namespace nv::test
