#include "Options/ImageSequencePattern.h"

#include "Options/ToolError.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace Halvane::Quorvex::Tools {

namespace {

// Frame numbers on disk are read with at most this many digits, so no
// pattern may ask for more.
constexpr std::size_t kMostDigits = 9;

struct Placeholder {
    std::size_t start;
    std::size_t length;
    int width;
};

// The placeholders in a file name: "%d", "%0Nd", or a run of '#'. "%%" is
// a literal '%', as in printf.
std::vector<Placeholder> FindPlaceholders(const std::string& name)
{
    std::vector<Placeholder> found;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name.compare(i, 2, "%%") == 0) {
            ++i;
        } else if (name[i] == '%') {
            std::size_t j = i + 1;
            while (j < name.size() && std::isdigit(static_cast<unsigned char>(name[j]))) {
                ++j;
            }
            if (j < name.size() && name[j] == 'd') {
                const std::string digits = name.substr(i + 1, j - i - 1);
                // Widths too long to count are kept as too wide to use.
                const int width = digits.empty()                ? 0
                                  : digits.size() > kMostDigits ? static_cast<int>(j - i)
                                                                : std::stoi(digits);
                found.push_back({i, j - i + 1, width});
                i = j;
            }
        } else if (name[i] == '#') {
            std::size_t j = i;
            while (j < name.size() && name[j] == '#') {
                ++j;
            }
            found.push_back({i, j - i, static_cast<int>(j - i)});
            i = j - 1;
        }
    }
    return found;
}

// The text around a placeholder as it appears in file names.
std::string Literal(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        result += text[i];
        if (text.compare(i, 2, "%%") == 0) {
            ++i;
        }
    }
    return result;
}

std::string FileNameOf(const std::string& path)
{
    return std::filesystem::path(path).filename().string();
}

}  // namespace

bool ImageSequencePattern::isPattern(const std::string& path)
{
    return !FindPlaceholders(FileNameOf(path)).empty();
}

ImageSequencePattern::ImageSequencePattern(const std::string& path) : mText(path)
{
    const std::filesystem::path fsPath(path);
    const std::string name = fsPath.filename().string();
    const auto placeholders = FindPlaceholders(name);
    if (placeholders.size() != 1) {
        throw ToolError::usage(
            "'" + path + "' must name one frame number, as in frame.%04d.png" +
            (placeholders.empty() ? "" : " (it has " + std::to_string(placeholders.size()) + ")"));
    }
    mFolder = fsPath.parent_path().string();
    mPrefix = Literal(name.substr(0, placeholders[0].start));
    mSuffix = Literal(name.substr(placeholders[0].start + placeholders[0].length));
    mWidth = placeholders[0].width;
    if (mWidth > static_cast<int>(kMostDigits)) {
        throw ToolError::usage("'" + path + "' pads frame numbers to more than " +
                               std::to_string(kMostDigits) + " digits");
    }
}

std::string ImageSequencePattern::pathOf(long number) const
{
    std::string digits = std::to_string(number < 0 ? -number : number);
    if (static_cast<int>(digits.size()) < mWidth) {
        digits.insert(0, static_cast<std::size_t>(mWidth) - digits.size(), '0');
    }
    if (number < 0) {
        digits.insert(0, 1, '-');
    }
    const std::string name = mPrefix + digits + mSuffix;
    return mFolder.empty() ? name : (std::filesystem::path(mFolder) / name).string();
}

std::vector<long> ImageSequencePattern::existingNumbers() const
{
    std::vector<long> numbers;
    std::error_code error;
    const std::filesystem::path folder = mFolder.empty() ? "." : mFolder;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (name.size() <= mPrefix.size() + mSuffix.size() ||
            name.compare(0, mPrefix.size(), mPrefix) != 0 ||
            name.compare(name.size() - mSuffix.size(), mSuffix.size(), mSuffix) != 0) {
            continue;
        }
        const std::string digits =
            name.substr(mPrefix.size(), name.size() - mPrefix.size() - mSuffix.size());
        if (digits.size() > kMostDigits || !std::all_of(digits.begin(), digits.end(), [](char c) {
                return std::isdigit(static_cast<unsigned char>(c));
            })) {
            continue;
        }
        const long number = std::stol(digits);
        // Only the spelling the pattern gives: frame.0007.png, not frame.7.png.
        if (FileNameOf(pathOf(number)) == name) {
            numbers.push_back(number);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

}  // namespace Halvane::Quorvex::Tools
