#version 330
// Shared by both glitch programs: a full-screen quad whose texture
// coordinates follow clip space, with no flip.
in vec2 position;
in vec2 input_uv;
out vec2 uv;

void main() {
    uv = input_uv;
    gl_Position = vec4(position, 0.0, 1.0);
}
