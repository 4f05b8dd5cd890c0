#include "GL/AEOpenGLUtilities.h"

#include "EffectSuites.h"
#include "GL/FrameHooks.h"
#include "GL/GLObject.h"
#include "GL/PackedFloatFrame.h"
#include "Helper/SuiteScoper.h"

#include <glbinding/gl/gl.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <optional>

namespace Halvane::Quorvex {

using namespace gl;

namespace {

struct PixelDepth {
    PF_PixelFormat format;
    unsigned long pixelSize;
    GLenum glType;
    float multiplier;
};

const PixelDepth kPixelDepths[] = {
    {PF_PixelFormat_ARGB32, 4, GL_UNSIGNED_BYTE, 1.0f},
    {PF_PixelFormat_ARGB64, 8, GL_UNSIGNED_SHORT, AEOpenGLUtilities::kMultiplier16bit},
    {PF_PixelFormat_ARGB128, 16, GL_FLOAT, 1.0f},
};

[[noreturn]] void Refuse(const std::string& why)
{
    std::cerr << "Quorvex: " << why << std::endl;
    throw static_cast<int>(PF_Err_BAD_CALLBACK_PARAM);
}

// The row of the table for `format`, or a refusal that names the format.
const PixelDepth& DepthOf(int format)
{
    for (const PixelDepth& depth : kPixelDepths) {
        if (depth.format == format) {
            return depth;
        }
    }
    char text[96];
    std::snprintf(text, sizeof text, "pixel format 0x%08X is not one of \"argb\", \"ae16\", \"ae32\"",
                  static_cast<unsigned>(format));
    Refuse(text);
}

void RefuseOversizeFrame(long width, long height)
{
    if (const std::string problem = AEOpenGLUtilities::FrameSizeProblem(width, height); !problem.empty()) {
        Refuse(problem);
    }
}

// The first pixel of an 8 or 16-bit world, as the host gives it.
unsigned char* PixelData(PF_InData* in_data, PF_LayerDef* world, const PixelDepth& depth)
{
    PF_Err err = PF_Err_NONE;
    void* base = nullptr;
    if (depth.format == PF_PixelFormat_ARGB32) {
        PF_Pixel8* pixels = nullptr;
        err = in_data->utils->get_pixel_data8(world, nullptr, &pixels);
        base = pixels;
    } else {
        PF_Pixel16* pixels = nullptr;
        err = in_data->utils->get_pixel_data16(world, nullptr, &pixels);
        base = pixels;
    }
    if (err != PF_Err_NONE || base == nullptr) {
        throw static_cast<int>(err != PF_Err_NONE ? err : PF_Err_BAD_CALLBACK_PARAM);
    }
    return static_cast<unsigned char*>(base);
}

// A host handle, locked while it lives, then unlocked and disposed.
class LockedHandle {
public:
    LockedHandle(const PF_HandleSuite1& suite, A_u_longlong size) : mSuite(suite)
    {
        mHandle = mSuite.host_new_handle(size);
        if (mHandle == nullptr) {
            throw static_cast<int>(PF_Err_OUT_OF_MEMORY);
        }
        mData = mSuite.host_lock_handle(mHandle);
        if (mData == nullptr) {
            mSuite.host_dispose_handle(mHandle);
            throw static_cast<int>(PF_Err_OUT_OF_MEMORY);
        }
    }
    ~LockedHandle()
    {
        mSuite.host_unlock_handle(mHandle);
        mSuite.host_dispose_handle(mHandle);
    }
    LockedHandle(const LockedHandle&) = delete;
    LockedHandle& operator=(const LockedHandle&) = delete;

    unsigned char* data() const { return static_cast<unsigned char*>(mData); }

private:
    const PF_HandleSuite1& mSuite;
    PF_Handle mHandle = nullptr;
    void* mData = nullptr;
};

void IterateFloat(PF_InData* in_data, PF_LayerDef* input, AEOpenGLUtilities::FloatCopyContext& context,
                  PF_IteratePixelFloatFunc function, PF_LayerDef* destination)
{
    SuiteScoper<PF_iterateFloatSuite1> iterateSuite(in_data, kPFIterateFloatSuite, 1);
    const PF_Err err =
        iterateSuite->iterate(in_data, 0, input->height, input, nullptr, &context, function, destination);
    if (err != PF_Err_NONE) {
        throw static_cast<int>(err);
    }
}

// The host's pixels of a frame, ready for GL: 8 and 16-bit rows straight in
// host memory, float ones packed through the host's iterate.
struct HostRows {
    const PixelDepth& depth;
    const unsigned char* pixels = nullptr;
    std::size_t rowBytes = 0;
    std::optional<PackedFloatFrame::Lease> packed;
};

// Hands the rows to the bound texture, then unbinds it. GL counts a row
// length in pixels, so rows whose distance is not a whole number of pixels go
// one at a time.
void UploadRows(const HostRows& rows, GLsizei width, GLsizei height)
{
    const PixelDepth& depth = rows.depth;
    if (rows.rowBytes % depth.pixelSize == 0) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(rows.rowBytes / depth.pixelSize));
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, GL_RGBA, depth.glType, rows.pixels);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    } else {
        for (GLsizei y = 0; y < height; ++y) {
            glTexSubImage2D(GL_TEXTURE_2D, 0, 0, y, width, 1, GL_RGBA, depth.glType,
                            rows.pixels + static_cast<std::size_t>(y) * rows.rowBytes);
        }
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    NotifyFrameEvent(FrameEvent::InputUploaded);
}

