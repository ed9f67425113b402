#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace nv::test {

/// 0xRRGGBB.
using Colour = std::uint32_t;

/// Between two colours, `share` of the way from 0 to 1.
Colour mixed(Colour from, Colour to, double share);

/// A picture that is drawn in units of its own, each point of it the mean of four.
class Canvas {
  public:
    using Corner = std::pair<double, double>;

    /// In points; a unit is `width` / `units` of them.
    Canvas(int width, int height, double units);

    double units() const { return m_units; }
    double high() const { return m_units * m_height / m_width; }

    /// A band over the whole width, from one colour above to another below.
    void shade(double top, double bottom, Colour above, Colour below);
    /// Corners in their order.
    void fill(const std::vector<Corner> &corners, Colour colour);
    void disc(double x, double y, double radius, Colour colour);
    /// All below `top(x)`.
    template <class Top>
    void below(Top &&top, Colour colour) {
        std::vector<Corner> corners = {{m_units, high()}, {0, high()}};
        constexpr int kSteps = 96;
        for (int i = 0; i <= kSteps; ++i)
            corners.emplace_back(m_units * i / kSteps, top(m_units * i / kSteps));
        fill(corners, colour);
    }
    /// As a PNG file, the same bytes on every run.
    std::string png() const;

  private:
    Colour meanAt(int x, int y) const;

    int m_width;
    int m_height;
    int m_across; ///< fine points, two for each of the picture's
    int m_down;
    double m_units;
    double m_scale; ///< fine points of a unit
    std::vector<Colour> m_points;
};

} // namespace nv::test
