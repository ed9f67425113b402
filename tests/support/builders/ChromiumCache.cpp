#include "support/builders/ChromiumCache.h"

#include <array>
#include <cstdio>
#include <fstream>

namespace nv::test {

namespace {

template <class Number>
void put(std::string &bytes, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i)
        bytes.push_back(static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * i) & 0xFF));
}

void putText(std::string &bytes, const std::string &text) {
    put(bytes, static_cast<std::uint32_t>(text.size()));
    bytes += text;
    bytes.append((4 - text.size() % 4) % 4, '\0');
}

/// The checksum of zip files, bit by bit.
std::uint32_t crcOf(std::string_view bytes) {
    std::uint32_t crc = 0xFFFF'FFFF;
    for (const char c : bytes) {
        crc ^= static_cast<std::uint8_t>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1U) != 0 ? crc >> 1 ^ 0xEDB8'8320 : crc >> 1;
    }
    return ~crc;
}

std::string headOf(const std::string &key, std::uint32_t version) {
    std::string bytes;
    put(bytes, std::uint64_t{0xFCFB'6D1B'A772'5C30});
    put(bytes, version);
    put(bytes, static_cast<std::uint32_t>(key.size()));
    put(bytes, chromiumKeyHash(key));
    put(bytes, std::uint32_t{0});
    return bytes + key;
}

std::string endOf(const std::string &stream, std::uint32_t flags, std::uint32_t size) {
    std::string bytes;
    put(bytes, std::uint64_t{0xF4FA'6F45'970D'41D8});
    put(bytes, flags);
    put(bytes, crcOf(stream));
    put(bytes, size);
    put(bytes, std::uint32_t{0});
    return bytes;
}

} // namespace

std::string ChromiumAnswer::bytes() const {
    std::string fields;
    put(fields, 0x8005'0003U | (certificate.empty() ? 0U : 0x500U) | (isTruncated ? 0x1000U : 0U));
    put(fields, first ? 6U : 2U);
    put(fields, requested);
    put(fields, answered);
    if (first)
        put(fields, *first);
    std::string headers;
    for (const std::string &line : lines)
        headers += line + '\0';
    putText(fields, headers + '\0');
    if (!certificate.empty()) {
        put(fields, 1U);
        putText(fields, certificate);
        put(fields, 0U);
    }
    put(fields, 0x6013'0200U);
    putText(fields, server);
    put(fields, port);
    put(fields, 1U);
    std::string bytes;
    put(bytes, static_cast<std::uint32_t>(fields.size()));
    return bytes + fields;
}

// The steps as they are published, on 32 bits, characters with their sign.
std::uint32_t chromiumKeyHash(std::string_view key) {
    const auto at = [&key](std::size_t i) { return static_cast<std::uint8_t>(key[i]); };
    const auto sign = [&key](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<signed char>(key[i]));
    };
    std::uint32_t h = static_cast<std::uint32_t>(key.size());
    std::size_t i = 0;
    for (std::size_t left = key.size() / 4; left > 0; --left, i += 4) {
        h += at(i) + 256U * at(i + 1);
        const std::uint32_t mixed = (at(i + 2) + 256U * at(i + 3)) << 11 ^ h;
        h = h << 16 ^ mixed;
        h += h >> 11;
    }
    if (const std::size_t rest = key.size() % 4; rest == 1) {
        h += sign(i);
        h ^= h << 10;
        h += h >> 1;
    } else if (rest > 1) {
        h += at(i) + 256U * at(i + 1);
        h ^= rest == 2 ? h << 11 : h << 16;
        if (rest == 3)
            h ^= sign(i + 2) << 18;
        h += rest == 2 ? h >> 17 : h >> 11;
    }
    h ^= h << 3;
    h += h >> 5;
    h ^= h << 4;
    h += h >> 17;
    h ^= h << 25;
    return h + (h >> 6);
}

std::string SimpleCacheFiles::name(std::uint64_t hash, char part) {
    std::array<char, 20> text{};
    std::snprintf(text.data(), text.size(), "%016llx_%c", static_cast<unsigned long long>(hash),
                  part);
    return text.data();
}

SimpleCacheFiles &SimpleCacheFiles::add(std::uint64_t hash, const std::string &key,
                                        const std::string &head, const std::string &body,
                                        std::int64_t lastUsed) {
    const auto size = static_cast<std::uint32_t>(head.size());
    m_files[name(hash, '0')] = headOf(key, 5) + body + endOf(body, 1, 0) + head +
                               std::string(32, '\x5A') + endOf(head, 3, size);
    return list(hash, lastUsed);
}

SimpleCacheFiles &SimpleCacheFiles::addStretches(std::uint64_t hash, const std::string &key,
                                                 const std::vector<Stretch> &stretches) {
    std::string &bytes = m_files[name(hash, 's')];
    bytes = headOf(key, 9);
    for (const Stretch &each : stretches) {
        put(bytes, std::uint64_t{0xEB97'BF01'6553'676B});
        put(bytes, each.offset);
        put(bytes, each.length.value_or(static_cast<std::int64_t>(each.bytes.size())));
        put(bytes, crcOf(each.bytes));
        put(bytes, std::uint32_t{0});
        bytes += each.bytes;
    }
    return *this;
}

SimpleCacheFiles &SimpleCacheFiles::list(std::uint64_t hash, std::int64_t lastUsed) {
    m_listed.emplace_back(hash, lastUsed);
    return *this;
}

void SimpleCacheFiles::rename(const std::string &from, const std::string &to) {
    auto file = m_files.extract(from);
    file.key() = to;
    m_files.insert(std::move(file));
}

std::string SimpleCacheFiles::listBytes() const {
    std::string payload;
    put(payload, std::uint64_t{0x656E'7465'7220'796F});
    put(payload, 9U);
    put(payload, static_cast<std::uint64_t>(m_listed.size()));
    put(payload, std::uint64_t{4096});
    put(payload, 2U);
    for (const auto &[hash, lastUsed] : m_listed) {
        put(payload, hash);
        put(payload, lastUsed);
        put(payload, std::uint64_t{256});
    }
    put(payload, std::uint64_t{0});
    std::string bytes;
    put(bytes, static_cast<std::uint32_t>(payload.size()));
    put(bytes, crcOf(payload));
    return bytes + payload;
}

void SimpleCacheFiles::write(const std::filesystem::path &folder, bool withList) const {
    std::filesystem::create_directories(folder / "index-dir");
    const auto save = [&folder](const std::string &name, const std::string &bytes) {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    };
    for (const auto &[name, bytes] : m_files)
        save(name, bytes);
    if (withList && !m_files.contains("index-dir/the-real-index"))
        save("index-dir/the-real-index", listBytes());
    save("index", headOf("", 9));
}

} // namespace nv::test
