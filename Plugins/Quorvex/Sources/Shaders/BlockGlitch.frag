#version 330
// Block Glitch: horizontal bands shifted sideways and one colour channel
// offset against the others. The pattern holds for a tick of time and jumps
// to a new random one at the next.
in vec2 uv;
out vec4 colourOut;

uniform sampler2D videoTexture;
uniform float multiplier16bit;
uniform float iTime;

float AMT = 0.2;
float SPEED = 0.6;

float random2d(vec2 n) {
    return fract(sin(dot(n, vec2(12.9898, 4.1414))) * 43758.5453);
}

float randomRange(in vec2 seed, in float minValue, in float maxValue) {
    return minValue + random2d(seed) * (maxValue - minValue);
}

float insideRange(float v, float bottom, float top) {
    return step(bottom, v) - step(top, v);
}

// The texture holds the host's A, R, G, B in r, g, b, a.
vec4 swapChannel(vec4 eColor) {
    return vec4(eColor.g, eColor.b, eColor.a, eColor.r);
}

void main() {
    float time = floor(iTime * SPEED * 60.0);

    colourOut = swapChannel(texture(videoTexture, uv));

    float maxOffset = AMT / 2.0;
    for (float i = 0.0; i < 10.0 * AMT; i += 1.0) {
        float sliceY = random2d(vec2(time, 2345.0 + i));
        float sliceH = random2d(vec2(time, 9035.0 + i)) * 0.25;
        float hOffset = randomRange(vec2(time, 9625.0 + i), -maxOffset, maxOffset);
        vec2 uvOff = uv;
        uvOff.x += hOffset;
        // A band whose top wraps past 1.0 shifts nothing on that tick.
        if (insideRange(uv.y, sliceY, fract(sliceY + sliceH)) == 1.0) {
            colourOut = swapChannel(texture(videoTexture, uvOff));
        }
    }

    float maxColOffset = AMT / 6.0;
    float rnd = random2d(vec2(time, 9545.0));
    vec2 colOffset = vec2(randomRange(vec2(time, 9545.0), -maxColOffset, maxColOffset),
                          randomRange(vec2(time, 7205.0), -maxColOffset, maxColOffset));
    if (rnd < 0.33) {
        colourOut.r = swapChannel(texture(videoTexture, uv + colOffset)).r;
    } else if (rnd < 0.66) {
        colourOut.g = swapChannel(texture(videoTexture, uv + colOffset)).g;
    } else {
        colourOut.b = swapChannel(texture(videoTexture, uv + colOffset)).b;
    }

    colourOut = colourOut * multiplier16bit;
    colourOut = vec4(colourOut.a * colourOut.r, colourOut.a * colourOut.g,
                     colourOut.a * colourOut.b, colourOut.a);
}
