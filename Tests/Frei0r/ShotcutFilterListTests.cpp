// Shotcut, started on a virtual display with our filter folder beside Debian's
// in a prefix of its own, lists Quorvex among the filters it adds.
#include "Frei0r/Frei0rHostTest.h"

#include <filesystem>

namespace Halvane::Quorvex::Testing {
namespace {

namespace fs = std::filesystem;

// The program `name` as PATH finds it; empty where it does not.
fs::path FindProgram(const std::string& name)
{
    const char* path = std::getenv("PATH");
    std::string folders = path ? path : "";
    for (std::size_t start = 0, end; start <= folders.size(); start = end + 1) {
        end = folders.find(':', start);
        end = end == std::string::npos ? folders.size() : end;
        const fs::path candidate = fs::path(folders.substr(start, end - start)) / name;
        if (::access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    return {};
}

using ShotcutFilterListTest = Frei0rHostTest;

TEST_F(ShotcutFilterListTest, ShotcutAddsQuorvexFromTheFilterFolderBesideIt)
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
