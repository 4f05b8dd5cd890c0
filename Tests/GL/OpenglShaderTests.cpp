// Shader programs built by a real GLSL compiler: what a failed build prints
// and leaves behind, where attributes land, and what the setters write as
// GL reads it back.
#include "GL/OpenglShader.h"

#include "Math/Affine.h"
#include "Math/Color.h"
#include "Math/Mat4.h"

#include "RenderContextTest.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::StartsWith;

// Every attribute and uniform feeds the output, so that none is optimised
// away. One uniform of each kind of setter: integer and float values, arrays
// of each, the math types, matrices and a sampler.
const char* const kVertex = R"(#version 330
in vec2 a2; in vec3 a3;
void main() { gl_Position = vec4(a2, 0.0, 0.0) + vec4(a3, 0.0); }
)";

const char* const kFragment = R"(#version 330
uniform ivec3 i3; uniform vec2 f2; uniform vec3 f3; uniform vec4 f4; uniform ivec2 ia2[2]; uniform vec3 fa3[2];
uniform mat3 affines[2]; uniform mat4 transforms[2]; uniform sampler2D picture;
out vec4 colour;
void main()
{
    vec3 sum = vec3(i3) + vec3(f2, 0.0) + f3 + vec3(ia2[0] + ia2[1], 0.0) + fa3[0] + fa3[1];
    vec3 mapped = affines[0] * f3 + affines[1] * f3;
    colour = vec4(sum + mapped, 0.0) + transforms[0] * f4 + transforms[1] * f4 + texture(picture, vec2(0.5));
}
)";

const char* const kBroken = "#version 330\nvoid main() { undeclared = 1.0; }\n";

const int kInts[4] = {1, -2, 3, -4};
const float kFloats[6] = {0.5f, -1.5f, 2.25f, -3.0f, 4.75f, -5.5f};

// The plain setters write the start of kInts or kFloats: an n-component
// uniform its first n, an array of two its first 2n.
void setPlainUniforms(const OpenglShader& s)
{
    s.setUniform3i("i3", 1, -2, 3);
    s.setUniform2f("f2", 0.5f, -1.5f);
    s.setUniform2iv("ia2", kInts, 2);
    s.setUniform3fv("fa3", kFloats, 2);
}

using PointAttribute = std::function<void(const OpenglShader&, int index, const float* data, int stride)>;

struct AttributeForm {
    GLuint index;  // the named form points the attribute bound here (a3 at 3)
    GLint size;
    GLenum type;
    PointAttribute point;
};

const AttributeForm kAttributeForms[] = {
    {3, 3, GL_FLOAT, [](auto& s, int, auto* d, int st) { s.setAttribute3fv("a3", d, st); }},
    {5, 1, GL_INT, [](auto& s, int i, auto* d, int st) { s.setAttribute1iv(i, reinterpret_cast<const int*>(d), st); }},
    {7, 2, GL_FLOAT, [](auto& s, int i, auto* d, int st) { s.setAttribute2fv(i, d, st); }},
    {9, 4, GL_FLOAT, [](auto& s, int i, auto* d, int st) { s.setAttribute4fv(i, d, st); }},
};

class OpenglShaderTest : public RenderContextTest {
protected:
    // With no program, any GL call a setter made would raise an error, which the fixture fails, or move the
    // texture unit.
    static void expectSettersTouchNothing(const OpenglShader& shader)
    {
        glActiveTexture(GL_TEXTURE5);
        EXPECT_EQ(shader.getUniformLocation("i3"), -1);
        setPlainUniforms(shader);
        shader.setUniformMatrix4f("transforms", Mat4(true), 1);
        shader.setUniformTexture("picture", static_cast<int>(GL_TEXTURE_2D), 1, 2);
        for (const AttributeForm& form : kAttributeForms) {
            form.point(shader, 0, nullptr, 0);
        }
        shader.disableVertexAttributeArray("a3");
        shader.disableVertexAttributeArray(0);
        EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), static_cast<GLint>(GL_TEXTURE5));
        glActiveTexture(GL_TEXTURE0);
    }

    // The `components` values of each of `elements` elements, as floats.
    static std::vector<float> uniform(const OpenglShader& shader, const std::string& name, int elements,
                                      std::size_t components)
    {
        std::vector<float> read;
        for (int element = 0; element < elements; ++element) {
            const GLint location =
                shader.getUniformLocation(elements == 1 ? name : name + "[" + std::to_string(element) + "]");
            EXPECT_NE(location, -1) << name;
            GLfloat values[16] = {};
            glGetUniformfv(shader.program(), location, values);
            read.insert(read.end(), values, values + components);
        }
        return read;
    }
};