PF_PixelFloat* PackedPixel(void* refcon, A_long x, A_long y)
{
    const auto* context = static_cast<const AEOpenGLUtilities::FloatCopyContext*>(refcon);
    const A_long width = context->mWorld->width;
    if (x < 0 || y < 0 || x >= width || y >= context->mWorld->height) {
        return nullptr;
    }
    return context->mPixels + (static_cast<std::int64_t>(y) * width + x);
}

// Gathers the host's pixels before GL is touched, so that a failing host
// call leaves nothing behind.
HostRows GatherRows(int format, PF_LayerDef* input, PF_InData* in_data, unsigned long& pixelSize,
                    GLenum& glType, float& multiplier)
{
    HostRows rows{DepthOf(format), nullptr, 0, std::nullopt};
    RefuseOversizeFrame(input->width, input->height);
    pixelSize = rows.depth.pixelSize;
    glType = rows.depth.glType;
    multiplier = rows.depth.multiplier;
    if (rows.depth.format == PF_PixelFormat_ARGB128) {
        rows.packed = PackedFloatFrame::lease(static_cast<std::size_t>(input->width) *
                                              static_cast<std::size_t>(input->height));
        AEOpenGLUtilities::FloatCopyContext context{rows.packed->pixels(), input};
        IterateFloat(in_data, input, context, AEOpenGLUtilities::CopyPixelFloatIn, input);
        rows.pixels = reinterpret_cast<const unsigned char*>(rows.packed->pixels());
        rows.rowBytes = static_cast<std::size_t>(input->width) * rows.depth.pixelSize;
    } else {
        rows.pixels = PixelData(in_data, input, rows.depth);
        rows.rowBytes = static_cast<std::size_t>(input->rowbytes);
    }
    return rows;
}

}  // namespace

GLuint AEOpenGLUtilities::UploadTexture(int format, PF_LayerDef* input, PF_LayerDef* /*output*/,
                                        PF_InData* in_data, unsigned long& pixelSize, GLenum& glType,
                                        float& multiplier, bool mipmap)
{
    multiplier = 1.0f;
    const HostRows rows = GatherRows(format, input, in_data, pixelSize, glType, multiplier);
    GLTexture texture = GLTexture::generate();
    glBindTexture(GL_TEXTURE_2D, texture.name());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, mipmap ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(GL_RGBA32F), input->width, input->height, 0, GL_RGBA,
                 GL_FLOAT, nullptr);
    UploadRows(rows, input->width, input->height);
    return texture.release();
}

void AEOpenGLUtilities::UploadPixels(GLuint texture, int format, PF_LayerDef* input, PF_InData* in_data,
                                     unsigned long& pixelSize, GLenum& glType, float& multiplier)
{
    multiplier = 1.0f;
    const HostRows rows = GatherRows(format, input, in_data, pixelSize, glType, multiplier);
    glBindTexture(GL_TEXTURE_2D, texture);
    UploadRows(rows, input->width, input->height);
}

