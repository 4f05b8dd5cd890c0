// The editors' descriptions of the plug-in agree with what the plug-in tells
// MLT (`melt -query`): the same indexes and names, the drop-down's values on
// either side of 0.5, Speed and Seed scaled onto the plug-in's 0 to 1 with
// the effect's defaults, and QML that Qt's own checker reads.
#include "Frei0r/Frei0rHostTest.h"

// OpenImageIO's copy of pugixml, header-only.
#include <OpenImageIO/detail/pugixml/pugixml.hpp>

#include <cmath>
#include <fstream>
#include <regex>
#include <sstream>

namespace Halvane::Quorvex::Testing {
namespace {

const std::string kEditors = QUORVEX_EDITOR_DESCRIPTIONS;
const std::string kShotcutFolder = kEditors + "/shotcut/quorvex";

struct PluginParameter {
    std::string title;
    double minimum = NAN;
    double maximum = NAN;
    double defaultValue = NAN;
};

struct PluginInformation {
    std::string title;
    std::map<int, PluginParameter> parameters;
};

std::string FileText(const std::string& path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
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
    // MLT's YAML of the plug-in, read line by line: the plug-in's title and,
    // by identifier, each parameter's title, range and default.
    PluginInformation queryPlugin() const
    {
        const ToolResult query = runHost("melt", {"-query", "filter=frei0r.quorvex"});
        EXPECT_TRUE(Succeeded(query));
        PluginInformation plugin;
        std::istringstream lines(query.out);
        PluginParameter* parameter = nullptr;
        for (std::string line; std::getline(lines, line);) {
            std::smatch field;
            if (!std::regex_match(line, field, std::regex("( *)(- )?(\\w+): \"?(.*?)\"?"))) {
                continue;
            }
            const std::string key = field[3];
            const std::string value = field[4];
            if (field[1].length() == 0 && key == "title") {
                plugin.title = value;
            } else if (key == "identifier" && field[2].matched) {
                parameter = &plugin.parameters[std::stoi(value)];
            } else if (parameter && key == "title") {
                parameter->title = value;
            } else if (parameter && key == "minimum") {
                parameter->minimum = std::stod(value);
            } else if (parameter && key == "maximum") {
                parameter->maximum = std::stod(value);
            } else if (parameter && key == "default") {
                parameter->defaultValue = std::stod(value);
            }
        }
        EXPECT_EQ(plugin.title, "Quorvex") << query.out;
        return plugin;
    }

    // The plug-in's index of the parameter it calls `title`; -1 where none.
    static int indexOf(const PluginInformation& plugin, const std::string& title)
    {
        for (const auto& [index, parameter] : plugin.parameters) {
            if (parameter.title == title) {
                return index;
            }
        }
        return -1;
    }

    // The plug-in's parameter called `title`; a failure and an empty one where none.
    static const PluginParameter& parameterNamed(const PluginInformation& plugin, const std::string& title)
    {
        static const PluginParameter kNone;
        const int index = indexOf(plugin, title);
        if (index == -1) {
            ADD_FAILURE() << "the plug-in has no parameter \"" << title << "\"";
            return kNone;
        }
        return plugin.parameters.at(index);
    }
};

TEST_F(EditorDescriptionTest, KdenliveShowsThePluginsParametersInTheEffectsUnits)
{
    const PluginInformation plugin = queryPlugin();
    pugi::xml_document document;
    const std::string file = kEditors + "/kdenlive/frei0r_quorvex.xml";
    ASSERT_TRUE(document.load_file(file.c_str())) << file;
    const pugi::xml_node effect = document.child("effect");
    EXPECT_STREQ(effect.attribute("tag").value(), "frei0r.quorvex");
    EXPECT_STREQ(effect.attribute("id").value(), "frei0r.quorvex");
    EXPECT_STREQ(effect.attribute("type").value(), "video");
    EXPECT_EQ(effect.child_value("name"), plugin.title);
    const std::string description = effect.child_value("description");
    EXPECT_FALSE(description.empty());
    EXPECT_EQ(description.find('\n'), std::string::npos) << description;

    // Kdenlive names a frei0r parameter by its index; shown values are the
    // plug-in's times the factor, defaults are in the plug-in's units.
    std::map<std::string, pugi::xml_node> byTitle;
    for (const pugi::xml_node& parameter : effect.children("parameter")) {
        const std::string title = parameter.child_value("name");
        SCOPED_TRACE(title);
        ASSERT_NE(indexOf(plugin, title), -1) << "the plug-in has no parameter named so";
        EXPECT_EQ(parameter.attribute("name").as_int(-1), indexOf(plugin, title));
        byTitle[title] = parameter;
    }
    ASSERT_EQ(byTitle.size(), plugin.parameters.size());

    const pugi::xml_node type = byTitle["Glitch Type"];
    EXPECT_STREQ(type.attribute("type").value(), "list");
    std::vector<std::string> values;
    std::vector<std::string> shown;
    std::istringstream valueList(type.attribute("paramlist").value());
    std::istringstream shownList(type.child_value("paramlistdisplay"));
    for (std::string item; std::getline(valueList, item, ';');) {
        values.push_back(item);
    }
    for (std::string item; std::getline(shownList, item, ',');) {
        shown.push_back(item);
    }
    ASSERT_EQ(shown, (std::vector<std::string>{"Block Glitch", "Bad TV"}));
    ASSERT_EQ(values.size(), 2u);
    EXPECT_LT(std::stod(values[0]), 0.5);
    EXPECT_GE(std::stod(values[1]), 0.5);
    EXPECT_LE(std::stod(values[1]), parameterNamed(plugin, "Glitch Type").maximum);
    EXPECT_EQ(type.attribute("default").as_double(-1), parameterNamed(plugin, "Glitch Type").defaultValue);

    const pugi::xml_node speed = byTitle["Speed"];
    const PluginParameter& pluginSpeed = parameterNamed(plugin, "Speed");
    EXPECT_STREQ(speed.attribute("type").value(), "animated");
    const double factor = speed.attribute("factor").as_double();
    EXPECT_EQ(factor, 3);
    EXPECT_EQ(speed.attribute("min").as_double(-1) / factor, pluginSpeed.minimum);
    EXPECT_EQ(speed.attribute("max").as_double() / factor, pluginSpeed.maximum);
    EXPECT_NEAR(speed.attribute("default").as_double() * factor, 1.0, 1e-6);
    EXPECT_NEAR(speed.attribute("default").as_double(), pluginSpeed.defaultValue, 1e-6);

    const pugi::xml_node seed = byTitle["Seed"];
    const PluginParameter& pluginSeed = parameterNamed(plugin, "Seed");
    EXPECT_EQ(seed.attribute("factor").as_double(), 999);
    EXPECT_EQ(seed.attribute("decimals").as_int(-1), 0);
    EXPECT_EQ(seed.attribute("min").as_double(-1), 0);
    EXPECT_EQ(seed.attribute("max").as_double() / 999, pluginSeed.maximum);
    EXPECT_EQ(seed.attribute("default").as_double(-1), pluginSeed.defaultValue);
}

TEST_F(EditorDescriptionTest, ShotcutShowsThePluginsParametersInTheEffectsUnits)
{
    const PluginInformation plugin = queryPlugin();
    const std::string meta = FileText(kShotcutFolder + "/meta.qml");
    const std::string ui = FileText(kShotcutFolder + "/ui.qml");
    ASSERT_FALSE(meta.empty());
    ASSERT_FALSE(ui.empty());

    EXPECT_EQ(Find(meta, "mlt_service:\\s*\"([^\"]+)\""), "frei0r.quorvex");
    EXPECT_EQ(Find(meta, "Metadata \\{[^{}]*name:\\s*\"([^\"]+)\""), plugin.title);
    EXPECT_EQ(Find(meta, "qml:\\s*\"([^\"]+)\""), "ui.qml");
    // The keyframable parameter of the keyframes panel is Speed.
    const std::string keyframed = Find(meta, "Parameter \\{[^}]*property:\\s*'(\\d+)'");
    ASSERT_FALSE(keyframed.empty());
    EXPECT_EQ(std::stoi(keyframed), indexOf(plugin, "Speed"));
    EXPECT_EQ(Find(meta, "Parameter \\{[^}]*name:\\s*'([^']+)'"), "Speed");

    // Each parameter's property and label, by the plug-in's names.
    for (const auto& [property, title] : {std::pair{"glitchType", "Glitch Type"}, {"speed", "Speed"}, {"seed", "Seed"}}) {
        SCOPED_TRACE(title);
        EXPECT_EQ(Find(ui, std::string("property string ") + property + ":\\s*'(\\d+)'"),
                  std::to_string(indexOf(plugin, title)));
        EXPECT_NE(ui.find(std::string("text: '") + title + "'"), std::string::npos);
    }

    EXPECT_EQ(Find(ui, "model:\\s*(\\[[^\\]]*\\])"), "['Block Glitch', 'Bad TV']");
    EXPECT_NE(ui.find("filter.set(glitchType, index)"), std::string::npos) << "item i writes i";
    EXPECT_EQ(Find(ui, "property double glitchTypeDefault:\\s*(\\S+)"), "0");

    const PluginParameter& pluginSpeed = parameterNamed(plugin, "Speed");
    const PluginParameter& pluginSeed = parameterNamed(plugin, "Seed");
    const double speedFactor = std::stod(Find(ui, "property double speedFactor:\\s*(\\S+)"));
    EXPECT_EQ(speedFactor, 3);
    EXPECT_EQ(std::stod(QmlValueAfter(ui, "speedSlider", "minimumValue")) / speedFactor,
              pluginSpeed.minimum);
    EXPECT_EQ(std::stod(QmlValueAfter(ui, "speedSlider", "maximumValue")) / speedFactor,
              pluginSpeed.maximum);
    EXPECT_EQ(Find(ui, "property double speedDefault:\\s*([^\\n]+)"), "1 / speedFactor");

    const double seedFactor = std::stod(Find(ui, "property double seedFactor:\\s*(\\S+)"));
    EXPECT_EQ(seedFactor, 999);
    EXPECT_EQ(std::stod(QmlValueAfter(ui, "seedSlider", "maximumValue")) / seedFactor,
              pluginSeed.maximum);
    EXPECT_EQ(QmlValueAfter(ui, "seedSlider", "decimals"), "0");
    EXPECT_EQ(QmlValueAfter(ui, "seedSlider", "stepSize"), "1");

    EXPECT_TRUE(Succeeded(
        ToolProcess("qmllint", {kShotcutFolder + "/meta.qml", kShotcutFolder + "/ui.qml"}, {}, false).wait()));
}

}  // namespace
}  // namespace Halvane::Quorvex::Testing
