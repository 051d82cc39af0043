// Points and vectors of the picture plane, in pixels (y downwards).
#pragma once

namespace tessiva {

struct Vec2 {
  double x = 0.0;
  double y = 0.0;
};

inline Vec2 operator+(Vec2 a, Vec2 b) { return {a.x + b.x, a.y + b.y}; }
inline Vec2 operator-(Vec2 a, Vec2 b) { return {a.x - b.x, a.y - b.y}; }
inline double Cross(Vec2 a, Vec2 b) { return a.x * b.y - a.y * b.x; }
inline double SquaredLength(Vec2 a) { return a.x * a.x + a.y * a.y; }

}  // namespace tessiva
