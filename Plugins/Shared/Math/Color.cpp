#include "Math/Color.h"

#include "Math/Float.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace Halvane::Quorvex {

namespace {

// Channels from text and packed values are divided in float and then widened: 128
// gives 0.501960813999176, not 128/255 in double.
double channelFromField(std::uint64_t field, float fieldMax)
{
    return static_cast<double>(static_cast<float>(field) / fieldMax);
}

double nibble(std::uint64_t value, int shift)
{
    return channelFromField((value >> shift) & 0xFu, 15.0f);
}

double byte(std::uint64_t value, int shift)
{
    return channelFromField((value >> shift) & 0xFFu, 255.0f);
}

// The channel times 255, truncated towards zero, as the bits that "%X" prints. Values
// beyond the int range saturate and NaN gives 0, rather than being undefined.
unsigned int hexField(double channel)
{
    double const scaled = channel * 255.0;
    std::int32_t truncated = 0;
    if (scaled >= 2147483647.0) {
        truncated = std::numeric_limits<std::int32_t>::max();
    } else if (scaled <= -2147483648.0) {
        truncated = std::numeric_limits<std::int32_t>::min();
    } else if (!std::isnan(scaled)) {
        truncated = static_cast<std::int32_t>(scaled);
    }
    return static_cast<unsigned int>(truncated);
}

} // namespace

Color::Color(double red, double green, double blue, double alpha) : channels{red, green, blue, alpha} {}

Color::Color(std::string const& text)
{
    if (text.empty() || text.find('#') != 0) {
        return;
    }
    std::string const digits = text.substr(1);
    // Converted before the length is looked at, so that text without a leading digit
    // raises even when its length would have been refused.
    std::uint64_t const value = std::stoull(digits, nullptr, 16);
    switch (digits.size()) {
    case 3:
        set(nibble(value, 8), nibble(value, 4), nibble(value, 0), 1.0);
        break;
    case 4:
        set(nibble(value, 8), nibble(value, 4), nibble(value, 0), nibble(value, 12));
        break;
    case 6:
        set(byte(value, 16), byte(value, 8), byte(value, 0), 1.0);
        break;
    case 8:
        set(byte(value, 16), byte(value, 8), byte(value, 0), byte(value, 24));
        break;
    default:
        break;
    }
}

Color::Color(unsigned int argb)
    : channels{byte(argb, 16), byte(argb, 8), byte(argb, 0), byte(argb, 24)}
{
}

void Color::set(double red, double green, double blue, double alpha)
{
    channels[0] = red;
    channels[1] = green;
    channels[2] = blue;
    channels[3] = alpha;
}

void Color::setNil()
{
    set(-1.0, -1.0, -1.0, -1.0);
}

bool Color::isNil() const
{
    return channels[0] < 0.0 || channels[1] < 0.0 || channels[2] < 0.0 || channels[3] < 0.0;
}

double Color::r() const
{
    return channels[0];
}

double Color::g() const
{
    return channels[1];
}

double Color::b() const
{
    return channels[2];
}

double Color::a() const
{
    return channels[3];
}

bool Color::equal(Color const& other) const
{
    if (isNil() && other.isNil()) {
        return true;
    }
    for (int i = 0; i < 4; ++i) {
        if (!floatEqual(channels[i], other.channels[i])) {
            return false;
        }
    }
    return true;
}

bool Color::operator==(Color const& other) const
{
    return equal(other);
}

bool Color::operator!=(Color const& other) const
{
    return !equal(other);
}

Color Color::operator+(Color const& other) const
{
    return {r() + other.r(), g() + other.g(), b() + other.b(), a() + other.a()};
}

Color Color::operator-(Color const& other) const
{
    return {r() - other.r(), g() - other.g(), b() - other.b(), a() - other.a()};
}

Color Color::operator*(Color const& other) const
{
    return {r() * other.r(), g() * other.g(), b() * other.b(), a() * other.a()};
}

Color Color::operator*(double const& factor) const
{
    return {r() * factor, g() * factor, b() * factor, a() * factor};
}

Color Color::lerp(Color const& from, Color const& to, double t)
{
    if (t < 0.0) {
        t = 0.0;
    }
    if (t > 1.0) {
        t = 1.0;
    }
    double const fromWeight = static_cast<double>(static_cast<float>(1.0 - t));
    return {from.r() * fromWeight + to.r() * t, from.g() * fromWeight + to.g() * t,
            from.b() * fromWeight + to.b() * t, from.a() * fromWeight + to.a() * t};
}

std::string Color::toHexString()
{
    // Room for "#" and four fields of up to eight digits each.
    char text[40];
    if (a() == 1.0) {
        std::snprintf(text, sizeof text, "#%X%X%X", hexField(r()), hexField(g()), hexField(b()));
    } else {
        std::snprintf(text, sizeof text, "#%X%X%X%X", hexField(a()), hexField(r()), hexField(g()),
                      hexField(b()));
    }
    return text;
}

} // namespace Halvane::Quorvex
