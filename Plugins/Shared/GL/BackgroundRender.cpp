#include "GL/BackgroundRender.h"

#include "GL/Shaders/PassShaders.h"

namespace Halvane::Quorvex {

BackgroundRender::BackgroundRender() : mPass(Shaders::kFullScreenVertex, Shaders::kBackgroundFragment)
{
}

void BackgroundRender::draw(unsigned int texture, float multiplier)
{
    mPass.draw(texture, multiplier);
}

}  // namespace Halvane::Quorvex
