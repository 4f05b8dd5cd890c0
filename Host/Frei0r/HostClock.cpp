#include "HostClock.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <limits>
#include <optional>
#include <string>

namespace Halvane::Quorvex::Frei0r {

namespace {

// The largest scale tried for an exact fraction: beyond it float time in the
// effect could no longer tell the fractions apart anyway.
constexpr double kMaxExactScale = 1 << 20;
// Scale of the fallback for a time that is no short fraction.
constexpr double kFallbackScale = 1e6;

std::optional<HostClock::Unit> UnitFromEnvironment()
{
    const char* value = std::getenv(HostClock::kUnitVariable);
    if (!value || !*value) {
        return std::nullopt;
    }
    if (std::strcmp(value, "seconds") == 0) {
        return HostClock::Unit::Seconds;
    }
    if (std::strcmp(value, "milliseconds") == 0) {
        return HostClock::Unit::Milliseconds;
    }
    std::fprintf(stderr,
                 "quorvex frei0r: ignoring %s=%s: the values are seconds and milliseconds\n",
                 HostClock::kUnitVariable, value);
    return std::nullopt;
}

bool StartsWith(const char* text, const char* prefix)
{
    return text && std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

const char* BaseName(const char* path)
{
    const char* slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

// ffmpeg's frei0r filter passes pts * time base * 1000. It lives in
// libavfilter, whichever program (ffmpeg, ffplay, an application) uses it;
// a static ffmpeg carries it in the program itself.
bool CalledByLibavfilter(const void* callerAddress)
{
    Dl_info info{};
    if (!callerAddress || !dladdr(callerAddress, &info) || !info.dli_fname) {
        return false;
    }
    if (StartsWith(BaseName(info.dli_fname), "libavfilter")) {
        return true;
    }
    // The caller is the program itself: a static build.
    return StartsWith(program_invocation_short_name, "ff") &&
           std::strcmp(BaseName(info.dli_fname), program_invocation_short_name) == 0;
}

}  // namespace

HostClock HostClock::forCaller(const void* callerAddress)
{
    static const std::optional<Unit> chosen = UnitFromEnvironment();
    if (chosen) {
        return HostClock(*chosen);
    }
    return HostClock(CalledByLibavfilter(callerAddress) ? Unit::Milliseconds : Unit::Seconds);
}

std::optional<Host::FrameTime> HostClock::frameTime(double hostTime) const
{
    const double seconds = mUnit == Unit::Milliseconds ? hostTime / 1000.0 : hostTime;
    const double limit = static_cast<double>(std::numeric_limits<A_long>::max());
    if (!std::isfinite(seconds) || std::abs(seconds) > limit) {
        return std::nullopt;
    }
    // Continued fraction: the first convergent within rounding of the host's
    // double arithmetic is the fraction the host's frame time was.
    const double tolerance = 1e-12 * std::max(1.0, std::abs(seconds));
    double rest = std::abs(seconds);
    double p0 = 1, q0 = 0, p1 = std::floor(rest), q1 = 1;
    for (int term = 0; term < 40; ++term) {
        if (std::abs(std::abs(seconds) - p1 / q1) <= tolerance) {
            if (p1 <= limit) {
                const auto value = static_cast<A_long>(p1);
                return Host::FrameTime{seconds < 0 ? -value : value, 1, static_cast<A_u_long>(q1)};
            }
            break;
        }
        const double fraction = rest - std::floor(rest);
        if (fraction <= 0) {
            break;
        }
        rest = 1 / fraction;
        const double a = std::floor(rest);
        const double p2 = a * p1 + p0, q2 = a * q1 + q0;
        if (q2 > kMaxExactScale) {
            break;
        }
        p0 = p1, q0 = q1, p1 = p2, q1 = q2;
    }
    const double scale = std::min(kFallbackScale, std::floor(limit / std::max(1.0, std::abs(seconds))));
    return Host::FrameTime::atSeconds(seconds, static_cast<A_u_long>(std::max(1.0, scale)));
}

}  // namespace Halvane::Quorvex::Frei0r
