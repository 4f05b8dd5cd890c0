// Shader programs built by a real GLSL compiler: what a failed build prints
// and leaves behind, where attributes land, and what the setters write.
#include "GL/OpenglShader.h"

#include "Support/GLContextTest.h"

#include <glbinding/gl/gl.h>
#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

using namespace gl;

namespace Halvane::Quorvex::Testing {
namespace {

using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

const char* const kVertex = R"(#version 330
in vec2 position;
void main() { gl_Position = vec4(position, 0.0, 1.0); }
)";

const char* const kFragment = R"(#version 330
out vec4 colour;
void main() { colour = vec4(1.0); }
)";

const char* const kGeometry = R"(#version 330
layout(triangles) in;
layout(triangle_strip, max_vertices = 3) out;
void main()
{
    for (int corner = 0; corner < 3; ++corner) {
        gl_Position = gl_in[corner].gl_Position;
        EmitVertex();
    }
    EndPrimitive();
}
)";

const char* const kBroken = R"(#version 330
void main() { undeclared = 1.0; }
)";

// Compiles, but gives the linker no main.
const char* const kVertexWithoutMain = R"(#version 330
in vec2 position;
vec4 place() { return vec4(position, 0.0, 1.0); }
)";

const char* const kAttributeVertex = R"(#version 330
in float a1;
in vec2 a2;
in vec3 a3;
in vec4 a4;
out vec4 mixed;
void main()
{
    mixed = vec4(a1) + vec4(a2, 0.0, 0.0) + vec4(a3, 0.0) + a4;
    gl_Position = mixed;
}
)";

const char* const kAttributeFragment = R"(#version 330
in vec4 mixed;
out vec4 colour;
void main() { colour = mixed; }
)";

const char* const kUniformFragment = R"(#version 330
uniform int i1;
uniform ivec2 i2;
uniform ivec3 i3;
uniform ivec4 i4;
uniform float f1;
uniform vec2 f2;
uniform vec3 f3;
uniform vec4 f4;
uniform int ia1[2];
uniform ivec2 ia2[2];
uniform ivec3 ia3[2];
uniform ivec4 ia4[2];
uniform float fa1[2];
uniform vec2 fa2[2];
uniform vec3 fa3[2];
uniform vec4 fa4[2];
uniform sampler2D picture;
out vec4 colour;
void main()
{
    ivec4 i = ivec4(i1) + ivec4(i2, 0, 0) + ivec4(i3, 0) + i4 + ivec4(ia1[0] + ia1[1])
            + ivec4(ia2[0] + ia2[1], 0, 0) + ivec4(ia3[0] + ia3[1], 0) + ia4[0] + ia4[1];
    vec4 f = vec4(f1) + vec4(f2, 0.0, 0.0) + vec4(f3, 0.0) + f4 + vec4(fa1[0] + fa1[1])
           + vec4(fa2[0] + fa2[1], 0.0, 0.0) + vec4(fa3[0] + fa3[1], 0.0) + fa4[0] + fa4[1];
    colour = vec4(i) + f + texture(picture, vec2(0.5));
}
)";

