#include "readers/Body.h"

#include "readers/Scratch.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::uint64_t kBlock = std::uint64_t{1} << 20;

} // namespace

BodyTarget::BodyTarget(std::filesystem::path file, std::uint64_t inMemory)
    : m_body{std::move(file), true, {}}, m_inMemory(inMemory) {}

BodyTarget::~BodyTarget() {
    if (m_file)
        scratch::drop(m_body.file);
}

void BodyTarget::write(std::string_view bytes) {
    if (m_body.isInMemory && bytes.size() > m_inMemory - m_body.bytes.size())
        spill();
    if (m_body.isInMemory)
        m_body.bytes.insert(m_body.bytes.end(), bytes.begin(), bytes.end());
    else
        m_file->write(bytes);
}

void BodyTarget::write(Bytes &&bytes) {
    if (m_body.isInMemory && m_body.bytes.empty() && bytes.size() <= m_inMemory)
        m_body.bytes = std::move(bytes);
    else
        write(ByteView(bytes).raw());
}

void BodyTarget::spill() {
    m_file.emplace(m_body.file);
    m_file->write(m_body.raw());
    m_body.isInMemory = false;
    Bytes().swap(m_body.bytes);
}

std::uint64_t BodyTarget::copy(const ByteSource &from, std::uint64_t offset, std::uint64_t count) {
    std::uint64_t done = 0;
    while (done < count) {
        Bytes block = from.read(offset + done, std::min(kBlock, count - done));
        if (block.empty())
            break;
        done += block.size();
        write(std::move(block));
    }
    return done;
}

Body BodyTarget::take() {
    if (m_body.isInMemory && m_inMemory == 0)
        spill();
    if (m_file)
        m_file->close();
    m_file.reset();
    return std::move(m_body);
}

} // namespace nv
