#include "Math/Range.h"

#include <limits>

namespace Halvane::Quorvex {

Range::Range(bool unbounded)
    : first(0), second(unbounded ? std::numeric_limits<std::int32_t>::max() : 0)
{
}

Range::Range(int value) : first(value), second(0) {}

Range::Range(int firstValue, int secondValue) : first(firstValue), second(secondValue) {}

} // namespace Halvane::Quorvex