GLint integer(GLenum name)
{
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

GLint programValue(GLuint program, GLenum name)
{
    GLint value = 0;
    glGetProgramiv(program, name, &value);
    return value;
}

GLint attributeValue(GLuint index, GLenum name)
{
    GLint value = 0;
    glGetVertexAttribiv(index, name, &value);
    return value;
}

std::uintptr_t attributeOffset(GLuint index)
{
    void* pointer = nullptr;
    glGetVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
    return reinterpret_cast<std::uintptr_t>(pointer);
}

template <typename Value>
const Value* offset(std::uintptr_t bytes)
{
    return reinterpret_cast<const Value*>(bytes);
}

std::string shaderLog(GLuint shader)
{
    std::vector<char> log(16384);
    GLsizei length = 0;
    glGetShaderInfoLog(shader, static_cast<GLsizei>(log.size()), &length, log.data());
    return std::string(log.data(), static_cast<std::size_t>(length));
}

class OpenglShaderTest : public GLContextTest {
protected:
    // A built program made current, so that a test can see useProgram
    // replace it.
    void TearDown() override
    {
        mOther.reset();
        GLContextTest::TearDown();
    }

    GLuint makeOtherProgramCurrent()
    {
        mOther->useProgram();
        return mOther->program();
    }

    // Everything a build made, by name, from a log of its calls.
    static std::vector<unsigned> madeObjects(const GLCallLog& log)
    {
        std::vector<unsigned> names = log.returnedNames("glCreateShader");
        const std::vector<unsigned> programs = log.returnedNames("glCreateProgram");
        names.insert(names.end(), programs.begin(), programs.end());
        return names;
    }

    static bool exists(unsigned name) { return glIsShader(name) == GL_TRUE || glIsProgram(name) == GL_TRUE; }

    std::optional<OpenglShader> mOther{std::in_place, kVertex, kFragment};
};

TEST_F(OpenglShaderTest, ABuildKeepsNoStageObjectsAndASecondUseOnlyBinds)
{
    GLuint program = 0;
    {
        OpenglShader shader(kVertex, kFragment);
        GLCallLog log;
        shader.useProgram();

        program = shader.program();
        ASSERT_NE(program, 0u);
        EXPECT_EQ(integer(GL_CURRENT_PROGRAM), static_cast<GLint>(program));
        const std::vector<unsigned> stages = log.returnedNames("glCreateShader");
        EXPECT_EQ(stages.size(), 2u) << "an empty geometry source still made a stage";
        EXPECT_EQ(programValue(program, GL_ATTACHED_SHADERS), 0);
        for (unsigned stage : stages) {
            EXPECT_EQ(glIsShader(stage), GL_FALSE) << "stage " << stage << " remains";
        }

        glUseProgram(0);
        log.clear();
        shader.useProgram();
        EXPECT_EQ(log.names(), std::vector<std::string>{"glUseProgram"});
        EXPECT_EQ(integer(GL_CURRENT_PROGRAM), static_cast<GLint>(program));
        glUseProgram(0);
    }
    EXPECT_EQ(glIsProgram(program), GL_FALSE) << "the destructor kept the program";
}

TEST_F(OpenglShaderTest, AGeometrySourceAddsAThirdStage)
{
    OpenglShader shader(kVertex, kFragment, kGeometry);
    GLCallLog log;

    shader.useProgram();

    EXPECT_NE(shader.program(), 0u);
    EXPECT_EQ(log.count("glCreateShader"), 3u);
    EXPECT_EQ(programValue(shader.program(), GL_ATTACHED_SHADERS), 0);
    glUseProgram(0);
}

struct FailingBuild {
    const char* what;
    const char* vertex;
    const char* fragment;
    const char* geometry;
    const char* header;
};

TEST_F(OpenglShaderTest, AFailedBuildPrintsItsStageLeavesNothingAndIsTriedAfreshNextTime)
{
    const FailingBuild builds[] = {
        {"vertex", kBroken, kFragment, "", "Shader vert error:\n"},
        {"fragment", kVertex, kBroken, "", "Shader frag error:\n"},
        {"geometry", kVertex, kFragment, kBroken, "Shader geo error:\n"},
        {"link", kVertexWithoutMain, kFragment, "", "Program error:\n"},
    };
    for (const FailingBuild& build : builds) {
        SCOPED_TRACE(build.what);
        OpenglShader shader(build.vertex, build.fragment, build.geometry);
        makeOtherProgramCurrent();
        GLCallLog log;

        const std::string printed = standardOutputOf([&] { shader.useProgram(); });

        EXPECT_THAT(printed, StartsWith(build.header));
        EXPECT_GT(printed.size(), std::string(build.header).size() + 1) << "no log printed";
        EXPECT_EQ(printed.back(), '\n');
        EXPECT_EQ(occurrences(printed, "error:\n"), 1u);
        EXPECT_EQ(shader.program(), 0u);
        EXPECT_EQ(integer(GL_CURRENT_PROGRAM), 0);
        EXPECT_EQ(shader.getUniformLocation("colour"), -1);
        const std::vector<unsigned> firstAttempt = madeObjects(log);
        for (unsigned name : firstAttempt) {
            EXPECT_FALSE(exists(name)) << "object " << name << " of the failed attempt remains";
        }

        log.clear();
        EXPECT_EQ(standardOutputOf([&] { shader.useProgram(); }), printed);
        EXPECT_EQ(madeObjects(log).size(), firstAttempt.size()) << "the retry did not start from scratch";
    }
}

TEST_F(OpenglShaderTest, ABrokenVertexStageEndsTheAttemptBeforeTheFragmentStage)
{
    OpenglShader shader(kBroken, kBroken);
    GLCallLog log;

    const std::string printed = standardOutputOf([&] { shader.useProgram(); });

    EXPECT_THAT(printed, StartsWith("Shader vert error:\n"));
    EXPECT_THAT(printed, Not(HasSubstr("frag")));
    EXPECT_EQ(log.count("glCreateShader"), 2u) << "both stages exist before anything compiles";
    EXPECT_EQ(log.count("glCompileShader"), 1u);
}

TEST_F(OpenglShaderTest, ALongLogIsCutAtTheBufferAndTerminated)
{
    std::string source = "#version 330\nvoid main()\n{\n";
    for (int line = 0; line < 60; ++line) {
        source += "    undeclared" + std::to_string(line) + " = 1.0;\n";
    }
    source += "}\n";
    const GLuint probe = glCreateShader(GL_VERTEX_SHADER);
    const char* text = source.c_str();
    glShaderSource(probe, 1, &text, nullptr);
    glCompileShader(probe);
    const std::string fullLog = shaderLog(probe);
    glDeleteShader(probe);
    ASSERT_GT(fullLog.size(), 600u) << "the compiler's log is too short to test the cut";

    OpenglShader shader(source, kFragment);
    const std::string printed = standardOutputOf([&] { shader.useProgram(); });

    EXPECT_EQ(printed, "Shader vert error:\n" + fullLog.substr(0, 511) + "\n");
}

TEST_F(OpenglShaderTest, AttributeBindingsLandAtTheirIndexesTheFirstOneWinning)
{
    OpenglShader shader(kAttributeVertex, kAttributeFragment);
    shader.addAttributeBinding("a2", 5);
    shader.addAttributeBinding("a3", 3);
    shader.addAttributeBinding("a3", 7);
    shader.useProgram();
    shader.addAttributeBinding("a4", 9);

    ASSERT_NE(shader.program(), 0u);
    EXPECT_EQ(glGetAttribLocation(shader.program(), "a2"), 5);
    EXPECT_EQ(glGetAttribLocation(shader.program(), "a3"), 3);
    EXPECT_NE(glGetAttribLocation(shader.program(), "a4"), 9) << "a binding after the build took effect";
    EXPECT_EQ(shader.getAttributeLocation("a2"), 5);
    glUseProgram(0);
}

struct UniformCase {
    std::string name;
    int elements;  // 1 for a plain uniform, 2 for the arrays
    bool integral;
    std::function<void(const OpenglShader&)> set;
    std::vector<double> expected;
};

TEST_F(OpenglShaderTest, UniformSettersWriteWhatGLReadsBack)
{
    const int ints[8] = {1, -2, 3, -4, 5, -6, 7, -8};
    const float floats[8] = {0.5f, -1.5f, 2.25f, -3.0f, 4.75f, -5.5f, 6.0f, -7.25f};
    const std::vector<UniformCase> cases = {
        {"i1", 1, true, [](auto& s) { s.setUniform1i("i1", 7); }, {7}},
        {"i2", 1, true, [](auto& s) { s.setUniform2i("i2", 7, -8); }, {7, -8}},
        {"i3", 1, true, [](auto& s) { s.setUniform3i("i3", 7, -8, 9); }, {7, -8, 9}},
        {"i4", 1, true, [](auto& s) { s.setUniform4i("i4", 7, -8, 9, -10); }, {7, -8, 9, -10}},
        {"f1", 1, false, [](auto& s) { s.setUniform1f("f1", 0.25f); }, {0.25}},
        {"f2", 1, false, [](auto& s) { s.setUniform2f("f2", 0.25f, -2.5f); }, {0.25, -2.5}},
        {"f3", 1, false, [](auto& s) { s.setUniform3f("f3", 0.25f, -2.5f, 8.0f); }, {0.25, -2.5, 8}},
        {"f4", 1, false, [](auto& s) { s.setUniform4f("f4", 0.25f, -2.5f, 8.0f, -0.125f); }, {0.25, -2.5, 8, -0.125}},
        {"ia1", 2, true, [&](auto& s) { s.setUniform1iv("ia1", ints, 2); }, {1, -2}},
        {"ia2", 2, true, [&](auto& s) { s.setUniform2iv("ia2", ints, 2); }, {1, -2, 3, -4}},
        {"ia3", 2, true, [&](auto& s) { s.setUniform3iv("ia3", ints, 2); }, {1, -2, 3, -4, 5, -6}},
        {"ia4", 2, true, [&](auto& s) { s.setUniform4iv("ia4", ints, 2); }, {1, -2, 3, -4, 5, -6, 7, -8}},
        {"fa1", 2, false, [&](auto& s) { s.setUniform1fv("fa1", floats, 2); }, {0.5, -1.5}},
        {"fa2", 2, false, [&](auto& s) { s.setUniform2fv("fa2", floats, 2); }, {0.5, -1.5, 2.25, -3}},
        {"fa3", 2, false, [&](auto& s) { s.setUniform3fv("fa3", floats, 2); }, {0.5, -1.5, 2.25, -3, 4.75, -5.5}},
        {"fa4", 2, false, [&](auto& s) { s.setUniform4fv("fa4", floats, 2); },
         {0.5, -1.5, 2.25, -3, 4.75, -5.5, 6, -7.25}},
    };
    OpenglShader shader(kVertex, kUniformFragment);
    shader.useProgram();
    ASSERT_NE(shader.program(), 0u);

    for (const UniformCase& uniform : cases) {
        SCOPED_TRACE(uniform.name);
        uniform.set(shader);
        const std::size_t components = uniform.expected.size() / static_cast<std::size_t>(uniform.elements);
        std::vector<double> read;
        for (int element = 0; element < uniform.elements; ++element) {
            const std::string name =
                uniform.elements == 1 ? uniform.name : uniform.name + "[" + std::to_string(element) + "]";
            const GLint location = shader.getUniformLocation(name);
            ASSERT_NE(location, -1);
            GLint ints4[4] = {};
            GLfloat floats4[4] = {};
            if (uniform.integral) {
                glGetUniformiv(shader.program(), location, ints4);
            } else {
                glGetUniformfv(shader.program(), location, floats4);
            }
            for (std::size_t component = 0; component < components; ++component) {
                read.push_back(uniform.integral ? ints4[component] : floats4[component]);
            }
        }
        EXPECT_THAT(read, ElementsAreArray(uniform.expected));
    }
    glUseProgram(0);
}

TEST_F(OpenglShaderTest, AUniformTheProgramLacksIsSkippedQuietly)
{
    OpenglShader shader(kVertex, kUniformFragment);
    shader.useProgram();
    GLCallLog log;

    shader.setUniform4f("absent", 1.0f, 2.0f, 3.0f, 4.0f);

    EXPECT_EQ(log.names(), std::vector<std::string>{"glGetUniformLocation"});
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    glUseProgram(0);
}

TEST_F(OpenglShaderTest, ATextureUniformSelectsItsUnitEvenWithoutTheSampler)
{
    OpenglShader shader(kVertex, kUniformFragment);
    shader.useProgram();
    GLuint textures[2] = {};
    glGenTextures(2, textures);

    shader.setUniformTexture("picture", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(textures[0]), 3);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), static_cast<GLint>(GL_TEXTURE3));
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(textures[0]));
    GLint unit = -1;
    glGetUniformiv(shader.program(), shader.getUniformLocation("picture"), &unit);
    EXPECT_EQ(unit, 3);

    shader.setUniformTexture("absent", static_cast<int>(GL_TEXTURE_2D), static_cast<int>(textures[1]), 4);
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), static_cast<GLint>(GL_TEXTURE4));
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(textures[1]));

    glActiveTexture(GL_TEXTURE0);
    glDeleteTextures(2, textures);
    glUseProgram(0);
}

