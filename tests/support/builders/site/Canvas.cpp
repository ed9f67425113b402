#include "support/builders/site/Canvas.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#define ZLIB_CONST // zlib only reads its input
#include <zlib.h>

namespace nv::test {

namespace {

constexpr int kFine = 2;

std::string big(std::uint32_t number) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(number >> shift & 0xFF);
    return text;
}

std::string chunk(std::string_view name, const std::string &content) {
    const std::string covered = std::string(name) + content;
    const uLong crc = crc32(0, reinterpret_cast<const Bytef *>(covered.data()),
                            static_cast<uInt>(covered.size()));
    return big(static_cast<std::uint32_t>(content.size())) + covered +
           big(static_cast<std::uint32_t>(crc));
}

std::string packed(const std::string &rows) {
    uLongf size = compressBound(static_cast<uLong>(rows.size()));
    std::string bytes(size, '\0');
    compress2(reinterpret_cast<Bytef *>(bytes.data()), &size,
              reinterpret_cast<const Bytef *>(rows.data()), static_cast<uLong>(rows.size()),
              Z_BEST_COMPRESSION);
    bytes.resize(size);
    return bytes;
}

std::uint32_t channel(Colour colour, int shift) {
    return colour >> shift & 0xFF;
}

} // namespace

Colour mixed(Colour from, Colour to, double share) {
    Colour result = 0;
    for (const int shift : {16, 8, 0}) {
        const double value = channel(from, shift) * (1 - share) + channel(to, shift) * share;
        result |= static_cast<Colour>(std::lround(value)) << shift;
    }
    return result;
}

Canvas::Canvas(int width, int height, double units)
    : m_width(width), m_height(height), m_across(width * kFine), m_down(height * kFine),
      m_units(units), m_scale(m_across / units),
      m_points(static_cast<std::size_t>(m_across) * static_cast<std::size_t>(m_down)) {}

void Canvas::shade(double top, double bottom, Colour above, Colour below) {
    const int first = std::max(0, static_cast<int>(top * m_scale));
    const int end = std::min(m_down, static_cast<int>(std::ceil(bottom * m_scale)));
    for (int y = first; y < end; ++y) {
        // Both fine rows of a row have one colour, so that packing finds them equal.
        const double share = static_cast<double>(y / kFine * kFine - first) / (end - first);
        std::fill_n(m_points.begin() + std::ptrdiff_t{y} * m_across, m_across,
                    mixed(above, below, std::clamp(share, 0.0, 1.0)));
    }
}

void Canvas::fill(const std::vector<Corner> &corners, Colour colour) {
    std::vector<double> crossings;
    for (int y = 0; y < m_down; ++y) {
        const double line = (y + 0.5) / m_scale;
        crossings.clear();
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const auto &[x1, y1] = corners[i];
            const auto &[x2, y2] = corners[(i + 1) % corners.size()];
            if ((y1 <= line) != (y2 <= line))
                crossings.push_back(x1 + (line - y1) / (y2 - y1) * (x2 - x1));
        }
        std::sort(crossings.begin(), crossings.end());
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
            const int from = std::max(0, static_cast<int>(std::lround(crossings[i] * m_scale)));
            const int to =
                std::min(m_across, static_cast<int>(std::lround(crossings[i + 1] * m_scale)));
            if (from < to)
                std::fill_n(m_points.begin() + std::ptrdiff_t{y} * m_across + from, to - from,
                            colour);
        }
    }
}

void Canvas::disc(double x, double y, double radius, Colour colour) {
    constexpr int kCorners = 48;
    constexpr double kRound = 6.283185307179586;
    std::vector<Corner> corners;
    corners.reserve(kCorners);
    for (int i = 0; i < kCorners; ++i)
        corners.emplace_back(x + radius * std::cos(kRound * i / kCorners),
                             y + radius * std::sin(kRound * i / kCorners));
    fill(corners, colour);
}

Colour Canvas::meanAt(int x, int y) const {
    Colour mean = 0;
    for (const int shift : {16, 8, 0}) {
        std::uint32_t sum = kFine; // half of the four that it is divided by
        for (int i = 0; i < kFine * kFine; ++i)
            sum += channel(m_points[static_cast<std::size_t>((y * kFine + i / kFine) * m_across +
                                                             x * kFine + i % kFine)],
                           shift);
        mean |= sum / (kFine * kFine) << shift;
    }
    return mean;
}

std::string Canvas::png() const {
    std::string rows;
    rows.reserve(static_cast<std::size_t>(m_height) * (1 + 3 * static_cast<std::size_t>(m_width)));
    for (int y = 0; y < m_height; ++y) {
        rows += '\1'; // each byte as its difference to that of the point to the left
        Colour left = 0;
        for (int x = 0; x < m_width; ++x) {
            const Colour point = meanAt(x, y);
            for (const int shift : {16, 8, 0})
                rows += static_cast<char>(channel(point, shift) - channel(left, shift));
            left = point;
        }
    }
    const std::string head = big(static_cast<std::uint32_t>(m_width)) +
                             big(static_cast<std::uint32_t>(m_height)) +
                             std::string("\x08\x02\0\0\0", 5);
    return std::string("\x89PNG\r\n\x1A\n") + chunk("IHDR", head) + chunk("IDAT", packed(rows)) +
           chunk("IEND", {});
}

} // namespace nv::test
