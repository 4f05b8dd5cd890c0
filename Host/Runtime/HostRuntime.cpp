#include "Runtime/HostRuntime.h"

#include "DrawbotSuites.h"
#include "Runtime/HostError.h"
#include "Runtime/World.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <thread>

namespace Halvane::Quorvex::Host {

namespace {

std::atomic<HostRuntime*> gActiveRuntime{nullptr};

HostRuntime* Runtime(PF_ProgPtr effect_ref)
{
    return effect_ref ? static_cast<HostRuntime*>(effect_ref) : HostRuntime::active();
}

FrameTime TimeOf(A_long value, A_long step, A_u_long scale)
{
    return FrameTime{value, step, scale};
}

// ---- Utility and interaction callbacks ----------------------------------

A_long AnsiSprintf(A_char* buffer, const A_char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int written = std::vsprintf(buffer, format, arguments);
    va_end(arguments);
    return written;
}

A_char* AnsiStrcpy(A_char* destination, const A_char* source)
{
    return std::strcpy(destination, source);
}

PF_Handle UtilNewHandle(A_u_longlong size)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->newHandle(size) : nullptr;
}

void* UtilLockHandle(PF_Handle handle)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->handles().lock(handle) : nullptr;
}

void UtilUnlockHandle(PF_Handle handle)
{
    if (HostRuntime* runtime = HostRuntime::active()) {
        runtime->handles().unlock(handle);
    }
}

void UtilDisposeHandle(PF_Handle handle)
{
    if (HostRuntime* runtime = HostRuntime::active()) {
        runtime->handles().dispose(handle);
    }
}

A_u_longlong UtilHandleSize(PF_Handle handle)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->handles().size(handle) : 0;
}

PF_Err UtilResizeHandle(A_u_longlong size, PF_Handle* handle)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->handles().resize(size, handle) : PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err GetPixelData8(PF_EffectWorld* world, PF_PixelPtr pixels, PF_Pixel8** result)
{
    HostRuntime* runtime = HostRuntime::active();
    void* data = nullptr;
    const PF_Err err = runtime ? runtime->getPixelData(world, pixels, PF_PixelFormat_ARGB32, &data)
                               : PF_Err_BAD_CALLBACK_PARAM;
    *result = static_cast<PF_Pixel8*>(data);
    return err;
}

PF_Err GetPixelData16(PF_EffectWorld* world, PF_PixelPtr pixels, PF_Pixel16** result)
{
    HostRuntime* runtime = HostRuntime::active();
    void* data = nullptr;
    const PF_Err err = runtime ? runtime->getPixelData(world, pixels, PF_PixelFormat_ARGB64, &data)
                               : PF_Err_BAD_CALLBACK_PARAM;
    *result = static_cast<PF_Pixel16*>(data);
    return err;
}

PF_Err CheckoutParam(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long what_time,
                     A_long time_step, A_u_long time_scale, PF_ParamDef* param)
{
    return Runtime(effect_ref)->checkoutParam(index, TimeOf(what_time, time_step, time_scale),
                                              *param);
}

PF_Err CheckinParam(PF_ProgPtr effect_ref, PF_ParamDef* param)
{
    return Runtime(effect_ref)->checkinParam(*param);
}

PF_Err AddParam(PF_ProgPtr effect_ref, PF_ParamIndex index, PF_ParamDefPtr def)
{
    return Runtime(effect_ref)->addParam(index, *def);
}

// ---- Render callbacks ----------------------------------------------------

PF_Err CheckoutLayer(PF_ProgPtr effect_ref, PF_ParamIndex index, A_long checkout_id,
                     const PF_RenderRequest* request, A_long what_time, A_long time_step,
                     A_u_long time_scale, PF_CheckoutResult* result)
{
    return Runtime(effect_ref)->checkoutLayer(index, checkout_id, *request,
                                              TimeOf(what_time, time_step, time_scale), *result);
}

PF_Err GuidMixIn(PF_ProgPtr, A_u_long, const void*)
{
    return PF_Err_NONE;
}

PF_Err CheckoutLayerPixels(PF_ProgPtr effect_ref, A_long checkout_id, PF_EffectWorld** pixels)
{
    return Runtime(effect_ref)->checkoutLayerPixels(checkout_id, pixels);
}

