#pragma once

#include "QuorvexProfiling.h"

namespace Halvane::Quorvex {

// Counts the GL objects alive in the current context: textures,
// renderbuffers, buffers, programs and shaders of its whole share group, and
// the framebuffers and vertex arrays of the context itself, which GL does not
// share. Asks GL about every name up to the highest that an object made now
// would get (at least kNamesAlwaysScanned), so that names handed out in
// rising order and names reused from the lowest free one are both covered.
// Built only into the profiled module; costs milliseconds.
class GLObjectCensus {
public:
    static constexpr unsigned kNamesAlwaysScanned = 4096;

    GLObjectCensus() = delete;

    // Needs a current context; fills every count but mContexts.
    static void take(QuorvexLiveObjects& objects);
};

}  // namespace Halvane::Quorvex
