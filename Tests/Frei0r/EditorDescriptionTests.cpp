// The editors' descriptions of the plug-in agree with what the plug-in tells
// MLT (`melt -query`): the same indexes and names, the drop-down's values on
// either side of 0.5, Speed and Seed scaled onto the plug-in's 0 to 1 with
// the effect's defaults, and QML that Qt's own checker reads; and Shotcut,
// started on a virtual display with our filter folder beside Debian's in a
// prefix of its own, lists Quorvex among the filters it adds.
#include "Frei0r/Frei0rHostTest.h"

// OpenImageIO's copy of pugixml, header-only.
#include <OpenImageIO/detail/pugixml/pugixml.hpp>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

namespace Halvane::Quorvex::Testing {
namespace {

const std::string kEditors = QUORVEX_EDITOR_DESCRIPTIONS;
const std::string kShotcutFolder = kEditors + "/shotcut/quorvex";

// A parameter as the plug-in tells MLT: its index, range and default.
struct PluginParameter {
    int index = -1;
    double minimum = NAN;
    double maximum = NAN;
    double defaultValue = NAN;
};
// The plug-in's parameters by title.
using PluginParameters = std::map<std::string, PluginParameter>;

std::string FileText(const std::string& path)
{
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// The first capture of `pattern` in `text`, or "" where it does not match.
std::string Find(const std::string& text, const std::string& pattern)
{
    std::smatch match;
    return std::regex_search(text, match, std::regex(pattern)) ? match[1].str() : std::string();
}

// The first `property: value` line after the line that names `id` in a QML file.
std::string QmlValueAfter(const std::string& qml, const std::string& id, const std::string& property)
{
    const std::size_t at = qml.find("id: " + id + "\n");
    return at == std::string::npos ? "" : Find(qml.substr(at), property + ":\\s*([^\\n]+)");
}

class EditorDescriptionTest : public Frei0rHostTest {
protected:
    // MLT's YAML of the plug-in, read line by line; expects the plug-in's title to be `title`.
    PluginParameters queryPlugin(const std::string& title) const
    {
        const ToolResult query = runHost("melt", {"-query", "filter=frei0r.quorvex"});
        EXPECT_TRUE(Succeeded(query));
        std::string pluginTitle;
        std::vector<std::pair<std::string, PluginParameter>> parameters;
        std::istringstream lines(query.out);
        for (std::string line; std::getline(lines, line);) {
            std::smatch field;
            if (!std::regex_match(line, field, std::regex("( *)(- )?(\\w+): \"?(.*?)\"?"))) {
                continue;
            }
            const std::string key = field[3];
            const std::string value = field[4];
            PluginParameter* parameter = parameters.empty() ? nullptr : &parameters.back().second;
            if (field[1].length() == 0 && key == "title") {
                pluginTitle = value;
            } else if (key == "identifier" && field[2].matched) {
                parameters.emplace_back().second.index = std::stoi(value);
            } else if (parameter && key == "title") {
                parameters.back().first = value;
            } else if (parameter && key == "minimum") {
                parameter->minimum = std::stod(value);
            } else if (parameter && key == "maximum") {
                parameter->maximum = std::stod(value);
            } else if (parameter && key == "default") {
                parameter->defaultValue = std::stod(value);
            }
        }
        EXPECT_EQ(pluginTitle, title) << query.out;
        return {parameters.begin(), parameters.end()};
    }
};

TEST_F(EditorDescriptionTest, KdenliveShowsThePluginsParametersInTheEffectsUnits)
{
    PluginParameters plugin = queryPlugin("Quorvex");
    pugi::xml_document document;
    const std::string file = kEditors + "/kdenlive/frei0r_quorvex.xml";
    ASSERT_TRUE(document.load_file(file.c_str())) << file;
    const pugi::xml_node effect = document.child("effect");
    EXPECT_EQ((std::vector<std::string>{effect.attribute("tag").value(), effect.attribute("id").value(),
                                        effect.attribute("type").value(), effect.child_value("name")}),
              (std::vector<std::string>{"frei0r.quorvex", "frei0r.quorvex", "video", "Quorvex"}));
    const std::string description = effect.child_value("description");
    EXPECT_FALSE(description.empty());
    EXPECT_EQ(description.find('\n'), std::string::npos) << description;

    // Kdenlive names a frei0r parameter by its index; shown values are the
    // plug-in's times the factor, defaults are in the plug-in's units.
    std::map<std::string, pugi::xml_node> byTitle;
    for (const pugi::xml_node& parameter : effect.children("parameter")) {
        const std::string title = parameter.child_value("name");
        SCOPED_TRACE(title);
        ASSERT_EQ(plugin.count(title), 1u) << "the plug-in has no parameter named so";
        EXPECT_EQ(parameter.attribute("name").as_int(-1), plugin[title].index);
        byTitle[title] = parameter;
    }
    ASSERT_EQ(byTitle.size(), plugin.size());

    const pugi::xml_node type = byTitle["Glitch Type"];
    EXPECT_STREQ(type.attribute("type").value(), "list");
    EXPECT_STREQ(type.child_value("paramlistdisplay"), "Block Glitch,Bad TV");
    double values[2] = {NAN, NAN};
    char more = 0;
    ASSERT_EQ(std::sscanf(type.attribute("paramlist").value(), "%lf;%lf%c", &values[0], &values[1], &more), 2)
        << "a value for each item";
    EXPECT_LT(values[0], 0.5);
    EXPECT_GE(values[1], 0.5);
    EXPECT_LE(values[1], plugin["Glitch Type"].maximum);
    EXPECT_EQ(type.attribute("default").as_double(-1), plugin["Glitch Type"].defaultValue);

    const pugi::xml_node speed = byTitle["Speed"];
    EXPECT_STREQ(speed.attribute("type").value(), "animated");
    EXPECT_EQ(std::vector<double>({speed.attribute("factor").as_double(), speed.attribute("min").as_double(-1) / 3,
                                   speed.attribute("max").as_double() / 3}),
              std::vector<double>({3, plugin["Speed"].minimum, plugin["Speed"].maximum}));
    EXPECT_NEAR(speed.attribute("default").as_double() * 3, 1.0, 1e-6);
    EXPECT_NEAR(speed.attribute("default").as_double(), plugin["Speed"].defaultValue, 1e-6);

    const pugi::xml_node seed = byTitle["Seed"];
    EXPECT_EQ(std::vector<double>({seed.attribute("factor").as_double(), seed.attribute("decimals").as_double(-1),
                                   seed.attribute("min").as_double(-1), seed.attribute("max").as_double() / 999,
                                   seed.attribute("default").as_double(-1)}),
              std::vector<double>({999, 0, 0, plugin["Seed"].maximum, plugin["Seed"].defaultValue}));
}

TEST_F(EditorDescriptionTest, ShotcutShowsThePluginsParametersInTheEffectsUnits)
{
    PluginParameters plugin = queryPlugin("Quorvex");
    const std::string meta = FileText(kShotcutFolder + "/meta.qml");
    const std::string ui = FileText(kShotcutFolder + "/ui.qml");
    ASSERT_FALSE(meta.empty());
    ASSERT_FALSE(ui.empty());

    EXPECT_EQ(Find(meta, "mlt_service:\\s*\"([^\"]+)\""), "frei0r.quorvex");
    EXPECT_EQ(Find(meta, "Metadata \\{[^{}]*name:\\s*\"([^\"]+)\""), "Quorvex");
    EXPECT_EQ(Find(meta, "qml:\\s*\"([^\"]+)\""), "ui.qml");
    // The keyframable parameter of the keyframes panel is Speed.
    const std::string keyframed = Find(meta, "Parameter \\{[^}]*property:\\s*'(\\d+)'");
    ASSERT_FALSE(keyframed.empty());
    EXPECT_EQ(std::stoi(keyframed), plugin["Speed"].index);
    EXPECT_EQ(Find(meta, "Parameter \\{[^}]*name:\\s*'([^']+)'"), "Speed");

    // Each parameter's property and label, by the plug-in's names.
    for (const auto& [property, title] : {std::pair{"glitchType", "Glitch Type"}, {"speed", "Speed"}, {"seed", "Seed"}}) {
        SCOPED_TRACE(title);
        EXPECT_EQ(Find(ui, std::string("property string ") + property + ":\\s*'(\\d+)'"),
                  std::to_string(plugin[title].index));
        EXPECT_NE(ui.find(std::string("text: '") + title + "'"), std::string::npos);
    }

    EXPECT_EQ(Find(ui, "model:\\s*(\\[[^\\]]*\\])"), "['Block Glitch', 'Bad TV']");
    EXPECT_NE(ui.find("filter.set(glitchType, index)"), std::string::npos) << "item i writes i";
    EXPECT_EQ(Find(ui, "property double glitchTypeDefault:\\s*(\\S+)"), "0");

    const double speedFactor = std::stod(Find(ui, "property double speedFactor:\\s*(\\S+)"));
    EXPECT_EQ(speedFactor, 3);
    EXPECT_EQ(std::stod(QmlValueAfter(ui, "speedSlider", "minimumValue")) / speedFactor, plugin["Speed"].minimum);
    EXPECT_EQ(std::stod(QmlValueAfter(ui, "speedSlider", "maximumValue")) / speedFactor, plugin["Speed"].maximum);
    EXPECT_EQ(Find(ui, "property double speedDefault:\\s*([^\\n]+)"), "1 / speedFactor");

    const double seedFactor = std::stod(Find(ui, "property double seedFactor:\\s*(\\S+)"));
    EXPECT_EQ(seedFactor, 999);
    EXPECT_EQ(std::stod(QmlValueAfter(ui, "seedSlider", "maximumValue")) / seedFactor, plugin["Seed"].maximum);
    EXPECT_EQ(QmlValueAfter(ui, "seedSlider", "decimals"), "0");
    EXPECT_EQ(QmlValueAfter(ui, "seedSlider", "stepSize"), "1");

    EXPECT_TRUE(Succeeded(
        ToolProcess("qmllint", {kShotcutFolder + "/meta.qml", kShotcutFolder + "/ui.qml"}, {}, false).wait()));
}

namespace fs = std::filesystem;

// The program `name` as PATH finds it; empty where it does not.
fs::path FindProgram(const std::string& name)
{
    const ToolResult found = ToolProcess("sh", {"-c", "command -v \"$0\"", name}, {}, false).wait();
    return found.out.substr(0, found.out.find('\n'));
}

TEST_F(EditorDescriptionTest, ShotcutAddsQuorvexFromTheFilterFolderBesideIt)
{
#ifdef QUORVEX_SANITIZER_RUNTIME
    GTEST_SKIP() << "Shotcut is not run under the sanitizers: it would need their runtime preloaded into Qt";
#endif
    const fs::path shotcut = FindProgram("shotcut");
    if (shotcut.empty() || FindProgram("xvfb-run").empty()) {
        GTEST_SKIP() << "needs shotcut and xvfb-run (Debian's shotcut and xvfb, which scripts/install-deps.sh installs)";
    }

    // Shotcut reads its QML from share/shotcut/qml beside the folder of its
    // program, where /proc/self/exe puts it: a hard link (or a copy) of the
    // program, not a symbolic one, and Debian's folders linked around ours
    // (never an installed Quorvex).
    const fs::path program = fs::canonical(shotcut);
    const fs::path share = program.parent_path().parent_path() / "share/shotcut";
    const fs::path prefix = path("prefix");
    const fs::path filters = prefix / "share/shotcut/qml/filters";
    fs::create_directories(prefix / "bin");
    fs::create_directories(filters);
    std::error_code linkError;
    fs::create_hard_link(program, prefix / "bin/shotcut", linkError);
    if (linkError) {
        fs::copy_file(program, prefix / "bin/shotcut");
    }
    for (const auto& [from, to, except] :
         {std::tuple{share, prefix / "share/shotcut", "qml"}, {share / "qml", prefix / "share/shotcut/qml", "filters"},
          {share / "qml/filters", filters, "quorvex"}}) {
        for (const auto& entry : fs::directory_iterator(from)) {
            if (entry.path().filename() != except) {
                fs::create_symlink(entry.path(), to / entry.path().filename());
            }
        }
    }
    fs::create_directory_symlink(std::string(QUORVEX_EDITOR_DESCRIPTIONS) + "/shotcut/quorvex", filters / "quorvex");

    // Shotcut lists its filters before it reads its window settings; it is
    // stopped there, or after 30 s.
    const std::string script =
        "\"$0\" > \"$1\" 2>&1 & shotcut=$!\n"
        "for i in $(seq 300); do\n"
        "  grep -q readWindowSettings \"$1\" || ! kill -0 $shotcut 2>/dev/null && break\n"
        "  sleep 0.1\n"
        "done\n"
        "kill $shotcut 2>/dev/null; sleep 1; kill -9 $shotcut 2>/dev/null; wait $shotcut\n"
        "exit 0\n";
    fs::create_directory(path("home"));
    const ToolResult result =
        runHost("xvfb-run", {"-a", "-s", "-screen 0 1024x768x24", "sh", "-c", script, prefix / "bin/shotcut",
                             path("shotcut.log")},
                {{"HOME", path("home")}, {"XDG_RUNTIME_DIR", path("home")}});
    ASSERT_TRUE(Succeeded(result));
    const std::string log = contents("shotcut.log");
    EXPECT_NE(log.find("install dir = \"" + (prefix / "bin").string() + "\""), std::string::npos) << log;
    EXPECT_NE(log.find("added filter \"Quorvex\""), std::string::npos) << log;
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