TEST_F(OpenglShaderTest, SettersBeforeTheFirstBuildTouchNothing)
{
    OpenglShader shader(kAttributeVertex, kUniformFragment);
    const int ints[4] = {};
    const float floats[4] = {};
    glActiveTexture(GL_TEXTURE5);
    GLCallLog log;

    EXPECT_EQ(shader.getUniformLocation("i1"), -1);
    shader.setUniform1i("i1", 1);
    shader.setUniform2i("i2", 1, 2);
    shader.setUniform3i("i3", 1, 2, 3);
    shader.setUniform4i("i4", 1, 2, 3, 4);
    shader.setUniform1f("f1", 1);
    shader.setUniform2f("f2", 1, 2);
    shader.setUniform3f("f3", 1, 2, 3);
    shader.setUniform4f("f4", 1, 2, 3, 4);
    shader.setUniform1iv("ia1", ints, 1);
    shader.setUniform2iv("ia2", ints, 1);
    shader.setUniform3iv("ia3", ints, 1);
    shader.setUniform4iv("ia4", ints, 1);
    shader.setUniform1fv("fa1", floats, 1);
    shader.setUniform2fv("fa2", floats, 1);
    shader.setUniform3fv("fa3", floats, 1);
    shader.setUniform4fv("fa4", floats, 1);
    shader.setUniformTexture("picture", static_cast<int>(GL_TEXTURE_2D), 1, 2);
    shader.setAttribute1iv(0, ints, 0);
    shader.setAttribute1fv("a1", floats, 0);
    shader.setAttribute1fv(0, floats, 0);
    shader.setAttribute2fv("a2", floats, 0);
    shader.setAttribute2fv(0, floats, 0);
    shader.setAttribute3fv("a3", floats, 0);
    shader.setAttribute3fv(0, floats, 0);
    shader.setAttribute4fv("a4", floats, 0);
    shader.setAttribute4fv(0, floats, 0);
    shader.disableVertexAttributeArray("a1");
    shader.disableVertexAttributeArray(0);

    EXPECT_TRUE(log.names().empty()) << log.names().front();
    EXPECT_EQ(integer(GL_ACTIVE_TEXTURE), static_cast<GLint>(GL_TEXTURE5));
    glActiveTexture(GL_TEXTURE0);
}

