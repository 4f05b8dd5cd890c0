#pragma once

#include "Runtime/EffectSession.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"

#include <gtest/gtest.h>

namespace Halvane::Quorvex::Testing {

// The built effect module, loaded into a fresh host runtime for each test.
// Every test ends with the host's books balanced: no suite held, no handle
// open, no parameter checked out. `Base` is the fixture underneath, for
// tests that also need a GL context of the host's own.
template <typename Base = ::testing::Test>
class LoadedModuleTestOn : public Base {
protected:
    void TearDown() override
    {
        EXPECT_EQ(host.suites().outstanding(), 0u) << "a suite was not released";
        EXPECT_EQ(host.suites().unbalancedReleases(), 0u) << "a suite was released twice";
        EXPECT_EQ(host.handles().openHandles(), 0u) << "a handle was not disposed";
        EXPECT_EQ(host.handles().misuses(), 0u) << "a handle was misused";
        EXPECT_EQ(host.openParamCheckouts(), 0) << "a parameter was not checked in";
        Base::TearDown();
    }

    Host::HostRuntime host;
    Host::PluginModule module{QUORVEX_MODULE_PATH};
    Host::EffectSession session{host, module};
};

using LoadedModuleTest = LoadedModuleTestOn<>;

}  // namespace Halvane::Quorvex::Testing
