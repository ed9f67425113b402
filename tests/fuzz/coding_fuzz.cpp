// A packed body, as a cache keeps it: each coding, two of them, cut data and damaged ones. What
// comes out is never more than the limits let through, and what isn't whole has a doubt.
//   input = codings:u8 body

#include "base/Files.h"
#include "fuzz/Reading.h"
#include "readers/Certificate.h"
#include "readers/Coding.h"
#include "readers/Limits.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using nv::fuzz::require;
    constexpr std::string_view kCodings[] = {"gzip", "deflate", "br", "zstd", "dcb", "dcz", "x"};
    constexpr std::size_t kCount = std::size(kCodings);
    static const nv::test::TempFolder folder;
    if (size == 0)
        return 0;
    const std::size_t choice = data[0];
    std::vector<std::string> codings = {std::string(kCodings[choice % kCount])};
    if (choice / kCount % 2 == 1)
        codings.emplace_back(kCodings[choice / kCount / 2 % kCount]);
    const nv::Bytes packed(data + 1, data + size);
    static_cast<void>(nv::certificateIn(nv::ByteView(packed)));
    nv::fuzz::CountingLog log;
    nv::Body body{folder.path() / "body", true, packed};
    const auto damaged = choice >= 128 ? nv::Damaged::givesPart : nv::Damaged::staysPacked;
    const bool isSound = nv::unpackBody(body, codings, damaged, nv::kBodyInMemory, log);
    require(isSound == body.doubt.empty());
    require(!body.unpackedFrom.empty() || body.bytes == packed);
    if (body.isInMemory)
        require(body.bytes.size() <= nv::kBodyInMemory || body.unpackedFrom.empty());
    else
        require(std::filesystem::file_size(body.file) <= nv::limits::kUnpackedBytes);
    return 0;
}