PF_Err CheckinLayerPixels(PF_ProgPtr effect_ref, A_long checkout_id)
{
    return Runtime(effect_ref)->checkinLayerPixels(checkout_id);
}

PF_Err CheckoutOutput(PF_ProgPtr effect_ref, PF_EffectWorld** output)
{
    return Runtime(effect_ref)->checkoutOutput(output);
}

// ---- Basic suite ---------------------------------------------------------

SPErr BasicAcquireSuite(const char* name, A_long version, const void** suite)
{
    HostRuntime* runtime = HostRuntime::active();
    if (!runtime) {
        *suite = nullptr;
        return kSPSuiteNotFoundError;
    }
    return runtime->suites().acquire(name, version, suite);
}

SPErr BasicReleaseSuite(const char* name, A_long version)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->suites().release(name, version) : kSPSuiteNotFoundError;
}

A_Boolean BasicIsEqual(const char* token1, const char* token2)
{
    return std::strcmp(token1, token2) == 0;
}

SPErr BasicAllocateBlock(A_u_long size, void** block)
{
    *block = std::malloc(size > 0 ? size : 1);
    return *block ? kSPNoError : static_cast<SPErr>(A_Err_ALLOC);
}

SPErr BasicFreeBlock(void* block)
{
    std::free(block);
    return kSPNoError;
}

SPErr BasicReallocateBlock(void* block, A_u_long new_size, void** new_block)
{
    *new_block = std::realloc(block, new_size > 0 ? new_size : 1);
    return *new_block ? kSPNoError : static_cast<SPErr>(A_Err_ALLOC);
}

SPErr BasicUndefined()
{
    return kSPNoError;
}

// ---- Effect suites -------------------------------------------------------

PF_Err WorldNew(PF_ProgPtr, A_long, A_long, PF_Boolean, PF_PixelFormat, PF_EffectWorld*)
{
    // Effects of this host draw into the worlds it hands them; it lends none.
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err WorldDispose(PF_ProgPtr, PF_EffectWorld*)
{
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err WorldGetPixelFormat(const PF_EffectWorld* world, PF_PixelFormat* format)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->getPixelFormat(world, format) : PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err IterateFloat(PF_InData*, A_long, A_long, PF_EffectWorld* source, const PF_Rect* area,
                    void* refcon, PF_IteratePixelFloatFunc function, PF_EffectWorld* destination)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->iterateFloat(source, area, refcon, function, destination)
                   : PF_Err_BAD_CALLBACK_PARAM;
}

PF_Handle HandleSuiteNew(A_u_longlong size)
{
    return UtilNewHandle(size);
}

// ---- General plug-in suites ---------------------------------------------

A_Err RegisterWithAEGP(AEGP_GlobalRefcon, const A_char* plugin_name, AEGP_PluginID* plugin_id)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->registerWithAEGP(plugin_name, plugin_id) : A_Err_GENERIC;
}

A_Err ExecuteScript(AEGP_PluginID, const A_char* script, A_Boolean, AEGP_MemHandle* result,
                    AEGP_MemHandle* error_text)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->executeScript(script, result, error_text) : A_Err_GENERIC;
}

A_Err MemNew(AEGP_PluginID, const A_char*, A_u_longlong size, AEGP_MemFlag,
             AEGP_MemHandle* handle)
{
    HostRuntime* runtime = HostRuntime::active();
    *handle = nullptr;
    if (!runtime) {
        return A_Err_GENERIC;
    }
    if (runtime->failures().check(HostCall::NewMemHandle) != 0) {
        return A_Err_ALLOC;
    }
    *handle = runtime->handles().newMemHandle(size);
    return *handle ? A_Err_NONE : A_Err_ALLOC;
}

A_Err MemFree(AEGP_MemHandle handle)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->handles().freeMem(handle) : A_Err_GENERIC;
}

A_Err MemLock(AEGP_MemHandle handle, void** memory)
{
    HostRuntime* runtime = HostRuntime::active();
    *memory = nullptr;
    if (!runtime) {
        return A_Err_GENERIC;
    }
    if (const A_long status = runtime->failures().check(HostCall::LockMemHandle)) {
        return status;
    }
    return runtime->handles().lockMem(handle, memory);
}

