#pragma once

#include "EffectInterface.h"

#include <glbinding/gl/enum.h>
#include <glbinding/gl/types.h>

#include <string>

namespace Halvane::Quorvex {

// Moves pixels between the host's worlds and GL, on the render thread with
// its render context current.
//
// Channel order: a host pixel is stored alpha, red, green, blue at every
// depth, and both directions hand it to GL as GL_RGBA without reordering, so
// a texture sampled straight gives (A, R, G, B) in (r, g, b, a). Rows are not
// flipped: host row 0 is texture row 0 and read-back row 0.
//
// Failures are thrown as ints holding a host error number: 516
// (PF_Err_BAD_CALLBACK_PARAM) for a pixel format outside the table or a frame
// beyond the GL limits (both said on standard error), 4 when the host has no
// staging memory, the host's own number when a host call fails, and 13 for a
// missing suite. Through EntryPointFunc every one of them reaches the host
// as 516. Whatever a call took is given back when it throws, and the output
// world is then left untouched.
class AEOpenGLUtilities {
public:
    // The refcon of the float pixel functions.
    struct FloatCopyContext {
        // Packed, mWorld->width pixels a row, mWorld->height rows.
        PF_PixelFloat* mPixels;
        PF_LayerDef* mWorld;
    };

    // What GL reads from a 16-bit host value times this is the value over the
    // host's white, 32768.
    static constexpr float kMultiplier16bit = 65535.0f / 32768.0f;

    AEOpenGLUtilities() = delete;

    // A new GL_RGBA32F texture holding `input` (host values over 255, over
    // 65535, or as they are for float), unbound, with GL_UNPACK_ROW_LENGTH
    // back at 0; the caller deletes it. Gives back the pixel size in bytes,
    // the GL type of the host's channels and the 16-bit multiplier (1 unless
    // 16-bit). `output` is not read; `mipmap` only sets a mipmapped minifying
    // filter.
    static gl::GLuint UploadTexture(int format, PF_LayerDef* input, PF_LayerDef* output, PF_InData* in_data,
                                    unsigned long& pixelSize, gl::GLenum& glType, float& multiplier,
                                    bool mipmap);

    // The same into `texture`, a GL_RGBA32F texture of the input's size that
    // the caller made (and may keep from frame to frame): only its texels
    // change, and it is left unbound.
    static void UploadPixels(gl::GLuint texture, int format, PF_LayerDef* input, PF_InData* in_data,
                             unsigned long& pixelSize, gl::GLenum& glType, float& multiplier);

    // Reads the bound, complete framebuffer of `width` by `height` pixels and
    // writes it into `output`, as far as both have pixels. The output's row
    // padding is never written. `pixelSize` and `glType` are what
    // UploadTexture gave for `format`.
    static void DownloadTexture(unsigned int width, unsigned int height, PF_LayerDef* input,
                                PF_LayerDef* output, PF_InData* in_data, int format,
                                unsigned long pixelSize, gl::GLenum glType);

    // Pixel functions of the host's float iterate; the refcon is a
    // FloatCopyContext. In copies `in` into the packed buffer, Out copies the
    // buffer into `out`; a pixel outside mWorld's size is left alone.
    static PF_Err CopyPixelFloatIn(void* refcon, A_long x, A_long y, PF_PixelFloat* in, PF_PixelFloat* out);
    static PF_Err CopyPixelFloatOut(void* refcon, A_long x, A_long y, PF_PixelFloat* in, PF_PixelFloat* out);

    // The bound framebuffer's status in words, "OK" when complete.
    static std::string CheckFramebufferStatus();

    // The colour format of a frame's render targets for a host pixel format:
    // GL_RGBA16 for 16-bit and float frames, GL_RGBA8 otherwise. An unknown
    // format gets GL_RGBA8 here and is refused by UploadTexture.
    static gl::GLenum RenderTargetFormat(int pixelFormat);

    // Why a frame of this size cannot be drawn with the current context's GL
    // (too large for its textures or renderbuffers), or empty when it can.
    static std::string FrameSizeProblem(long width, long height);
};

}  // namespace Halvane::Quorvex
