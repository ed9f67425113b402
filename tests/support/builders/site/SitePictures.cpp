#include "support/builders/site/SitePictures.h"

#include "support/builders/site/Canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace nv::test {

namespace {

// Scenes are 160 units wide and 90 high; the water begins at 58.
constexpr double kWide = 160;
constexpr double kWater = 58;

struct Light {
    Colour above;
    Colour horizon;
    Colour hills;
    Colour water;
    Colour near;
};

constexpr Light kDay = {0x4F93C4, 0xD9ECF5, 0x6F9A86, 0x4F8FB0, 0x1F5A7A};
constexpr Light kEvening = {0x3B3F6F, 0xF6B26B, 0x5A4A63, 0xB9765A, 0x3A2F52};
constexpr Light kGale = {0x4A5560, 0x9AA5A8, 0x46545A, 0x5F7278, 0x33444B};
constexpr Light kNight = {0x060B1E, 0x1E3558, 0x0C1628, 0x14284A, 0x0A1730};

void land(Canvas &canvas, const Light &light, double phase) {
    canvas.shade(0, kWater, light.above, light.horizon);
    canvas.below(
        [phase](double x) {
            return kWater - 9 - 5 * std::sin(x / 21 + phase) - 3 * std::sin(x / 8 + phase * 2);
        },
        mixed(light.hills, light.horizon, 0.45));
    canvas.below([phase](double x) { return kWater - 4 - 4 * std::sin(x / 15 + 2 + phase); },
                 light.hills);
    canvas.shade(kWater, canvas.high(), light.water, light.near);
}

void waves(Canvas &canvas, Colour colour, double height) {
    for (int row = 0; row < 5; ++row) {
        const double y = kWater + 4 + row * 6;
        for (int i = 0; i < 7; ++i) {
            const double x = i * 26 - 8 + row * 11 % 26;
            const double length = 7 + row * 1.5;
            canvas.fill(
                {{x, y}, {x + length / 2, y - height}, {x + length, y}, {x + length / 2, y + 0.5}},
                colour);
        }
    }
}

void gull(Canvas &canvas, double x, double y, double size, Colour colour) {
    canvas.fill({{x - size, y - size / 2},
                 {x - size / 3, y - size / 2.5},
                 {x, y},
                 {x + size / 3, y - size / 2.5},
                 {x + size, y - size / 2},
                 {x + size / 3, y - size / 5},
                 {x, y + size / 5},
                 {x - size / 3, y - size / 5}},
                colour);
}

void boat(Canvas &canvas, double x, double y, double size, Colour sail) {
    canvas.fill({{x - size, y},
                 {x + size, y},
                 {x + size * 0.7, y + size * 0.35},
                 {x - size * 0.7, y + size * 0.35}},
                0x5B3420);
    canvas.fill({{x - 0.3, y}, {x - 0.3, y - size * 2.1}, {x + 0.3, y - size * 2.1}, {x + 0.3, y}},
                0x2B1A12);
    canvas.fill({{x + 0.6, y - size * 2}, {x + size * 0.95, y - 0.6}, {x + 0.6, y - 0.6}}, sail);
    canvas.fill({{x - 0.6, y - size * 1.7}, {x - size * 0.8, y - 0.6}, {x - 0.6, y - 0.6}},
                mixed(sail, 0x888888, 0.25));
}

void lighthouse(Canvas &canvas, double x, double base, double height) {
    const auto half = [height](double share) { return height * (0.11 - 0.05 * share); };
    constexpr int kBands = 5;
    for (int band = 0; band < kBands; ++band) {
        const double low = band * 0.78 / kBands;
        const double high = (band + 1) * 0.78 / kBands;
        canvas.fill({{x - half(low), base - height * low},
                     {x + half(low), base - height * low},
                     {x + half(high), base - height * high},
                     {x - half(high), base - height * high}},
                    band % 2 == 0 ? 0xF2EEE6 : 0xC0392B);
    }
    const double top = base - height * 0.78;
    canvas.fill({{x - height * 0.09, top},
                 {x + height * 0.09, top},
                 {x + height * 0.09, top - height * 0.025},
                 {x - height * 0.09, top - height * 0.025}},
                0x2C3E50);
    canvas.fill({{x - height * 0.05, top - height * 0.025},
                 {x + height * 0.05, top - height * 0.025},
                 {x + height * 0.05, top - height * 0.13},
                 {x - height * 0.05, top - height * 0.13}},
                0xFFE9A0);
    canvas.fill({{x - height * 0.07, top - height * 0.13},
                 {x + height * 0.07, top - height * 0.13},
                 {x, top - height * 0.22}},
                0x2C3E50);
}

void mole(Canvas &canvas, double end, Colour colour) {
    canvas.fill({{0, kWater + 1}, {end, kWater + 3}, {end + 7, kWater + 9}, {0, kWater + 14}},
                colour);
}

void houses(Canvas &canvas, double from, int count) {
    constexpr std::array<Colour, 5> kWalls = {0xD98A5B, 0xE8D9B5, 0x9FB7A2, 0xB5534A, 0xC7B18C};
    for (int i = 0; i < count; ++i) {
        const double x = from + i * 15.0;
        const double top = kWater - 17 - i * 7 % 9;
        const auto wall = kWalls.at(static_cast<std::size_t>(i) % kWalls.size());
        canvas.fill({{x, kWater + 2}, {x, top}, {x + 13, top}, {x + 13, kWater + 2}}, wall);
        canvas.fill({{x - 1, top}, {x + 6.5, top - 8}, {x + 14, top}}, mixed(wall, 0x3A2A22, 0.65));
        for (int window = 0; window < 4; ++window) {
            const double left = x + 2.5 + window % 2 * 5;
            const double high = top + 3 + window / 2 * 6.0;
            canvas.fill(
                {{left, high}, {left + 3, high}, {left + 3, high + 3.5}, {left, high + 3.5}},
                0x34495E);
        }
    }
    canvas.fill({{0, kWater + 2}, {kWide, kWater + 2}, {kWide, kWater + 8}, {0, kWater + 8}},
                0x7D7468);
}

void ferry(Canvas &canvas) {
    canvas.fill({{38, 62}, {132, 62}, {124, 74}, {46, 74}}, 0x16324A);
    canvas.fill({{48, 62}, {120, 62}, {116, 52}, {52, 52}}, 0xF4F4F0);
    canvas.fill({{62, 52}, {106, 52}, {103, 44}, {65, 44}}, 0xE4E4DC);
    canvas.fill({{80, 44}, {92, 44}, {91, 33}, {81, 33}}, 0xC0392B);
    for (int i = 0; i < 8; ++i)
        canvas.disc(55 + i * 8.5, 57, 1.6, 0x3D6E8C);
}

void stars(Canvas &canvas) {
    std::uint32_t seed = 4711;
    for (int i = 0; i < 70; ++i) {
        seed = seed * 1103515245U + 12345U;
        const double x = (seed >> 8) % 1600 / 10.0;
        const double y = (seed >> 20) % 460 / 10.0;
        canvas.disc(x, y, 0.25 + i % 4 * 0.1, 0xF5F0D0);
    }
}

void bridge(Canvas &canvas) {
    canvas.fill({{0, 46}, {kWide, 40}, {kWide, 44}, {0, 50}}, 0x8E3B2E);
    for (const double x : {46.0, 114.0}) {
        canvas.fill({{x - 2, 66}, {x - 2, 14}, {x + 2, 14}, {x + 2, 66}}, 0xA4483A);
        for (int i = -4; i <= 4; ++i)
            if (i != 0)
                canvas.fill({{x, 16},
                             {x + 0.5, 16},
                             {x + i * 8.5 + 0.5, 47 - x / 30},
                             {x + i * 8.5, 47 - x / 30}},
                            0x6B2C22);
    }
}

void drawEvening(Canvas &canvas, double phase) {
    land(canvas, kEvening, phase);
    canvas.disc(112, 49, 6, 0xFFE2A8);
    canvas.shade(kWater, canvas.high(), kEvening.water, kEvening.near);
    waves(canvas, mixed(kEvening.water, 0xFFE2A8, 0.4), 0.7);
    boat(canvas, 100, 74, 8, 0xF3D9C0);
    gull(canvas, 84, 22, 4, 0x2B2438);
    gull(canvas, 96, 16, 3, 0x2B2438);
}

void drawLighthouse(Canvas &canvas) {
    drawEvening(canvas, 0.4);
    mole(canvas, 58, 0x3B3340);
    lighthouse(canvas, 46, kWater + 4, 52);
}

void drawHarbour(Canvas &canvas) {
    drawEvening(canvas, 2.3);
    houses(canvas, 6, 6);
    lighthouse(canvas, 142, kWater + 4, 34);
}

void drawFerry(Canvas &canvas) {
    land(canvas, kDay, 1.1);
    ferry(canvas);
    waves(canvas, 0xBFDDEA, 0.8);
}

void drawBoats(Canvas &canvas) {
    land(canvas, kDay, 3.2);
    waves(canvas, 0xA9CFE0, 0.6);
    for (int i = 0; i < 6; ++i)
        boat(canvas, 16 + i * 26, 62 + i * 5 % 14, 6 + i % 3 * 2.0,
             i % 2 == 0 ? 0xFFFFFF : 0xF4B942);
}

void drawMarket(Canvas &canvas) {
    land(canvas, kDay, 0.2);
    houses(canvas, 4, 10);
    boat(canvas, 40, 74, 7, 0xB5534A);
}

void drawStorm(Canvas &canvas) {
    land(canvas, kGale, 4);
    waves(canvas, 0xD8E2E2, 3.4);
    boat(canvas, 92, 66, 7, 0xE9E4D6);
    for (int i = 0; i < 40; ++i) {
        const double x = i * 4.3;
        const double y = i * 17 % 60;
        canvas.fill({{x, y}, {x + 0.4, y}, {x - 3, y + 9}}, 0xB8C4C6);
    }
}

void drawNight(Canvas &canvas) {
    land(canvas, kNight, 5);
    stars(canvas);
    canvas.disc(124, 18, 7, 0xF2EBC9);
    canvas.disc(121, 16, 6.4, mixed(kNight.above, kNight.horizon, 0.3));
    lighthouse(canvas, 30, kWater + 4, 30);
    mole(canvas, 40, 0x05080F);
}

void drawBridge(Canvas &canvas) {
    land(canvas, kDay, 6);
    bridge(canvas);
    waves(canvas, 0xBFDDEA, 0.6);
}

struct Drawing {
    std::string_view name;
    void (*draw)(Canvas &);
};

constexpr std::array kScenes = {
    Drawing{"lighthouse", drawLighthouse}, Drawing{"harbour", drawHarbour},
    Drawing{"ferry", drawFerry},           Drawing{"boats", drawBoats},
    Drawing{"market", drawMarket},         Drawing{"storm", drawStorm},
    Drawing{"night", drawNight},           Drawing{"bridge", drawBridge}};

// Signs are drawn in their points.

void drawBuoy(Canvas &canvas) {
    canvas.shade(0, 14, 0xF4B942, 0xF4B942);
    canvas.fill({{4, 11}, {10, 11}, {8.5, 3}, {5.5, 3}}, 0xC0392B);
    canvas.fill({{2, 11}, {12, 11}, {10, 13}, {4, 13}}, 0x12354B);
}

void drawRope(Canvas &canvas) {
    canvas.shade(0, 40, 0x12354B, 0x0D2635);
    for (int i = -1; i < 4; ++i)
        canvas.fill({{i * 16.0, 8}, {i * 16.0 + 12, 2}, {i * 16.0 + 16, 2}, {i * 16.0 + 4, 8}},
                    0x8E7A50);
}

void drawPaper(Canvas &canvas) {
    canvas.shade(0, 32, 0xFFFFFF, 0xFFFFFF);
    for (int i = 0; i < 8; ++i)
        canvas.disc(i * 13 % 32, i * 21 % 32, 0.8, 0xEEF2F4);
}

void drawFrame(Canvas &canvas) {
    canvas.shade(0, 30, 0x12354B, 0x12354B);
    for (const double at : {0.0, 20.0})
        for (const double down : {0.0, 20.0})
            canvas.fill({{at, down}, {at + 10, down}, {at + 10, down + 10}, {at, down + 10}},
                        0xF4B942);
    canvas.fill({{10, 10}, {20, 10}, {20, 20}, {10, 20}}, 0xFFFFFF);
}

void drawSky(Canvas &canvas) {
    canvas.shade(0, 190, 0x9CC7DF, 0xF2F8FB);
}

void drawSun(Canvas &canvas) {
    canvas.shade(0, 48, 0xB7D7E7, 0xB7D7E7);
    canvas.disc(24, 24, 14, 0xF4B942);
}

void drawCloud(Canvas &canvas) {
    canvas.shade(0, 48, 0xB7D7E7, 0xB7D7E7);
    canvas.disc(17, 28, 9, 0xFFFFFF);
    canvas.disc(28, 23, 11, 0xFFFFFF);
    canvas.disc(36, 30, 7, 0xFFFFFF);
}

void drawRain(Canvas &canvas) {
    drawCloud(canvas);
    for (const double x : {15.0, 24.0, 33.0})
        canvas.fill({{x, 36}, {x + 2, 36}, {x - 2, 46}, {x - 4, 46}}, 0x2E86AB);
}

void drawWood(Canvas &canvas) {
    for (int i = 0; i < 4; ++i)
        canvas.shade(i * 20, i * 20 + 19.5, i % 2 == 0 ? 0xE4CFA2 : 0xDCC594, 0xD6BD8A);
}

void drawGull(Canvas &canvas) {
    canvas.shade(0, 80, 0x9CC7DF, 0xFFFDF6);
    gull(canvas, 60, 40, 48, 0x2B3A42);
}

void drawFace(Canvas &canvas, Colour hair, Colour back) {
    canvas.shade(0, 48, back, back);
    canvas.disc(24, 20, 13, hair);
    canvas.disc(24, 24, 10, 0xE7B98C);
    canvas.disc(20, 23, 1.4, 0x2B1A12);
    canvas.disc(28, 23, 1.4, 0x2B1A12);
    canvas.fill({{8, 48}, {40, 48}, {32, 36}, {16, 36}}, mixed(back, 0x12354B, 0.7));
}

struct Sign {
    int width;
    int height;
    Drawing drawing;
};

constexpr std::array kSigns = {
    Sign{14, 14, {"buoy", drawBuoy}},
    Sign{48, 40, {"rope", drawRope}},
    Sign{32, 32, {"paper", drawPaper}},
    Sign{30, 30, {"frame", drawFrame}},
    Sign{16, 190, {"sky", drawSky}},
    Sign{48, 48, {"sun", drawSun}},
    Sign{48, 48, {"cloud", drawCloud}},
    Sign{48, 48, {"rain", drawRain}},
    Sign{64, 80, {"wood", drawWood}},
    Sign{120, 80, {"gull", drawGull}},
    Sign{48, 48, {"face1", [](Canvas &canvas) { drawFace(canvas, 0x5B3420, 0xC7D7C0); }}},
    Sign{48, 48, {"face2", [](Canvas &canvas) { drawFace(canvas, 0xC08A2E, 0xE3C7CF); }}},
    Sign{48, 48, {"face3", [](Canvas &canvas) { drawFace(canvas, 0x2B2438, 0xC3CFE0); }}}};

} // namespace