A_Err MemUnlock(AEGP_MemHandle handle)
{
    HostRuntime* runtime = HostRuntime::active();
    return runtime ? runtime->handles().unlockMem(handle) : A_Err_GENERIC;
}

A_Err MemSize(AEGP_MemHandle handle, A_u_longlong* size)
{
    HostRuntime* runtime = HostRuntime::active();
    *size = 0;
    return runtime ? runtime->handles().memSize(handle, size) : A_Err_GENERIC;
}

const PF_ANSICallbacksSuite1 kAnsiSuite = {AnsiSprintf, AnsiStrcpy};
const PF_WorldSuite2 kWorldSuite = {WorldNew, WorldDispose, WorldGetPixelFormat};
const PF_iterateFloatSuite1 kIterateFloatSuite = {IterateFloat};
const PF_HandleSuite1 kHandleSuite = {HandleSuiteNew, UtilLockHandle, UtilUnlockHandle,
                                      UtilDisposeHandle, UtilHandleSize, UtilResizeHandle};
const AEGP_UtilitySuite5 kUtilitySuite5 = {RegisterWithAEGP, ExecuteScript};
const AEGP_UtilitySuite6 kUtilitySuite6 = {RegisterWithAEGP, ExecuteScript};
const AEGP_MemorySuite1 kMemorySuite = {MemNew, MemFree, MemLock, MemUnlock, MemSize};

// The drawing suites are offered but never drawn with; any distinct address
// serves as their table.
const char kDrawbotTables[4] = {};

PF_LRect Intersect(const PF_LRect& a, const PF_LRect& b)
{
    PF_LRect result{std::max(a.left, b.left), std::max(a.top, b.top),
                    std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
    if (result.left >= result.right || result.top >= result.bottom) {
        return PF_LRect{0, 0, 0, 0};
    }
    return result;
}

}  // namespace

HostRuntime::HostRuntime() : mSuites(mFailures)
{
    HostRuntime* expected = nullptr;
    if (!gActiveRuntime.compare_exchange_strong(expected, this)) {
        throw HostError("a host runtime is already active in this process");
    }
    mBasicSuite = SPBasicSuite{BasicAcquireSuite, BasicReleaseSuite, BasicIsEqual,
                               BasicAllocateBlock, BasicFreeBlock, BasicReallocateBlock,
                               BasicUndefined};
    mUtilCallbacks.ansi = PF_ANSICallbacks{AnsiSprintf, AnsiStrcpy};
    mUtilCallbacks.host_new_handle = UtilNewHandle;
    mUtilCallbacks.host_lock_handle = UtilLockHandle;
    mUtilCallbacks.host_unlock_handle = UtilUnlockHandle;
    mUtilCallbacks.host_dispose_handle = UtilDisposeHandle;
    mUtilCallbacks.get_pixel_data8 = GetPixelData8;
    mUtilCallbacks.get_pixel_data16 = GetPixelData16;
    mInteractCallbacks = PF_InteractCallbacks{CheckoutParam, CheckinParam, AddParam};
    mPreRenderCallbacks = PF_PreRenderCallbacks{CheckoutLayer, GuidMixIn};
    mSmartRenderCallbacks =
        PF_SmartRenderCallbacks{CheckoutLayerPixels, CheckinLayerPixels, CheckoutOutput};
    offerSuites();
}

HostRuntime::~HostRuntime()
{
    gActiveRuntime.store(nullptr);
}

HostRuntime* HostRuntime::active()
{
    return gActiveRuntime.load();
}

