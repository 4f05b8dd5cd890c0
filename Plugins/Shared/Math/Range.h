#pragma once

#include <cstdint>

namespace Halvane::Quorvex {

// A pair of 32-bit ints. There is no default constructor: the choice between the
// empty and the unbounded range is the caller's, through Range(bool).
class Range
{
public:
    std::int32_t first;
    std::int32_t second;

    // (0, 2147483647) for true, (0, 0) for false.
    explicit Range(bool unbounded);
    // (value, 0)
    explicit Range(int value);
    Range(int firstValue, int secondValue);
};

} // namespace Halvane::Quorvex
