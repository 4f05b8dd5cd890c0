#include "Runtime/DescriptorRedirect.h"

#include <cstdio>
#include <iostream>
#include <unistd.h>

namespace Halvane::Quorvex::Host {

namespace {

void FlushStandardStreams()
{
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
}

}  // namespace

DescriptorRedirect::DescriptorRedirect(int descriptor, int target) : mDescriptor(descriptor)
{
    FlushStandardStreams();
    mSaved = ::dup(mDescriptor);
    if (mSaved >= 0 && ::dup2(target, mDescriptor) < 0) {
        ::close(mSaved);
        mSaved = -1;
    }
}

void DescriptorRedirect::restore()
{
    if (mSaved < 0) {
        return;
    }
    FlushStandardStreams();
    ::dup2(mSaved, mDescriptor);
    ::close(mSaved);
    mSaved = -1;
}

}  // namespace Halvane::Quorvex::Host