void HostRuntime::offerSuites()
{
    mSuites.offer(kPFANSISuite, 1, &kAnsiSuite);
    mSuites.offer(kPFWorldSuite, 2, &kWorldSuite);
    mSuites.offer(kPFIterateFloatSuite, 1, &kIterateFloatSuite);
    mSuites.offer(kPFHandleSuite, 1, &kHandleSuite);
    mSuites.offer(kPFHandleSuite, 2, &kHandleSuite);
    mSuites.offer(kAEGPUtilitySuite, 11, &kUtilitySuite5);
    mSuites.offer(kAEGPUtilitySuite, 13, &kUtilitySuite6);
    mSuites.offer(kAEGPMemorySuite, 1, &kMemorySuite);
    mSuites.offer(kDRAWBOT_DrawSuite, kDRAWBOT_DrawSuite_VersionCurrent, &kDrawbotTables[0]);
    mSuites.offer(kDRAWBOT_SupplierSuite, kDRAWBOT_SupplierSuite_VersionCurrent,
                  &kDrawbotTables[1]);
    mSuites.offer(kDRAWBOT_SurfaceSuite, kDRAWBOT_SurfaceSuite_VersionCurrent,
                  &kDrawbotTables[2]);
    mSuites.offer(kDRAWBOT_PathSuite, kDRAWBOT_PathSuite_VersionCurrent, &kDrawbotTables[3]);
}

PF_InData HostRuntime::inData(const FrameTime& time)
{
    PF_InData in_data{};
    in_data.inter = mInteractCallbacks;
    in_data.utils = &mUtilCallbacks;
    in_data.effect_ref = this;
    in_data.version_major = 13;
    in_data.version_minor = 28;
    in_data.num_params = static_cast<A_long>(mParameters.size()) + 1;
    in_data.current_time = time.value;
    in_data.time_step = time.step;
    in_data.local_time_step = time.step;
    in_data.time_scale = time.scale;
    in_data.pica_basicP = &mBasicSuite;
    std::lock_guard<std::mutex> lock(mFrameMutex);
    if (mInputWorld) {
        in_data.width = mInputWorld->width();
        in_data.height = mInputWorld->height();
    }
    return in_data;
}

// ---- Parameters ------------------------------------------------------------

PF_Err HostRuntime::addParam(PF_ParamIndex index, const PF_ParamDef& definition)
{
    if (const A_long status = mFailures.check(HostCall::AddParam)) {
        return status;
    }
    const auto count = static_cast<PF_ParamIndex>(mParameters.size());
    // -1 appends; otherwise the index has to be the next free one, counting
    // the input layer at 0.
    if (index != -1 && index != count + 1) {
        return PF_Err_INVALID_INDEX;
    }
    if (definition.param_type != PF_Param_POPUP && definition.param_type != PF_Param_FLOAT_SLIDER) {
        return PF_Err_UNRECOGNIZED_PARAM_TYPE;
    }
    mParameters.emplace_back(definition);
    return PF_Err_NONE;
}

