#include "platform/win32/glyphs.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>

namespace quenta::platform {
namespace {

struct Point {
  double x = 0;
  double y = 0;
};

enum class Tone { kLine, kAccent };
enum class Draw { kOpen, kClosed, kFilled };

struct Shape {
  Tone tone;
  Draw draw;
  std::vector<Point> points;
};

constexpr double kGrid = 24;
constexpr double kPen = 1.75;  // width of lines, in units of the grid

Shape Line(std::vector<Point> points) {
  return {Tone::kLine, Draw::kOpen, std::move(points)};
}
Shape Outline(std::vector<Point> points) {
  return {Tone::kLine, Draw::kClosed, std::move(points)};
}
Shape Accent(std::vector<Point> points) {
  return {Tone::kAccent, Draw::kOpen, std::move(points)};
}
Shape AccentOutline(std::vector<Point> points) {
  return {Tone::kAccent, Draw::kClosed, std::move(points)};
}
Shape AccentFill(std::vector<Point> points) {
  return {Tone::kAccent, Draw::kFilled, std::move(points)};
}

std::vector<Point> Circle(double x, double y, double radius) {
  constexpr int kSides = 32;
  std::vector<Point> points;
  for (int i = 0; i < kSides; ++i) {
    const double angle = 2 * std::numbers::pi * i / kSides;
    points.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
  }
  return points;
}

std::vector<Point> Box(double left, double top, double right, double bottom) {
  return {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
}

const std::vector<Point> kTag{{4, 4}, {12, 4}, {20, 12}, {12, 20}, {4, 12}};

const std::map<std::string_view, std::vector<Shape>>& Drawings() {
  static const std::map<std::string_view, std::vector<Shape>> drawings{
      {"gravar",
       {Outline({{4, 4}, {16.5, 4}, {20, 7.5}, {20, 20}, {4, 20}}), Line({{8, 4}, {8, 9}, {15, 9}, {15, 4}}),
        AccentOutline(Box(8, 13.5, 16, 20))}},
      {"apagar",
       {Line({{4, 6.5}, {20, 6.5}}), Line({{9, 6.5}, {9, 4}, {15, 4}, {15, 6.5}}),
        Line({{6, 6.5}, {7, 20}, {17, 20}, {18, 6.5}}), Accent({{10.2, 10.5}, {10.2, 16}}),
        Accent({{13.8, 10.5}, {13.8, 16}})}},
      {"duplicar", {Line({{15.5, 4}, {4, 4}, {4, 15.5}}), AccentOutline(Box(8.5, 8.5, 20, 20))}},
      {"imprimir",
       {Line({{7, 9}, {7, 4}, {17, 4}, {17, 9}}), Line({{7, 17}, {4, 17}, {4, 9}, {20, 9}, {20, 17}, {17, 17}}),
        AccentOutline(Box(7.5, 13.5, 16.5, 20))}},
      {"sair",
       {Line({{13, 4}, {5, 4}, {5, 20}, {13, 20}}), Accent({{10, 12}, {20, 12}}),
        Accent({{16, 8}, {20, 12}, {16, 16}})}},
      {"gerar",
       {Outline(Box(3.5, 9, 9, 15)), Line({{9, 12}, {15, 12}}), Line({{15, 6}, {12, 6}, {12, 18}, {15, 18}}),
        AccentFill(Box(15, 3.5, 20.5, 8.5)), AccentFill(Box(15, 9.5, 20.5, 14.5)),
        AccentFill(Box(15, 15.5, 20.5, 20.5))}},
      {"adicionar", {Outline(Circle(12, 12, 8.5)), Accent({{12, 8}, {12, 16}}), Accent({{8, 12}, {16, 12}})}},
      {"remover", {Outline(Circle(12, 12, 8.5)), Accent({{8, 12}, {16, 12}})}},
      {"relatorio",
       {Outline({{5.5, 3.5}, {14, 3.5}, {18.5, 8}, {18.5, 20.5}, {5.5, 20.5}}), Line({{14, 3.5}, {14, 8}, {18.5, 8}}),
        Accent({{9, 17}, {9, 14}}), Accent({{12, 17}, {12, 11.5}}), Accent({{15, 17}, {15, 13}})}},
      {"produto",
       {Outline({{12, 3}, {20, 7.5}, {20, 16.5}, {12, 21}, {4, 16.5}, {4, 7.5}}),
        Accent({{4, 7.5}, {12, 12}, {20, 7.5}}), Accent({{12, 12}, {12, 21}})}},
      {"list1", {Outline(Box(6, 6, 18, 18))}},
      {"list2", {Outline(kTag), Line(Circle(8, 8, 0.6))}},
      {"list3", {AccentFill(kTag), AccentOutline(kTag)}},
  };
  return drawings;
}

const std::vector<Shape>& Drawing(std::string_view key) {
  static const std::vector<Shape> mark{Outline(Circle(12, 12, 8.5)), AccentFill(Circle(12, 12, 3))};
  const auto found = Drawings().find(key);
  return found != Drawings().end() ? found->second : mark;
}

double SquaredDistance(Point p, Point a, Point b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double length = dx * dx + dy * dy;
  const double along = length > 0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length, 0.0, 1.0) : 0;
  const double x = p.x - a.x - along * dx;
  const double y = p.y - a.y - along * dy;
  return x * x + y * y;
}

bool Covers(const Shape& shape, Point p, double pen) {
  const std::size_t count = shape.points.size();
  bool inside = false;
  for (std::size_t i = 0; i < count; ++i) {
    if (i + 1 == count && shape.draw == Draw::kOpen) break;
    const Point a = shape.points[i];
    const Point b = shape.points[(i + 1) % count];
    if (shape.draw == Draw::kFilled) {
      if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (p.y - a.y) * (b.x - a.x) / (b.y - a.y)) inside = !inside;
    } else if (SquaredDistance(p, a, b) <= pen * pen / 4) {
      return true;
    }
  }
  return inside;
}

// Share of the pixel that the shape covers.
double Coverage(const Shape& shape, int x, int y, double unit, double pen) {
  constexpr int kSamples = 4;
  int hits = 0;
  for (int row = 0; row < kSamples; ++row) {
    for (int column = 0; column < kSamples; ++column) {
      const Point sample{(x + (column + 0.5) / kSamples) * unit, (y + (row + 0.5) / kSamples) * unit};
      if (Covers(shape, sample, pen)) ++hits;
    }
  }
  return static_cast<double>(hits) / (kSamples * kSamples);
}

}  // namespace

std::vector<std::uint32_t> RenderGlyph(std::string_view key, int size, const GlyphColors& colors) {
  const double unit = kGrid / size;               // of one pixel
  const double pen = std::max(kPen, 1.1 * unit);  // never thinner than a pixel
  std::vector<std::uint32_t> pixels;
  pixels.reserve(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      std::array<double, 4> argb{};  // premultiplied, 0 to 1
      for (const Shape& shape : Drawing(key)) {
        const double coverage = Coverage(shape, x, y, unit, pen);
        if (coverage == 0) continue;
        const std::uint32_t color = shape.tone == Tone::kLine ? colors.line : colors.accent;
        const std::array<double, 4> over{1.0, (color >> 16 & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0,
                                         (color & 0xFF) / 255.0};
        for (std::size_t i = 0; i < argb.size(); ++i) argb[i] = over[i] * coverage + argb[i] * (1 - coverage);
      }
      std::uint32_t pixel = 0;
      for (const double part : argb) pixel = pixel << 8 | static_cast<std::uint32_t>(std::lround(part * 255));
      pixels.push_back(pixel);
    }
  }
  return pixels;
}

}  // namespace quenta::platform