TEST_F(OpenglShaderTest, AFailedBuildPrintsItsStageLeavesNothingSetsNothingAndIsTriedAfresh)
{
    // A broken stage ends the attempt: with both broken, one error shows, its long log cut at the buffer. The
    // last vertex stage compiles but gives the linker no main.
    std::string longLog = "#version 330\nvoid main()\n{\n";
    for (int line = 0; line < 60; ++line) {
        longLog += "    undeclared" + std::to_string(line) + " = 1.0;\n";
    }
    const std::vector<std::vector<const char*>> builds = {
        {longLog.append("}\n").c_str(), kBroken, "", "Shader vert error:\n"},
        {kVertex, kBroken, "", "Shader frag error:\n"},
        {kVertex, kFragment, kBroken, "Shader geo error:\n"},
        {"#version 330\nvec4 place() { return vec4(1.0); }\n", kFragment, "", "Program error:\n"},
    };
    OpenglShader other(kVertex, kFragment);
    other.useProgram();
    const auto withOther = liveObjects();
    for (const auto& build : builds) {
        const std::string header = build[3];
        SCOPED_TRACE(header);
        OpenglShader shader(build[0], build[1], build[2]);
        other.useProgram();

        const std::string printed = standardOutputOf([&] { shader.useProgram(); });

        EXPECT_THAT(printed, StartsWith(header));
        EXPECT_GT(printed.size(), header.size() + 1) << "no log printed";
        EXPECT_LE(printed.size(), header.size() + 511 + 1) << "not cut at the buffer";
        EXPECT_EQ(printed.find('\0'), std::string::npos);
        EXPECT_EQ(occurrences(printed, "error:\n"), 1u);
        EXPECT_EQ(shader.program(), 0u);
        EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0) << "the other program stayed in use";
        EXPECT_EQ(liveObjects(), withOther) << "the failed attempt left objects";
        expectSettersTouchNothing(shader);
        EXPECT_EQ(standardOutputOf([&] { shader.useProgram(); }), printed) << "the retry did not build again";
    }
}