std::string sceneOf(std::string_view name, int width) {
    const auto scene = std::ranges::find(kScenes, name, &Drawing::name);
    if (scene == kScenes.end())
        throw std::invalid_argument("no scene " + std::string(name));
    Canvas canvas(width, width * 9 / 16, kWide);
    scene->draw(canvas);
    return canvas.png();
}

std::string signOf(std::string_view name) {
    const auto sign =
        std::ranges::find(kSigns, name, [](const Sign &each) { return each.drawing.name; });
    if (sign == kSigns.end())
        throw std::invalid_argument("no sign " + std::string(name));
    Canvas canvas(sign->width, sign->height, sign->width);
    sign->drawing.draw(canvas);
    return canvas.png();
}

std::string tileOf(std::string_view name) {
    std::uint32_t hash = 2166136261U;
    for (const char c : name)
        hash = (hash ^ static_cast<std::uint8_t>(c)) * 16777619U;
    constexpr std::array<Colour, 7> kColours = {0x12354B, 0xB5534A, 0x3C7A57, 0x7A5C99,
                                                0xC08A2E, 0x2E86AB, 0x555555};
    const Colour dark = kColours.at(hash % kColours.size());
    Canvas canvas(120, 80, 120);
    canvas.shade(0, 80, mixed(dark, 0xFFFFFF, 0.75), mixed(dark, 0xFFFFFF, 0.55));
    for (std::uint32_t i = 0; i < 16; ++i)
        if ((hash >> i & 1U) != 0)
            canvas.fill({{4 + i * 7.0, 6}, {9 + i * 7.0, 6}, {9 + i * 7.0, 40}, {4 + i * 7.0, 40}},
                        dark);
    canvas.disc(20 + hash / 65536 % 80, 60, 4 + hash / 1024 % 12, mixed(dark, 0xF4B942, 0.7));
    return canvas.png();
}

} // namespace nv::test
