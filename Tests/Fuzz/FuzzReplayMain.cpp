// Runs a fuzz target once on each file named, or on each file inside each
// folder named, as libFuzzer does with -runs=0: the builds without libFuzzer
// replay the seed corpora and every input that once crashed a target.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    std::size_t replayed = 0;
    const auto replay = [&replayed](const std::filesystem::path& file) {
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++replayed;
    };
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            replay(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            if (entry.is_regular_file()) {
                replay(entry.path());
            }
        }
    }
    std::printf("replayed %zu inputs\n", replayed);
    return replayed == 0 ? 1 : 0;
}
