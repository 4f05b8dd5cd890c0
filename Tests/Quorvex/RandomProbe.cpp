#include "RandomProbe.h"

#include "GL/GLObject.h"
#include "GL/OpenglShader.h"

#include <glbinding/gl/gl.h>

#include <vector>

using namespace gl;

namespace Halvane::Quorvex::Testing {

namespace {

// One triangle that covers the target, with no vertex data.
constexpr const char* kProbeVertex = R"glsl(#version 330
void main() {
    gl_Position = vec4(gl_VertexID == 1 ? 3.0 : -1.0, gl_VertexID == 2 ? 3.0 : -1.0, 0.0, 1.0);
}
)glsl";

// Pixel k of a one-row target receives value k.
constexpr const char* kBlockGlitchProbe = R"glsl(#version 330
out vec4 colourOut;
uniform float iTime;
float AMT = 0.2;
float SPEED = 0.6;
float random2d(vec2 n) {
    return fract(sin(dot(n, vec2(12.9898, 4.1414))) * 43758.5453);
}
float randomRange(in vec2 seed, in float low, in float high) {
    return low + random2d(seed) * (high - low);
}
void main() {
    float time = floor(iTime * SPEED * 60.0);
    int index = int(gl_FragCoord.x);
    float maxOffset = AMT / 2.0;
    float maxColOffset = AMT / 6.0;
    float value = time;
    for (float i = 0.0; i < 10.0 * AMT; i += 1.0) {
        int band = int(i);
        if (index == 1 + band) value = random2d(vec2(time, 2345.0 + i));
        if (index == 3 + band) value = random2d(vec2(time, 9035.0 + i)) * 0.25;
        if (index == 5 + band) value = randomRange(vec2(time, 9625.0 + i), -maxOffset, maxOffset);
    }
    if (index == 7) value = random2d(vec2(time, 9545.0));
    if (index == 8) value = randomRange(vec2(time, 9545.0), -maxColOffset, maxColOffset);
    if (index == 9) value = randomRange(vec2(time, 7205.0), -maxColOffset, maxColOffset);
    colourOut = vec4(value);
}
)glsl";

constexpr const char* kBadTVProbe = R"glsl(#version 330
out vec4 colourOut;
uniform float iTime;
float rand(vec2 co) {
    return fract(sin(dot(co.xy, vec2(12.9898, 78.233))) * 43758.5453);
}
void main() {
    colourOut = vec4(rand(vec2(iTime, iTime)) * 4.0);
}
)glsl";

// The red channel of each pixel of a one-row float target drawn with `fragment`.
std::vector<float> Evaluate(const char* fragment, float iTime, int count)
{
    const GLTexture texture = GLTexture::generate();
    glBindTexture(GL_TEXTURE_2D, texture.name());
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F, count, 1, 0, GL_RGBA, GL_FLOAT, nullptr);
    const GLFramebuffer framebuffer = GLFramebuffer::generate();
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer.name());
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture.name(), 0);
    const GLVertexArray vertexArray = GLVertexArray::generate();
    glBindVertexArray(vertexArray.name());
    OpenglShader program(kProbeVertex, fragment);
    program.useProgram();
    program.setUniform1f("iTime", iTime);
    glViewport(0, 0, count, 1);
    glDisable(GL_BLEND);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    std::vector<float> values(static_cast<std::size_t>(count));
    glReadPixels(0, 0, count, 1, GL_RED, GL_FLOAT, values.data());
    glUseProgram(0);
    glBindVertexArray(0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
    return values;
}

}  // namespace

BlockGlitchRandoms RandomProbe::blockGlitch(float iTime)
{
    const std::vector<float> v = Evaluate(kBlockGlitchProbe, iTime, 10);
    BlockGlitchRandoms randoms;
    randoms.time = v[0];
    randoms.sliceY = {v[1], v[2]};
    randoms.sliceH = {v[3], v[4]};
    randoms.hOffset = {v[5], v[6]};
    randoms.rnd = v[7];
    randoms.colOffset = {v[8], v[9]};
    return randoms;
}

BadTVRandoms RandomProbe::badTV(float iTime)
{
    return BadTVRandoms{Evaluate(kBadTVProbe, iTime, 1)[0]};
}

}  // namespace Halvane::Quorvex::Testing