PF_Err HostRuntime::checkoutParam(PF_ParamIndex index, const FrameTime& time, PF_ParamDef& param)
{
    if (const A_long status = mFailures.check(HostCall::CheckoutParam)) {
        return status;
    }
    if (time.scale == 0) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (index == 0) {
        std::lock_guard<std::mutex> lock(mFrameMutex);
        if (!mInputWorld) {
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        param = PF_ParamDef{};
        param.param_type = PF_Param_LAYER;
        param.u.ld = *mInputWorld->layer();
    } else if (index < 1 || index > static_cast<PF_ParamIndex>(mParameters.size())) {
        return PF_Err_INVALID_INDEX;
    } else {
        param = mParameters[static_cast<std::size_t>(index - 1)].recordAt(time.seconds());
    }
    ++mOpenParamCheckouts;
    return PF_Err_NONE;
}

PF_Err HostRuntime::checkinParam(PF_ParamDef&)
{
    if (const A_long status = mFailures.check(HostCall::CheckinParam)) {
        return status;
    }
    if (mOpenParamCheckouts == 0) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    --mOpenParamCheckouts;
    return PF_Err_NONE;
}

ParameterTrack& HostRuntime::parameter(PF_ParamIndex index)
{
    if (index < 1 || index > static_cast<PF_ParamIndex>(mParameters.size())) {
        throw HostError("the effect has no parameter " + std::to_string(index));
    }
    return mParameters[static_cast<std::size_t>(index - 1)];
}

ParameterTrack& HostRuntime::parameter(const std::string& name)
{
    for (ParameterTrack& track : mParameters) {
        if (track.name() == name) {
            return track;
        }
    }
    throw HostError("the effect declares no parameter '" + name + "'");
}

void HostRuntime::clearParameters()
{
    mParameters.clear();
}

int HostRuntime::openParamCheckouts() const
{
    return mOpenParamCheckouts;
}

// ---- The frame ---------------------------------------------------------------

void HostRuntime::setFrameWorlds(World* input, World* output)
{
    std::lock_guard<std::mutex> lock(mFrameMutex);
    mInputWorld = input;
    mOutputWorld = output;
}

PF_Err HostRuntime::checkoutLayer(PF_ParamIndex index, A_long checkoutId,
                                  const PF_RenderRequest& request, const FrameTime& time,
                                  PF_CheckoutResult& result)
{
    if (const A_long status = mFailures.check(HostCall::CheckoutLayer)) {
        return status;
    }
    if (index != 0) {
        return PF_Err_INVALID_INDEX;
    }
    if (time.scale == 0) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    std::lock_guard<std::mutex> lock(mFrameMutex);
    if (!mInputWorld) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    const PF_LRect bounds{0, 0, mInputWorld->width(), mInputWorld->height()};
    result = PF_CheckoutResult{};
    result.result_rect = mCheckoutRects ? mCheckoutRects->first : Intersect(request.rect, bounds);
    result.max_result_rect = mCheckoutRects ? mCheckoutRects->second : bounds;
    result.par = PF_RationalScale{1, 1};
    result.ref_width = bounds.right;
    result.ref_height = bounds.bottom;
    mLayerCheckouts[checkoutId] = request;
    mLastLayerCheckout = LayerCheckout{index, checkoutId, request, time};
    return PF_Err_NONE;
}

HostRuntime::LayerCheckout HostRuntime::lastLayerCheckout() const
{
    std::lock_guard<std::mutex> lock(mFrameMutex);
    return mLastLayerCheckout;
}

void HostRuntime::overrideCheckoutRects(const PF_LRect& result, const PF_LRect& maxResult)
{
    std::lock_guard<std::mutex> lock(mFrameMutex);
    mCheckoutRects = std::make_pair(result, maxResult);
}

void HostRuntime::resetCheckoutRects()
{
    std::lock_guard<std::mutex> lock(mFrameMutex);
    mCheckoutRects.reset();
}

PF_Err HostRuntime::checkoutLayerPixels(A_long checkoutId, PF_EffectWorld** pixels)
{
    *pixels = nullptr;
    if (const A_long status = mFailures.check(HostCall::CheckoutLayerPixels)) {
        return status;
    }
    std::lock_guard<std::mutex> lock(mFrameMutex);
    // Only what the pre-render asked for can be fetched.
    if (!mInputWorld || mLayerCheckouts.count(checkoutId) == 0) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    *pixels = mInputWorld->layer();
    return PF_Err_NONE;
}

PF_Err HostRuntime::checkinLayerPixels(A_long checkoutId)
{
    std::lock_guard<std::mutex> lock(mFrameMutex);
    return mLayerCheckouts.erase(checkoutId) ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err HostRuntime::checkoutOutput(PF_EffectWorld** output)
{
    *output = nullptr;
    if (const A_long status = mFailures.check(HostCall::CheckoutOutput)) {
        return status;
    }
    std::lock_guard<std::mutex> lock(mFrameMutex);
    if (!mOutputWorld) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    *output = mOutputWorld->layer();
    return PF_Err_NONE;
}

void HostRuntime::endFrame()
{
    std::lock_guard<std::mutex> lock(mFrameMutex);
    mLayerCheckouts.clear();
}

std::size_t HostRuntime::openLayerCheckouts() const
{
    std::lock_guard<std::mutex> lock(mFrameMutex);
    return mLayerCheckouts.size();
}

// ---- Suites -------------------------------------------------------------------

PF_Err HostRuntime::getPixelFormat(const PF_EffectWorld* world, PF_PixelFormat* format)
{
    if (const A_long status = mFailures.check(HostCall::GetPixelFormat)) {
        return status;
    }
    const World* owner = World::find(world);
    if (!owner) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    *format = owner->format();
    return PF_Err_NONE;
}

PF_Err HostRuntime::getPixelData(PF_EffectWorld* world, PF_PixelPtr pixels,
                                 PF_PixelFormat expected, void** result)
{
    *result = nullptr;
    if (const A_long status = mFailures.check(HostCall::GetPixelData)) {
        return status;
    }
    const World* owner = World::find(world);
    if (!owner || owner->format() != expected) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    *result = pixels ? static_cast<void*>(pixels) : static_cast<void*>(world->data);
    return PF_Err_NONE;
}

PF_Err HostRuntime::iterateFloat(PF_EffectWorld* source, const PF_Rect* area, void* refcon,
                                 PF_IteratePixelFloatFunc function, PF_EffectWorld* destination)
{
    if (const A_long status = mFailures.check(HostCall::Iterate)) {
        return status;
    }
    World* sourceWorld = World::find(source);
    World* destinationWorld = destination ? World::find(destination) : sourceWorld;
    if (!sourceWorld || !destinationWorld || !function ||
        sourceWorld->format() != PF_PixelFormat_ARGB128 ||
        destinationWorld->format() != PF_PixelFormat_ARGB128) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    // The pixels both worlds have, within the area when one is given.
    PF_LRect region{0, 0, std::min(sourceWorld->width(), destinationWorld->width()),
                    std::min(sourceWorld->height(), destinationWorld->height())};
    if (area) {
        region = Intersect(region, *area);
    }
    const A_long rows = region.bottom - region.top;
    if (rows <= 0 || region.right <= region.left) {
        return PF_Err_NONE;
    }

    // Like a real host, split the rows into one band per core, each band run
    // by its own thread; each reports the first error it meets and the
    // lowest band's error wins.
    const A_long pixels = rows * (region.right - region.left);
    const unsigned hardware = std::max(1u, std::thread::hardware_concurrency());
    const A_long workers = pixels < 65536 ? 1 : std::min<A_long>(rows, static_cast<A_long>(hardware));
    std::vector<PF_Err> errors(static_cast<std::size_t>(workers), PF_Err_NONE);
    auto work = [&](A_long worker) {
        const A_long bandTop = region.top + rows * worker / workers;
        const A_long bandBottom = region.top + rows * (worker + 1) / workers;
        for (A_long y = bandTop; y < bandBottom; ++y) {
            for (A_long x = region.left; x < region.right; ++x) {
                const PF_Err err = function(refcon, x, y, &sourceWorld->pixelFloat(x, y),
                                            &destinationWorld->pixelFloat(x, y));
                if (err != PF_Err_NONE) {
                    errors[static_cast<std::size_t>(worker)] = err;
                    return;
                }
            }
        }
    };
    std::vector<std::thread> threads;
    for (A_long worker = 1; worker < workers; ++worker) {
        threads.emplace_back(work, worker);
    }
    work(0);
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (PF_Err err : errors) {
        if (err != PF_Err_NONE) {
            return err;
        }
    }
    return PF_Err_NONE;
}

PF_Handle HostRuntime::newHandle(A_u_longlong size)
{
    if (mFailures.check(HostCall::NewHandle) != 0) {
        return nullptr;
    }
    return mHandles.newHandle(size);
}

A_Err HostRuntime::registerWithAEGP(const char* name, AEGP_PluginID* id)
{
    if (const A_long status = mFailures.check(HostCall::RegisterWithAEGP)) {
        return status;
    }
    static std::atomic<AEGP_PluginID> nextId{1};
    mPluginId = nextId++;
    mPluginName = name ? name : "";
    *id = mPluginId;
    return A_Err_NONE;
}

A_Err HostRuntime::executeScript(const char* script, AEGP_MemHandle* result,
                                 AEGP_MemHandle* error)
{
    *result = nullptr;
    *error = nullptr;
    if (const A_long status = mFailures.check(HostCall::ExecuteScript)) {
        return status;
    }
    ScriptAnswer answer;
    if (mScriptHandler) {
        answer = mScriptHandler(script ? script : "");
    } else {
        answer.status = A_Err_GENERIC;
        answer.result = std::string();
        answer.error = std::string(kNoScriptingError);
    }
    if (answer.result) {
        *result = mHandles.newTextHandle(answer.result->c_str());
    }
    if (answer.error) {
        *error = mHandles.newTextHandle(answer.error->c_str());
    }
    return answer.status;
}

}  // namespace Halvane::Quorvex::Host
