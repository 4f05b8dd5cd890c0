#version 330
// Block Glitch: horizontal bands shifted sideways and one colour channel
// offset against the others. The pattern holds for a tick of time and jumps
// to a new random one at the next.
in vec2 uv;
out vec4 colourOut;

uniform sampler2D videoTexture;
uniform float multiplier16bit;

// The frame's random pattern arrives from outside, computed once per frame
// from the frame's time (GlitchFrameValues): each band's lower and upper edge
// and its sideways shift, the channel that is offset (0 red, 1 green, 2 blue)
// and its offset.
const int BANDS = 2;
uniform vec2 bandEdges[BANDS];
uniform float bandShift[BANDS];
uniform int offsetChannel;
uniform vec2 channelOffset;

float insideRange(float v, float bottom, float top) {
    return step(bottom, v) - step(top, v);
}

// The texture holds the host's A, R, G, B in r, g, b, a.
vec4 swapChannel(vec4 eColor) {
    return vec4(eColor.g, eColor.b, eColor.a, eColor.r);
}

void main() {
    // A pixel inside a band shows the picture shifted by the band's offset,
    // the last band it is in winning; so one read at the chosen place.
    vec2 source = uv;
    for (int i = 0; i < BANDS; ++i) {
        vec2 uvOff = uv;
        uvOff.x += bandShift[i];
        // A band whose top wraps past 1.0 shifts nothing on that tick.
        if (insideRange(uv.y, bandEdges[i].x, bandEdges[i].y) == 1.0) {
            source = uvOff;
        }
    }
    colourOut = swapChannel(texture(videoTexture, source));

    vec4 shifted = swapChannel(texture(videoTexture, uv + channelOffset));
    if (offsetChannel == 0) {
        colourOut.r = shifted.r;
    } else if (offsetChannel == 1) {
        colourOut.g = shifted.g;
    } else {
        colourOut.b = shifted.b;
    }

    colourOut = colourOut * multiplier16bit;
    colourOut = vec4(colourOut.a * colourOut.r, colourOut.a * colourOut.g,
                     colourOut.a * colourOut.b, colourOut.a);
}
