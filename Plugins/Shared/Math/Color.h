#pragma once

#include <string>

namespace Halvane::Quorvex {

// Red, green, blue and alpha as doubles, nominally 0 to 1 and never clamped.
// A colour is nil while any channel is below 0.
class Color
{
public:
    double channels[4] = {1.0, 1.0, 1.0, 1.0};

    // Opaque white.
    Color() = default;
    Color(double red, double green, double blue, double alpha);
    // "#RGB", "#ARGB", "#RRGGBB" or "#AARRGGBB", alpha first. Any other text, or a
    // text that does not start with '#', gives opaque white. The digits go through
    // std::stoull, whose std::invalid_argument (no leading hex digit, "#" alone) and
    // std::out_of_range (beyond 64 bits) reach the caller.
    explicit Color(std::string const& text);
    // 0xAARRGGBB: the top byte is always alpha, so 0xFF0000 is a transparent red.
    explicit Color(unsigned int argb);

    void set(double red, double green, double blue, double alpha);
    // All four channels -1.
    void setNil();
    bool isNil() const;
    double r() const;
    double g() const;
    double b() const;
    double a() const;

    // Two nil colours are equal whatever they hold; otherwise floatEqual per channel.
    bool equal(Color const& other) const;
    bool operator==(Color const& other) const;
    bool operator!=(Color const& other) const;

    // Per channel, alpha included, unclamped; a difference can come out nil.
    Color operator+(Color const& other) const;
    Color operator-(Color const& other) const;
    Color operator*(Color const& other) const;
    Color operator*(double const& factor) const;

    // t is clamped to 0..1; the first weight, 1 - t, is rounded to float.
    static Color lerp(Color const& from, Color const& to, double t);

    // "#RGB" when alpha is exactly 1, else "#ARGB", each field the channel times 255
    // truncated and printed in uppercase hex without leading zeros, so the text does
    // not always read back as the same colour. Leaves the colour unchanged.
    std::string toHexString();
};

} // namespace Halvane::Quorvex
