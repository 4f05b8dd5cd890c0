#pragma once

#include "GL/GLObject.h"
#include "GL/GLPlatform.h"
#include "GL/OpenglShader.h"

#include <glbinding/gl/types.h>

#include <functional>
#include <map>

namespace Halvane::Quorvex {

// One texture drawn through a fragment shader over the whole bound target:
// two triangles whose texture coordinates follow the clip-space position with
// no flip, the vertex shader's "position" (vec2 or vec3) at attribute 0 and
// "input_uv" at 1, and the uniforms "videoTexture" (unit 0) and
// "multiplier16bit".
//
// Construction makes no GL call. The program and the vertex buffer are made
// at the first draw and serve the whole share group. A vertex array cannot be
// shared, so there is one for each context the pass draws in, made at its
// first draw there; contexts are told apart by GLPlatform::currentContextId.
// This is the one place of the plug-in that keeps vertex arrays.
class FullScreenPass {
public:
    // Sets the uniforms of a draw beyond the two the pass sets itself; the
    // program is current when it runs.
    using UniformSetter = std::function<void(const OpenglShader&)>;

    FullScreenPass(const char* vertexSource, const char* fragmentSource);
    // Deletes the buffer, the current context's vertex array and the
    // program; a context of the share group must be current if the pass has
    // drawn. Vertex arrays of other contexts end with those contexts.
    ~FullScreenPass();

    FullScreenPass(const FullScreenPass&) = delete;
    FullScreenPass& operator=(const FullScreenPass&) = delete;

    // Into the bound framebuffer, with the caller's viewport and enable state.
    // Leaves no vertex array, no GL_ARRAY_BUFFER and no attribute array bound
    // or enabled; the pass's program stays current.
    void draw(gl::GLuint texture, float multiplier, const UniformSetter& moreUniforms = {});

    // Forgets every GL name without deleting it (see OpenglShader).
    void abandonGLNames() noexcept;

private:
    OpenglShader mShader;
    std::map<GLPlatform::ContextId, GLVertexArray> mVertexArrays;
    GLBuffer mVertexBuffer;
};

}  // namespace Halvane::Quorvex
