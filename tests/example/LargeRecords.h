#pragma once

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace nv::example {

// What the records of large artefacts hold.

namespace fs = std::filesystem;

inline constexpr std::int64_t kMarch2011 = 1300000000; // 2011-03-13 07:06:40 UTC

struct Wanted {
    std::size_t records;
    std::size_t bodyBytes;
    fs::path folder;
};

inline std::string urlOf(std::size_t i) {
    return fmt::format("http://host{}.example/folder/page{}.html?q={}", i % 997, i, i * 7);
}

/// A page of that size, or a picture for every other record: bytes that don't repeat.
inline std::string bodyOf(std::size_t i, std::size_t size) {
    std::string body = i % 2 == 0 ? "<html><body>" : "GIF89a";
    body.reserve(size);
    std::uint32_t state = static_cast<std::uint32_t>(i) + 1;
    while (body.size() < size) {
        state = state * 1664525 + 1013904223;
        body += static_cast<char>('0' + (state >> 24) % 75);
    }
    return body;
}

inline std::int64_t secondsOf(std::size_t i) {
    return kMarch2011 + static_cast<std::int64_t>(i);
}

template <class Add>
void each(const Wanted &wanted, Add &&add) {
    for (std::size_t i = 0; i < wanted.records; ++i)
        add(i);
}

} // namespace nv::example
