#pragma once

#include <stdexcept>

namespace Halvane::Quorvex::Host {

// A failure of the host itself: a module that does not load, a world that
// cannot be made. The message names the file or value at fault.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace Halvane::Quorvex::Host