TEST_F(OpenglShaderTest, ABuildKeepsOnlyItsProgramWhichASecondUseReusesAndTheSettersWriteWhatGLReadsBack)
{
    const auto before = liveObjects();
    auto shader = std::make_unique<OpenglShader>(kVertex, kFragment);
    shader->addAttributeBinding("a2", 2);
    shader->addAttributeBinding("a3", 3);
    shader->addAttributeBinding("a3", 7);  // the first binding of a name wins
    shader->useProgram();
    EXPECT_EQ(shader->getAttributeLocation("a2"), 2);
    EXPECT_EQ(shader->getAttributeLocation("a3"), 3);
    const GLuint program = shader->program();
    auto expected = before;
    expected.insert("program " + std::to_string(program));
    EXPECT_EQ(liveObjects(), expected) << "stage objects remain";
    glUseProgram(0);
    shader->useProgram();
    EXPECT_EQ(shader->program(), program);
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), static_cast<GLint>(program));

    setPlainUniforms(*shader);
    EXPECT_THAT(uniform(*shader, "i3", 1, 3), ElementsAreArray(kInts, 3));
    EXPECT_THAT(uniform(*shader, "f2", 1, 2), ElementsAreArray(kFloats, 2));
    EXPECT_THAT(uniform(*shader, "ia2", 2, 2), ElementsAreArray(kInts, 4));
    EXPECT_THAT(uniform(*shader, "fa3", 2, 3), ElementsAreArray(kFloats, 6));

    // The math types, each double narrowed to float.
    shader->setUniform3f("f3", Vec3(1.0 / 3.0, 4.0, 1e30));
    EXPECT_THAT(uniform(*shader, "f3", 1, 3), ElementsAre(1.0f / 3.0f, 4.0f, static_cast<float>(1e30)));
    shader->setUniform4f("f4", Color(0.2, 0.4, 0.6, 0.8));
    EXPECT_THAT(uniform(*shader, "f4", 1, 4), ElementsAre(0.2f, 0.4f, 0.6f, 0.8f));

    // Columns (s0, s3, 0), (s1, s4, 0), (s2, s5, 1), the arguments running column by column.
    const Affine affines[2] = {Affine(1, 2, 3, 4, 5, 6), Affine(-0.5, 0.25, 7, 8, 0.1, -9)};
    shader->setUniformMatrix3f("affines", affines, 2);
    EXPECT_THAT(uniform(*shader, "affines", 2, 9),
                ElementsAreArray({1.f, 2.f, 0.f, 3.f, 4.f, 0.f, 5.f, 6.f, 1.f, -0.5f, 0.25f, 0.f, 7.f, 8.f, 0.f,
                                  0.1f, -9.f, 1.f}));
    // Storage order, and never more than the one matrix whatever the count.
    double matrix[16];
    std::vector<float> transforms(32, 0.0f);
    for (int k = 0; k < 16; ++k) {
        matrix[k] = k + 0.1;
        transforms[k] = static_cast<float>(matrix[k]);
    }
    shader->setUniformMatrix4f("transforms", Mat4(matrix, true), 2);
    EXPECT_THAT(uniform(*shader, "transforms", 2, 16), ElementsAreArray(transforms));

    // A texture selects its unit and binds there even where the sampler is absent.
    GLuint textures[2] = {};
    glGenTextures(2, textures);
    shader->setUniformTexture("picture", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(textures[0]), 3);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(textures[0]));
    EXPECT_THAT(uniform(*shader, "picture", 1, 1), ElementsAre(3.0f));
    shader->setUniformTexture("absent", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(textures[1]), 4);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), static_cast<GLint>(GL_TEXTURE4));
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(textures[1]));
    glActiveTexture(GL_TEXTURE0);
    glDeleteTextures(2, textures);

    GLuint vertexArray = 0;
    GLuint buffer = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    const auto value = [](GLuint index, GLenum name) {
        GLint read = 0;
        glGetVertexAttribiv(index, name, &read);
        return read;
    };
    for (const AttributeForm& form : kAttributeForms) {
        SCOPED_TRACE(form.index);
        // Offset and stride differ for every form, so that none is taken for another's.
        const std::uintptr_t offset = 4 * form.index;
        const int stride = 44 - static_cast<int>(offset);
        form.point(*shader, static_cast<int>(form.index), reinterpret_cast<const float*>(offset), stride);
        EXPECT_EQ(value(form.index, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 1);
        EXPECT_EQ(value(form.index, GL_VERTEX_ATTRIB_ARRAY_SIZE), form.size);
        EXPECT_EQ(value(form.index, GL_VERTEX_ATTRIB_ARRAY_TYPE), static_cast<GLint>(form.type));
        EXPECT_EQ(value(form.index, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED), 0);
        EXPECT_EQ(value(form.index, GL_VERTEX_ATTRIB_ARRAY_STRIDE), stride);
        void* pointer = nullptr;
        glGetVertexAttribPointerv(form.index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pointer), offset);
    }

    shader->disableVertexAttributeArray("a3");
    shader->disableVertexAttributeArray(9);
    EXPECT_EQ(value(3, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 0);
    EXPECT_EQ(value(9, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 0);
    // Named forms skip an attribute the program lacks.
    shader->setAttribute3fv("absent", nullptr, 0);
    shader->disableVertexAttributeArray("absent");

    glDeleteBuffers(1, &buffer);
    glDeleteVertexArrays(1, &vertexArray);
    glUseProgram(0);
    shader.reset();
    EXPECT_EQ(liveObjects(), before) << "the destructor kept the program";
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
