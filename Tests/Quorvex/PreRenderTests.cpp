// The pre-render asks for the input exactly where the output is wanted, and
// reports the union of what the host can give.
#include "Support/LoadedModuleTest.h"
#include "Support/RectPrinting.h"

#include "Runtime/World.h"

namespace Halvane::Quorvex::Testing {
namespace {

using Host::FrameTime;
using Host::HostCall;
using Host::World;

class PreRenderTest : public LoadedModuleTest {
protected:
    void SetUp() override { host.setFrameWorlds(&input, &output); }

    World input{64, 48, PF_PixelFormat_ARGB32};
    World output{64, 48, PF_PixelFormat_ARGB32};
    const FrameTime time{90, 3, 30};
};

TEST_F(PreRenderTest, EmptyOutputRectsTakeTheCheckoutsRects)
{
    PF_PreRenderOutput result{};
    ASSERT_EQ(session.smartPreRender(PF_LRect{8, 4, 40, 30}, time, result), PF_Err_NONE);
    EXPECT_EQ(result.result_rect, (PF_LRect{8, 4, 40, 30}));
    EXPECT_EQ(result.max_result_rect, (PF_LRect{0, 0, 64, 48}));
    // Nothing but the rectangles is written.
    EXPECT_EQ(result.solid, 0);
    EXPECT_EQ(result.pre_render_data, nullptr);
    EXPECT_EQ(result.delete_pre_render_data_func, nullptr);
}

TEST_F(PreRenderTest, TheInputIsRequestedUnchangedAtTheFramesTime)
{
    PF_PreRenderOutput result{};
    ASSERT_EQ(session.smartPreRender(PF_LRect{-5, 3, 70, 20}, time, result, 16), PF_Err_NONE);
    const auto checkout = host.lastLayerCheckout();
    EXPECT_EQ(checkout.index, 0);
    EXPECT_EQ(checkout.checkoutId, 0);
    EXPECT_EQ(checkout.request.rect, (PF_LRect{-5, 3, 70, 20}));
    EXPECT_EQ(checkout.request.field, PF_Field_FRAME);
    EXPECT_EQ(checkout.request.channel_mask, PF_ChannelMask_ARGB);
    EXPECT_EQ(checkout.time.value, 90);
    EXPECT_EQ(checkout.time.step, 3);
    EXPECT_EQ(checkout.time.scale, 30u);
}

TEST_F(PreRenderTest, DisjointRectsUniteIntoTheirBoundingBox)
{
    PF_PreRenderOutput result{};
    result.result_rect = PF_LRect{50, 40, 60, 46};
    result.max_result_rect = PF_LRect{-10, -10, -2, -2};
    ASSERT_EQ(session.smartPreRender(PF_LRect{2, 3, 10, 12}, time, result), PF_Err_NONE);
    EXPECT_EQ(result.result_rect, (PF_LRect{2, 3, 60, 46}));
    EXPECT_EQ(result.max_result_rect, (PF_LRect{-10, -10, 64, 48}));
}

TEST_F(PreRenderTest, AnEmptySourceLeavesTheDestination)
{
    PF_PreRenderOutput result{};
    result.result_rect = PF_LRect{1, 2, 3, 4};
    result.max_result_rect = PF_LRect{5, 6, 7, 8};
    // Edges that meet count as empty too.
    host.overrideCheckoutRects(PF_LRect{10, 10, 10, 20}, PF_LRect{0, 5, 9, 5});
    ASSERT_EQ(session.smartPreRender(PF_LRect{0, 0, 64, 48}, time, result), PF_Err_NONE);
    EXPECT_EQ(result.result_rect, (PF_LRect{1, 2, 3, 4}));
    EXPECT_EQ(result.max_result_rect, (PF_LRect{5, 6, 7, 8}));
}

TEST_F(PreRenderTest, AnEmptyDestinationCopiesTheSourceEvenInsideOut)
{
    PF_PreRenderOutput result{};
    result.result_rect = PF_LRect{4, 4, 4, 9};
    result.max_result_rect = PF_LRect{7, 7, 1, 1};
    host.overrideCheckoutRects(PF_LRect{30, 2, 10, 8}, PF_LRect{3, 9, 12, 1});
    ASSERT_EQ(session.smartPreRender(PF_LRect{0, 0, 64, 48}, time, result), PF_Err_NONE);
    EXPECT_EQ(result.result_rect, (PF_LRect{30, 2, 10, 8}));
    EXPECT_EQ(result.max_result_rect, (PF_LRect{3, 9, 12, 1}));
}

TEST_F(PreRenderTest, AFailingCheckoutReturnsItsStatusAndLeavesTheRects)
{
    host.failures().fail(HostCall::CheckoutLayer, PF_Interrupt_CANCEL);
    PF_PreRenderOutput result{};
    result.result_rect = PF_LRect{1, 2, 3, 4};
    EXPECT_EQ(session.smartPreRender(PF_LRect{0, 0, 64, 48}, time, result), PF_Interrupt_CANCEL);
    EXPECT_EQ(result.result_rect, (PF_LRect{1, 2, 3, 4}));
    EXPECT_EQ(result.max_result_rect, (PF_LRect{0, 0, 0, 0}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
