#pragma once

#include "HostTypes.h"

#include <ostream>

// Comparison and printing of the host's rectangles for test assertions. They
// stand beside PF_LRect in the global namespace so that lookup finds them.
inline bool operator==(const PF_LRect& a, const PF_LRect& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

inline std::ostream& operator<<(std::ostream& out, const PF_LRect& r)
{
    return out << "(" << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << ")";
}
