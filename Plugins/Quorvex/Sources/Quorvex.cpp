#include "Quorvex.h"

#include "AEGPSuites.h"
#include "Common.h"
#include "EffectSuites.h"
#include "GL/AEOpenGLContextManager.h"
#include "GL/AEOpenGLUtilities.h"
#include "GL/AEOpenglMainFrameBuffer.h"
#include "GL/FrameHooks.h"
#include "GL/GLPlatform.h"
#include "GL/PackedFloatFrame.h"
#include "GL/SaveRestoreGLContextMac.h"
#include "GlitchRender.h"
#include "HostWorldCheck.h"
#include "Helper/SuiteScoper.h"

#include <glbinding/gl/gl.h>

#include <cstring>
#include <exception>
#include <iostream>
#include <memory>
#include <new>

namespace Halvane::Quorvex {

namespace {

AEGP_PluginID mPluginID = 0;
// Made at load, before any command; its constructor makes no GL call.
std::unique_ptr<GlitchRender> mRender = std::make_unique<GlitchRender>();

// Unloaded without set-down, the module must not delete GL names in whatever
// context is current then (it may be the host's): the renderer forgets them,
// as the driver frees its objects with their contexts, and only its memory
// goes.
struct LeaveGLNamesAtUnload {
    ~LeaveGLNamesAtUnload()
    {
        if (mRender) {
            mRender->abandonGLNames();
            mRender.reset();
        }
    }
} gLeaveGLNamesAtUnload;

// Set-down deletes the renderer; a later set-up or frame in the same process
// makes it again.
GlitchRender& Renderer()
{
    if (!mRender) {
        mRender = std::make_unique<GlitchRender>();
    }
    return *mRender;
}

// Roots the share group that every render context joins, keeping the host's
// context current around it.
void SetupGL()
{
    SaveRestoreGLContextMac saver;
    AEOpenGLContextManager::setupContextManager();
    saver.restore();
}

// The frame's drawing level, open while it lives: a frame that does not
// reach end() takes its level off the frame buffer's stack, so that nothing
// piles up there.
class OpenDrawing {
public:
    explicit OpenDrawing(AEOpenglMainFrameBuffer& frameBuffer) : mFrameBuffer(frameBuffer)
    {
        mFrameBuffer.beginDrawing();
    }
    ~OpenDrawing()
    {
        if (mOpen) {
            mFrameBuffer.clearStack();
        }
    }
    OpenDrawing(const OpenDrawing&) = delete;
    OpenDrawing& operator=(const OpenDrawing&) = delete;

