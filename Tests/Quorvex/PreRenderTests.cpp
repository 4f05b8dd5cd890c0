// The pre-render asks for the input exactly where the output is wanted, and
// reports the union of what the host can give.
#include "Support/LoadedModuleTest.h"
#include "Support/RectPrinting.h"

#include "Runtime/World.h"

namespace Halvane::Quorvex::Testing {
namespace {

using Host::HostCall;
using Host::World;

class PreRenderTest : public LoadedModuleTest {
protected:
    void SetUp() override { host.setFrameWorlds(&input, &output); }

    World input{64, 48, PF_PixelFormat_ARGB32};
    World output{64, 48, PF_PixelFormat_ARGB32};
    const Host::FrameTime time{90, 3, 30};
};

TEST_F(PreRenderTest, TheInputIsRequestedUnchangedAtTheFramesTimeAndOnlyTheRectsAreWritten)
{
    PF_PreRenderOutput result{};
    ASSERT_EQ(session.smartPreRender(PF_LRect{-5, 3, 70, 20}, time, result, 16), PF_Err_NONE);
    const auto checkout = host.lastLayerCheckout();
    EXPECT_EQ(std::vector<long>({checkout.index, checkout.checkoutId, checkout.request.field,
                                 checkout.request.channel_mask, checkout.time.value, checkout.time.step,
                                 static_cast<long>(checkout.time.scale)}),
              std::vector<long>({0, 0, PF_Field_FRAME, PF_ChannelMask_ARGB, 90, 3, 30}));
    EXPECT_EQ(checkout.request.rect, (PF_LRect{-5, 3, 70, 20}));
    // As the host clipped them.
    EXPECT_EQ(result.result_rect, (PF_LRect{0, 3, 64, 20}));
    EXPECT_EQ(result.max_result_rect, (PF_LRect{0, 0, 64, 48}));
    EXPECT_EQ(result.solid, 0);
    EXPECT_EQ(result.pre_render_data, nullptr);
    EXPECT_EQ(result.delete_pre_render_data_func, nullptr);
}

TEST_F(PreRenderTest, EachRectIsTheUnionOfWhatItHeldAndWhatTheCheckoutGivesUnlessTheCheckoutFails)
{
    struct Case {
        const char* what;
        PF_LRect before, given, after;
    };
    // Edges that meet count as empty; an empty destination takes the source
    // as it is, even inside out.
    const Case cases[] = {
        {"disjoint", {50, 40, 60, 46}, {2, 3, 10, 12}, {2, 3, 60, 46}},
        {"negative", {-10, -10, -2, -2}, {0, 0, 64, 48}, {-10, -10, 64, 48}},
        {"empty source", {1, 2, 3, 4}, {10, 10, 10, 20}, {1, 2, 3, 4}},
        {"flat source", {5, 6, 7, 8}, {0, 5, 9, 5}, {5, 6, 7, 8}},
        {"empty destination", {4, 4, 4, 9}, {30, 2, 10, 8}, {30, 2, 10, 8}},
        {"inside-out destination", {7, 7, 1, 1}, {3, 9, 12, 1}, {3, 9, 12, 1}},
    };
    for (const Case& c : cases) {
        PF_PreRenderOutput result{};
        result.result_rect = c.before;
        result.max_result_rect = c.before;
        host.overrideCheckoutRects(c.given, c.given);
        ASSERT_EQ(session.smartPreRender(PF_LRect{0, 0, 64, 48}, time, result), PF_Err_NONE);
        EXPECT_EQ(result.result_rect, c.after) << c.what;
        EXPECT_EQ(result.max_result_rect, c.after) << c.what;
    }

    host.failures().fail(HostCall::CheckoutLayer, PF_Interrupt_CANCEL);
    PF_PreRenderOutput result{};
    result.result_rect = PF_LRect{1, 2, 3, 4};
    EXPECT_EQ(session.smartPreRender(PF_LRect{0, 0, 64, 48}, time, result), PF_Interrupt_CANCEL);
    EXPECT_EQ(result.result_rect, (PF_LRect{1, 2, 3, 4}));
    EXPECT_EQ(result.max_result_rect, (PF_LRect{0, 0, 0, 0}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