void AEOpenGLUtilities::DownloadTexture(unsigned int width, unsigned int height, PF_LayerDef* input,
                                        PF_LayerDef* output, PF_InData* in_data, int format,
                                        unsigned long pixelSize, GLenum glType)
{
    const PixelDepth& depth = DepthOf(format);
    if (pixelSize != depth.pixelSize || glType != depth.glType) {
        Refuse("a frame read back as " + std::to_string(pixelSize) + "-byte pixels does not match its pixel format");
    }
    RefuseOversizeFrame(static_cast<long>(width), static_cast<long>(height));
    const std::size_t frameRowBytes = static_cast<std::size_t>(width) * depth.pixelSize;
    const std::size_t bytes = frameRowBytes * height;
    if (bytes == 0) {
        return;
    }

    // An 8 or 16-bit output that holds the whole frame, its rows a whole
    // number of pixels apart, takes the pixels straight from GL.
    if (depth.format != PF_PixelFormat_ARGB128 && output->width >= static_cast<A_long>(width) &&
        output->height >= static_cast<A_long>(height) && output->rowbytes > 0 &&
        static_cast<std::size_t>(output->rowbytes) % depth.pixelSize == 0) {
        unsigned char* destination = PixelData(in_data, output, depth);
        glReadBuffer(GL_COLOR_ATTACHMENT0);
        glPixelStorei(GL_PACK_ROW_LENGTH, static_cast<GLint>(static_cast<std::size_t>(output->rowbytes) / depth.pixelSize));
        glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGBA, depth.glType,
                     destination);
        glPixelStorei(GL_PACK_ROW_LENGTH, 0);
        NotifyFrameEvent(FrameEvent::OutputRead);
        return;
    }

    glReadBuffer(GL_COLOR_ATTACHMENT0);
    if (depth.format == PF_PixelFormat_ARGB128) {
        // Float rows go through the host's iterate, read back into the packed
        // buffer that the upload used and that stays between frames.
        const PackedFloatFrame::Lease staging = PackedFloatFrame::lease(static_cast<std::size_t>(width) * height);
        glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGBA, depth.glType,
                     staging.pixels());
        // The pixel functions see the frame's size, so that no output pixel
        // beyond it reads past the staging rows.
        PF_LayerDef frame = *input;
        frame.width = static_cast<A_long>(width);
        frame.height = static_cast<A_long>(height);
        FloatCopyContext context{staging.pixels(), &frame};
        IterateFloat(in_data, input, context, CopyPixelFloatOut, output);
        NotifyFrameEvent(FrameEvent::OutputRead);
        return;
    }

    SuiteScoper<PF_HandleSuite1> handleSuite(in_data, kPFHandleSuite, 2);
    const LockedHandle staging(*handleSuite.get(), bytes);
    glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGBA, depth.glType,
                 staging.data());
    const A_long rows = std::min<A_long>(output->height, static_cast<A_long>(height));
    const std::size_t rowBytes =
        static_cast<std::size_t>(std::clamp<A_long>(output->width, 0, static_cast<A_long>(width))) * depth.pixelSize;
    unsigned char* const outputPixels = PixelData(in_data, output, depth);
    for (A_long y = 0; y < rows; ++y) {
        unsigned char* destination = outputPixels + static_cast<std::size_t>(y) * output->rowbytes;
        std::memcpy(destination, staging.data() + static_cast<std::size_t>(y) * frameRowBytes, rowBytes);
    }
    NotifyFrameEvent(FrameEvent::OutputRead);
}

PF_Err AEOpenGLUtilities::CopyPixelFloatIn(void* refcon, A_long x, A_long y, PF_PixelFloat* in,
                                           PF_PixelFloat* /*out*/)
{
    if (PF_PixelFloat* pixel = PackedPixel(refcon, x, y)) {
        *pixel = *in;
    }
    return PF_Err_NONE;
}

PF_Err AEOpenGLUtilities::CopyPixelFloatOut(void* refcon, A_long x, A_long y, PF_PixelFloat* /*in*/,
                                            PF_PixelFloat* out)
{
    if (const PF_PixelFloat* pixel = PackedPixel(refcon, x, y)) {
        *out = *pixel;
    }
    return PF_Err_NONE;
}

std::string AEOpenGLUtilities::CheckFramebufferStatus()
{
    switch (glCheckFramebufferStatus(GL_FRAMEBUFFER)) {
    case GL_FRAMEBUFFER_COMPLETE:
        return "OK";
    case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
        return "Framebuffer incomplete, incomplete attachment!";
    case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
        return "Framebuffer incomplete, missing attachment!";
    case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER:
        return "Framebuffer incomplete, missing draw buffer!";
    case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER:
        return "Framebuffer incomplete, missing read buffer!";
    case GL_FRAMEBUFFER_UNSUPPORTED:
        return "Unsupported framebuffer format!";
    default:
        return "Unknown error!";
    }
}

GLenum AEOpenGLUtilities::RenderTargetFormat(int pixelFormat)
{
    return pixelFormat == PF_PixelFormat_ARGB64 || pixelFormat == PF_PixelFormat_ARGB128 ? GL_RGBA16 : GL_RGBA8;
}

std::string AEOpenGLUtilities::FrameSizeProblem(long width, long height)
{
    GLint largestTexture = 0;
    GLint largestRenderbuffer = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largestTexture);
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &largestRenderbuffer);
    const long largest = std::max(width, height);
    const char* what = nullptr;
    GLint limit = 0;
    if (largest > largestTexture) {
        what = "texture";
        limit = largestTexture;
    } else if (largest > largestRenderbuffer) {
        what = "render buffer";
        limit = largestRenderbuffer;
    } else {
        return {};
    }
    return "a frame of " + std::to_string(width) + "x" + std::to_string(height) +
           " pixels exceeds this OpenGL's largest " + what + " (" + std::to_string(limit) + ")";
}

}  // namespace Halvane::Quorvex
