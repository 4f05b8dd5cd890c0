#pragma once

namespace Halvane::Quorvex {

// The GL objects alive in the current context: textures, renderbuffers,
// buffers, programs and shaders of its whole share group, and the
// framebuffers and vertex arrays of the context itself, which GL does not
// share. Counted by asking GL about every name up to the highest that an
// object made now would get (at least kNamesAlwaysScanned), so that names
// handed out in rising order and names reused from the lowest free one are
// both covered. Built only into the benchmarks' module; costs milliseconds.
class GLObjectCensus {
public:
    static constexpr unsigned kNamesAlwaysScanned = 4096;

    // Needs a current context.
    static GLObjectCensus take();

    long mTextures = 0;
    long mRenderbuffers = 0;
    long mBuffers = 0;
    long mPrograms = 0;
    long mShaders = 0;
    long mFramebuffers = 0;
    long mVertexArrays = 0;
};

}  // namespace Halvane::Quorvex
