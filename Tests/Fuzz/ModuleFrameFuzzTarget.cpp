// The module's frame as a hostile host hands it: lying world records, unknown formats, any parameter or time,
// failing calls and suites. Whatever it answers, the frame must not crash, must leave the host's context
// current, give back all it took, and write no byte outside the output's pixels.
#include "FuzzInput.h"

#include "GL/GLPlatform.h"
#include "GL/HostPixels.h"
#include "Runtime/EffectSession.h"
#include "Runtime/HostRuntime.h"
#include "Runtime/PluginModule.h"
#include "Runtime/World.h"

#include <memory>
#include <vector>

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::World;

// Frames stay small: llvmpipe draws every one, and the fuzzer needs many.
constexpr unsigned kLargestSide = 64;

// Set up once, as a real host keeps an effect loaded from frame to frame.
struct LoadedEffect {
    Host::HostRuntime host;
    Host::PluginModule module{QUORVEX_MODULE_PATH};
    Host::EffectSession session{host, module};
    GLPlatform::OwnedContext hostContext = GLPlatform::createContext(nullptr);

    LoadedEffect()
    {
        GLPlatform::makeCurrent(hostContext.get());
        Require(session.globalSetup() == PF_Err_NONE, "global set-up failed");
        Require(session.paramsSetup() == PF_Err_NONE, "parameter set-up failed");
    }

    // As a host that unloads the effect: what the module still holds then is a leak.
    ~LoadedEffect()
    {
        GLPlatform::makeCurrent(hostContext.get());
        session.globalSetdown();
        GLPlatform::makeCurrent(GLPlatform::CurrentBinding{});
    }
};

std::unique_ptr<World> TakeWorld(FuzzInput& input)
{
    const PF_PixelFormat known[] = {PF_PixelFormat_ARGB32, PF_PixelFormat_ARGB64, PF_PixelFormat_ARGB128};
    const unsigned choice = input.upTo(7);
    const PF_PixelFormat format = choice < 3 ? known[choice] : choice < 6 ? known[0] : input.take<PF_PixelFormat>();
    const auto width = static_cast<A_long>(input.upTo(kLargestSide));
    const auto height = static_cast<A_long>(input.upTo(kLargestSide));
    const auto padding = static_cast<A_long>(World::pixelSize(format) / 4 * input.upTo(7));
    auto world = std::make_unique<World>(width, height, format, padding);
    for (A_long y = 0; y < height; ++y) {
        const std::size_t used = static_cast<std::size_t>(width) * world->pixelSize();
        for (std::size_t i = 0; i < used; ++i) {
            world->row(y)[i] = input.take<std::uint8_t>();
        }
    }
    return world;
}

// Each lie is true to the memory behind it (a narrower world) or one the module can see (short rows, a
// negative size, no or misaligned pixels, another depth's flags); a larger size no record can show.
void Tamper(FuzzInput& input, PF_EffectWorld& record, std::size_t pixelSize)
{
    const unsigned lies = input.take<std::uint8_t>();
    const auto rowLength = static_cast<A_long>(static_cast<std::size_t>(record.width) * pixelSize);
    if ((lies & 1) && rowLength > 0) {
        const A_long value = input.take<A_long>();
        record.rowbytes = value < 0 ? value : value % rowLength;
    }
    if (lies & 2) {
        record.width = input.take<A_long>() % (record.width + 1);
    }
    if (lies & 4) {
        record.height = input.take<A_long>() % (record.height + 1);
    }
    if (lies & 8) {
        record.data = nullptr;
    }
    if ((lies & 16) && record.width > 0 && record.data != nullptr) {
        record.data = reinterpret_cast<PF_PixelPtr>(reinterpret_cast<char*>(record.data) + 1 + input.upTo(2));
        --record.width;
    }
    if (lies & 32) {
        record.world_flags = input.take<PF_WorldFlags>();
    }
}

void InjectFailures(FuzzInput& input, Host::FailureInjector& failures)
{
    // Not CheckinParam: a refused check-in stays checked out by this host's books, whatever the effect does.
    const HostCall calls[] = {HostCall::CheckoutParam, HostCall::CheckoutLayer,
                              HostCall::CheckoutLayerPixels, HostCall::CheckoutOutput, HostCall::GetPixelFormat,
                              HostCall::GetPixelData, HostCall::Iterate, HostCall::NewHandle};
    const unsigned count = input.upTo(2);
    for (unsigned i = 0; i < count; ++i) {
        const HostCall call = calls[input.upTo(sizeof calls / sizeof calls[0] - 1)];
        failures.fail(call, input.take<A_long>() | 1, static_cast<int>(input.upTo(3)), 1);
    }
    if (input.upTo(7) == 0) {
        const struct {
            const char* name;
            A_long version;
        } suites[] = {{kPFWorldSuite, 2}, {kPFIterateFloatSuite, 1}, {kPFHandleSuite, 2}};
        const auto& suite = suites[input.upTo(2)];
        // Not StatusWithSuite: a table handed over with an error status stays the effect's by this host's
        // books, while the effect, trusting the status, takes it as refused.
        failures.failSuite(suite.name, suite.version,
                           input.upTo(1) == 0 ? Host::SuiteFailure::Missing : Host::SuiteFailure::NullWithoutStatus);
    }
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace Halvane::Quorvex;
    using namespace Halvane::Quorvex::Testing;
    static LoadedEffect effect;
    FuzzInput input(data, size);

    auto source = TakeWorld(input);
    auto output = TakeWorld(input);
    effect.host.parameter(1).setValue(static_cast<double>(input.take<std::int8_t>()));
    effect.host.parameter(2).setValue(input.take<double>());
    const Host::FrameTime time{input.take<A_long>(), input.take<A_long>(), input.take<A_u_long>()};
    InjectFailures(input, effect.host.failures());

    const PF_EffectWorld sourceRecord = *source->layer();
    const PF_EffectWorld outputRecord = *output->layer();
    const std::vector<unsigned char> sourcePixels = HostPixels::bytes(*source);
    Tamper(input, *source->layer(), source->pixelSize());
    Tamper(input, *output->layer(), output->pixelSize());

    // A shorter row length that still holds a row sends the rows over the real padding, as the host said.
    const bool truePadding = output->layer()->rowbytes == outputRecord.rowbytes;

    const GLPlatform::CurrentBinding before = GLPlatform::currentBinding();
    effect.session.renderFrame(*source, *output, time);
    *source->layer() = sourceRecord;
    *output->layer() = outputRecord;
    effect.host.failures().clear();

    Require(GLPlatform::currentBinding() == before, "the frame left the host's GL context changed");
    Require(effect.host.suites().outstanding() == 0, "the frame kept a suite");
    Require(effect.host.suites().unbalancedReleases() == 0, "the frame released a suite twice");
    Require(effect.host.handles().openHandles() == 0, "the frame kept a handle");
    Require(effect.host.handles().misuses() == 0, "the frame misused a handle");
    Require(effect.host.openParamCheckouts() == 0, "the frame kept a parameter checked out");
    Require(HostPixels::bytes(*source) == sourcePixels, "the frame wrote into its input");
    Require(!truePadding || output->paddingIntact(), "the frame wrote past the output's rows");
    return 0;
}
