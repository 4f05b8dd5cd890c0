#include "GL/ScreenRender.h"

namespace Halvane::Quorvex {

namespace {

const char* const kVertexSource =
    "#version 330\nin vec3 position;\nin vec2 input_uv;\nout vec2 uv;\nvoid main() {\n   uv = input_uv;\n"
    "   gl_Position = vec4(position, 1.0);\n}";

const char* const kFragmentSource =
    "#version 330\nin vec2 uv;\nout vec4 colourOut;\nuniform sampler2D videoTexture;\n"
    "uniform float multiplier16bit;\nvoid main() {\n   colourOut = texture( videoTexture, uv );\n"
    "   if (colourOut.a == 0) {\n       colourOut = vec4(0); \n   } else {\n"
    "       colourOut = vec4(colourOut.a, colourOut.r / colourOut.a, colourOut.g / colourOut.a, "
    "colourOut.b / colourOut.a);\n   }\n   colourOut = colourOut / multiplier16bit;\n}";

}  // namespace

ScreenRender::ScreenRender() : mPass(kVertexSource, kFragmentSource)
{
}

void ScreenRender::draw(unsigned int texture, float multiplier)
{
    mPass.draw(texture, multiplier);
}

}  // namespace Halvane::Quorvex
