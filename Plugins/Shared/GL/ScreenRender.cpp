#include "GL/ScreenRender.h"

#include "GL/Shaders/PassShaders.h"

namespace Halvane::Quorvex {

ScreenRender::ScreenRender() : mPass(Shaders::kFullScreenVertex, Shaders::kScreenFragment)
{
}

void ScreenRender::draw(unsigned int texture, float multiplier)
{
    mPass.draw(texture, multiplier);
}

}  // namespace Halvane::Quorvex