    void end(float multiplier)
    {
        mOpen = false;
        mFrameBuffer.endDrawing(multiplier);
    }

private:
    AEOpenglMainFrameBuffer& mFrameBuffer;
    bool mOpen = true;
};

bool IsEmptyRect(const PF_LRect* rect)
{
    return rect->left >= rect->right || rect->top >= rect->bottom;
}

// Grows `destination` to cover `source`. An empty destination takes the
// source as it is, even an empty one.
void UnionRect(const PF_LRect* source, PF_LRect* destination)
{
    if (IsEmptyRect(destination)) {
        *destination = *source;
    } else if (!IsEmptyRect(source)) {
        destination->left = source->left < destination->left ? source->left : destination->left;
        destination->top = source->top < destination->top ? source->top : destination->top;
        destination->right = source->right > destination->right ? source->right : destination->right;
        destination->bottom =
            source->bottom > destination->bottom ? source->bottom : destination->bottom;
    }
}

PF_Err About(PF_InData* in_data, PF_OutData* out_data)
{
    SuiteScoper<PF_ANSICallbacksSuite1> ansiSuite(in_data, kPFANSISuite, 1);
    ansiSuite->sprintf(out_data->return_msg, "%s v%d.%d\r%s", kEffectName, kMajorVersion,
                       kMinorVersion, kEffectDescription);
    return PF_Err_NONE;
}

PF_Err GlobalSetup(PF_InData* in_data, PF_OutData* out_data)
{
    out_data->my_version =
        PF_VERSION(kMajorVersion, kMinorVersion, kBugVersion, kStageVersion, kBuildVersion);
    out_data->out_flags |= kOutFlags;
    out_data->out_flags2 = kOutFlags2;

    SuiteScoper<AEGP_UtilitySuite6> utilitySuite(in_data, kAEGPUtilitySuite, 13);
    utilitySuite->AEGP_RegisterWithAEGP(nullptr, kEffectName, &mPluginID);
    Renderer();
    SetupGL();
    return PF_Err_NONE;
}

PF_Err GlobalSetdown(PF_InData* in_data, PF_OutData* out_data)
{
    SaveRestoreGLContextMac saver;
    // A host without a context of its own finds ours still current (a
    // snapshot of nothing restores nothing); it dies below, so nothing is
    // put back but no context at all.
    const bool oursWasCurrent = GLPlatform::currentContextId() != 0;
    // Without a shared data context no frame has run, so the renderer and the
    // frame buffer hold no GL object and go without a GL call.
    if (AEOpenGLContext* shared = AEOpenGLContextManager::getSharedDataContext()) {
        shared->makeContextCurrent();
    }
    AEOpenglMainFrameBuffer::mainFrameBuffer()->destory();
    mRender.reset();
    PackedFloatFrame::release();
    AEOpenGLContextManager::releaseContextManager();
    if (oursWasCurrent) {
        GLPlatform::makeCurrent(GLPlatform::ContextHandle{nullptr});
        saver.init();
    }
    saver.restore();

    if (in_data->sequence_data) {
        in_data->utils->host_dispose_handle(in_data->sequence_data);
        out_data->sequence_data = nullptr;
    }
    if (in_data->global_data) {
        in_data->utils->host_dispose_handle(in_data->global_data);
    }
    return PF_Err_NONE;
}

PF_Err ParamsSetup(PF_InData* in_data, PF_OutData* out_data, PF_ParamDef*[], PF_LayerDef*)
{
    static const char* const kGlitchTypeStr = "Block Glitch|Bad TV";

    out_data->num_params = kParameterCount;

    PF_ParamDef def;
    std::memset(&def, 0, sizeof(def));
    def.param_type = PF_Param_POPUP;
    in_data->utils->ansi.strcpy(def.name, kGlitchTypeName);
    def.u.pd.value = kGlitchTypeDefault;
    def.u.pd.dephault = kGlitchTypeDefault;
    def.u.pd.num_choices = kGlitchTypeChoices;
    def.u.pd.u.namesptr = kGlitchTypeStr;
    def.uu.id = kGlitchTypeId;
    if (const PF_Err err = in_data->inter.add_param(in_data->effect_ref, -1, &def)) {
        return err;
    }

    std::memset(&def, 0, sizeof(def));
    def.param_type = PF_Param_FLOAT_SLIDER;
    in_data->utils->ansi.strcpy(def.name, kSpeedName);
    def.u.fs_d.valid_min = kSpeedMin;
    def.u.fs_d.valid_max = kSpeedMax;
    def.u.fs_d.slider_min = kSpeedMin;
    def.u.fs_d.slider_max = kSpeedMax;
    def.u.fs_d.value = kSpeedDefault;
    def.u.fs_d.dephault = kSpeedDefault;
    def.u.fs_d.precision = PF_Precision_TENTHS;
    def.u.fs_d.display_flags = 0;
    def.u.fs_d.fs_flags = 0;
    def.u.fs_d.curve_tolerance = kSpeedCurveTolerance;
    def.uu.id = kSpeedId;
    return in_data->inter.add_param(in_data->effect_ref, -1, &def);
}

// The effect needs its input exactly where the host wants output: no border,
// no change of field or channels.
PF_Err SmartPreRender(PF_InData* in_data, PF_PreRenderExtra* extra)
{
    PF_RenderRequest request = extra->input->output_request;
    PF_CheckoutResult result;
    std::memset(&result, 0, sizeof(result));
    if (const PF_Err err = extra->cb->checkout_layer(
            in_data->effect_ref, kInputLayerIndex, kInputCheckoutId, &request,
            in_data->current_time, in_data->time_step, in_data->time_scale, &result)) {
        return err;
    }
    UnionRect(&result.result_rect, &extra->output->result_rect);
    UnionRect(&result.max_result_rect, &extra->output->max_result_rect);
    return PF_Err_NONE;
}

PF_Err SmartRender(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra)
{
    NotifyFrameEvent(FrameEvent::FrameBegins);
    PF_EffectWorld* input = nullptr;
    PF_EffectWorld* output = nullptr;
    if (const PF_Err err =
            extra->cb->checkout_layer_pixels(in_data->effect_ref, kInputCheckoutId, &input)) {
        return err;
    }
    if (const PF_Err err = extra->cb->checkout_output(in_data->effect_ref, &output)) {
        return err;
    }
    // The depth decides the precision of the render targets, so it is read
    // before they are sized. A failed query leaves the frame at 8 bits.
    const PF_PixelFormat format = HostWorldCheck::requireUsable(in_data, input, output);

    // Every way out of the frame, thrown ones included, gives the host its
    // context back: the saver restores when it goes out of scope.
    SaveRestoreGLContextMac saver;
    if (!AEOpenGLContextManager::getSharedDataContext()) {
        SetupGL();
    }
    AEOpenGLContextManager::getCurrentRenderContext()->makeContextCurrent();

    const long width = input->width;
    const long height = input->height;


    AEOpenglMainFrameBuffer* frameBuffer = AEOpenglMainFrameBuffer::mainFrameBuffer();
    // Single-sample: the effect's quad covers every pixel, so samples would
    // add no edge, only time, and move pixels off the shaders' exact result.
    frameBuffer->prepare(width, height, false, AEOpenGLUtilities::RenderTargetFormat(format));
    OpenDrawing drawing(*frameBuffer);

    unsigned long pixelSize = 4;
    gl::GLenum pixelType = gl::GL_UNSIGNED_BYTE;
    float multiplier = 1.0f;
    // The input texture stays with the frame buffer for the next frame.
    const gl::GLuint texture = frameBuffer->inputTexture();
    AEOpenGLUtilities::UploadPixels(texture, format, input, in_data, pixelSize, pixelType, multiplier);

    GlitchRender& renderer = Renderer();
    // Drawing with the last frame's values would show a wrong frame as right.
    if (const PF_Err err = renderer.preaprea(in_data, out_data, extra, mPluginID, input)) {
        return err;
    }
    renderer.draw(in_data, input, texture, multiplier);
    drawing.end(multiplier);

    AEOpenGLUtilities::DownloadTexture(static_cast<unsigned int>(width),
                                       static_cast<unsigned int>(height), input, output, in_data,
                                       format, pixelSize, pixelType);
    saver.restore();
    return PF_Err_NONE;
}

PF_Err Dispatch(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                PF_LayerDef* output, void* extra)
{
    switch (cmd) {
    case PF_Cmd_ABOUT:
        return About(in_data, out_data);
    case PF_Cmd_GLOBAL_SETUP:
        return GlobalSetup(in_data, out_data);
    case PF_Cmd_GLOBAL_SETDOWN:
        return GlobalSetdown(in_data, out_data);
    case PF_Cmd_PARAMS_SETUP:
        return ParamsSetup(in_data, out_data, params, output);
    case PF_Cmd_SMART_PRE_RENDER:
        return SmartPreRender(in_data, static_cast<PF_PreRenderExtra*>(extra));
    case PF_Cmd_SMART_RENDER:
        return SmartRender(in_data, out_data, static_cast<PF_SmartRenderExtra*>(extra));
    default:
        return PF_Err_NONE;
    }
}

}  // namespace

}  // namespace Halvane::Quorvex

PF_Err EntryPointFunc(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                      PF_LayerDef* output, void* extra)
{
    try {
        return Halvane::Quorvex::Dispatch(cmd, in_data, out_data, params, output, extra);
    } catch (int) {
        return PF_Err_BAD_CALLBACK_PARAM;
    } catch (const std::bad_alloc&) {
        return PF_Err_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        std::cerr << "Quorvex: " << error.what() << std::endl;
        return PF_Err_BAD_CALLBACK_PARAM;
    } catch (...) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
}