class OpenglShaderAttributeTest : public OpenglShaderTest {
protected:
    void SetUp() override
    {
        OpenglShaderTest::SetUp();
        glGenVertexArrays(1, &mVertexArray);
        glBindVertexArray(mVertexArray);
        glGenBuffers(1, &mBuffer);
        glBindBuffer(GL_ARRAY_BUFFER, mBuffer);
        glBufferData(GL_ARRAY_BUFFER, 256, nullptr, GL_STATIC_DRAW);
        mShader.emplace(kAttributeVertex, kAttributeFragment);
        mShader->addAttributeBinding("a1", 1);
        mShader->addAttributeBinding("a2", 2);
        mShader->addAttributeBinding("a3", 3);
        mShader->addAttributeBinding("a4", 4);
        mShader->useProgram();
        ASSERT_NE(mShader->program(), 0u);
    }

    void TearDown() override
    {
        mShader.reset();
        glUseProgram(0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glDeleteBuffers(1, &mBuffer);
        glBindVertexArray(0);
        glDeleteVertexArrays(1, &mVertexArray);
        OpenglShaderTest::TearDown();
    }

    void expectArray(GLuint index, GLint size, GLenum type, GLint stride, std::uintptr_t bytes)
    {
        SCOPED_TRACE("attribute " + std::to_string(index));
        EXPECT_EQ(attributeValue(index, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 1);
        EXPECT_EQ(attributeValue(index, GL_VERTEX_ATTRIB_ARRAY_SIZE), size);
        EXPECT_EQ(attributeValue(index, GL_VERTEX_ATTRIB_ARRAY_TYPE), static_cast<GLint>(type));
        EXPECT_EQ(attributeValue(index, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED), 0);
        EXPECT_EQ(attributeValue(index, GL_VERTEX_ATTRIB_ARRAY_STRIDE), stride);
        EXPECT_EQ(attributeOffset(index), bytes);
    }

    GLuint mVertexArray = 0;
    GLuint mBuffer = 0;
    std::optional<OpenglShader> mShader;
};

TEST_F(OpenglShaderAttributeTest, SettersEnableTheArrayAndPassOffsetAndStrideThrough)
{
    mShader->setAttribute1fv("a1", offset<float>(4), 40);
    expectArray(1, 1, GL_FLOAT, 40, 4);
    mShader->setAttribute2fv("a2", offset<float>(8), 36);
    expectArray(2, 2, GL_FLOAT, 36, 8);
    mShader->setAttribute3fv("a3", offset<float>(12), 32);
    expectArray(3, 3, GL_FLOAT, 32, 12);
    mShader->setAttribute4fv("a4", offset<float>(16), 28);
    expectArray(4, 4, GL_FLOAT, 28, 16);

    mShader->setAttribute1iv(5, offset<int>(20), 24);
    expectArray(5, 1, GL_INT, 24, 20);
    mShader->setAttribute1fv(6, offset<float>(24), 20);
    expectArray(6, 1, GL_FLOAT, 20, 24);
    mShader->setAttribute2fv(7, offset<float>(28), 16);
    expectArray(7, 2, GL_FLOAT, 16, 28);
    mShader->setAttribute3fv(8, offset<float>(32), 12);
    expectArray(8, 3, GL_FLOAT, 12, 32);
    mShader->setAttribute4fv(9, offset<float>(36), 0);
    expectArray(9, 4, GL_FLOAT, 0, 36);

    mShader->disableVertexAttributeArray("a2");
    mShader->disableVertexAttributeArray(8);
    EXPECT_EQ(attributeValue(2, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 0);
    EXPECT_EQ(attributeValue(8, GL_VERTEX_ATTRIB_ARRAY_ENABLED), 0);
}

TEST_F(OpenglShaderAttributeTest, OnlyTheTwoAndThreeComponentIndexFormsHandMinusOneToGL)
{
    const float* data = offset<float>(0);
    const std::vector<std::pair<std::string, std::function<void()>>> forms = {
        {"setAttribute1iv", [&] { mShader->setAttribute1iv(-1, offset<int>(0), 0); }},
        {"setAttribute1fv", [&] { mShader->setAttribute1fv(-1, data, 0); }},
        {"setAttribute2fv", [&] { mShader->setAttribute2fv(-1, data, 0); }},
        {"setAttribute3fv", [&] { mShader->setAttribute3fv(-1, data, 0); }},
        {"setAttribute4fv", [&] { mShader->setAttribute4fv(-1, data, 0); }},
    };
    for (const auto& [form, call] : forms) {
        SCOPED_TRACE(form);
        GLCallLog log;
        call();
        const bool handedOn = form == "setAttribute2fv" || form == "setAttribute3fv";
        EXPECT_EQ(log.count("glEnableVertexAttribArray"), handedOn ? 1u : 0u);
        EXPECT_EQ(glGetError(), handedOn ? GL_INVALID_VALUE : GL_NO_ERROR);
    }
}

TEST_F(OpenglShaderAttributeTest, NamedFormsSkipAnAttributeTheProgramLacks)
{
    GLCallLog log;

    mShader->setAttribute3fv("absent", offset<float>(0), 0);
    mShader->disableVertexAttributeArray("absent");

    EXPECT_EQ(log.names(), (std::vector<std::string>{"glGetAttribLocation", "glGetAttribLocation"}));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
