#pragma once

namespace Halvane::Quorvex::Host {

// Points one of the process's file descriptors (standard output or error) at
// another open file for as long as it lives, so that everything written
// there lands in that file: C stdio, C++ streams and loaded modules alike.
// The standard streams are flushed on the way in and on the way out, so that
// nothing written before or after crosses over. Best effort: where a
// descriptor cannot be had, nothing is redirected and active() says so.
class DescriptorRedirect {
public:
    DescriptorRedirect(int descriptor, int target);
    ~DescriptorRedirect() { restore(); }

    DescriptorRedirect(const DescriptorRedirect&) = delete;
    DescriptorRedirect& operator=(const DescriptorRedirect&) = delete;

    bool active() const { return mSaved >= 0; }
    // Points the descriptor back where it pointed before; once only.
    void restore();

private:
    int mDescriptor;
    int mSaved = -1;
};

}  // namespace Halvane::Quorvex::Host
