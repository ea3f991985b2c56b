// The angle constants of the whole program. Pi is the 15-digit literal the program has
// always used, not the double nearest to pi; every bearing and area it prints depends
// on that, so nothing may compute pi afresh (no M_PI, no std::numbers::pi).
#pragma once

namespace tavik {

constexpr double Pi = 3.14159265358979;
// Three half turns; divided by 2 at the point of use for 3π/2.
constexpr double ThreePi = 9.42477796076937;
// Radians to degrees. Degrees go back as x / 180 * Pi; there is no reciprocal constant.
constexpr double RadToDeg = 57.2957795130823;
// A whole turn, as written wherever an angle is brought into 0 to 2π.
constexpr double TwoPi = 6.28318530717958;

}  // namespace tavik
