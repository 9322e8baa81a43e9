// Feeds the fuzzer's entry point with every file of a folder, then with inputs made of them: mutations RUNS FOLDER. It
// stands in for libFuzzer under the memory sanitizer, which knows what C's functions fill in, but nothing of a standard
// library that was compiled without it.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Input = std::vector<std::uint8_t>;

constexpr std::size_t longest = 4096;

Input contentsOf(const std::string& path) {
    Input bytes(longest);
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    bytes.resize(file ? std::fread(bytes.data(), 1, bytes.size(), file) : 0);
    if (file) std::fclose(file);
    return bytes;
}

std::vector<Input> inputsIn(const std::string& folder) {
    std::vector<Input> inputs;
    DIR* const listing = ::opendir(folder.c_str());
    while (const ::dirent* const entry = listing ? ::readdir(listing) : nullptr)
        if (entry->d_name[0] != '.') inputs.push_back(contentsOf(folder + "/" + entry->d_name));
    if (listing) ::closedir(listing);
    return inputs;
}

// A few bytes changed, put in, taken out, or taken from another input.
void mutate(Input& input, const std::vector<Input>& others, std::mt19937& chance) {
    for (auto changes = 1 + chance() % 6; changes > 0; --changes) {
        const auto at = static_cast<std::ptrdiff_t>(input.empty() ? 0 : chance() % input.size());
        const auto& other = others[chance() % others.size()];
        const auto from = static_cast<std::ptrdiff_t>(other.empty() ? 0 : chance() % other.size());
        const auto length = static_cast<std::ptrdiff_t>(chance() % 32);
        const auto value = static_cast<std::uint8_t>(chance());
        if (const auto kind = chance() % 4; kind == 0)
            input.insert(input.begin() + at, value);
        else if (kind == 1)
            input.insert(input.begin() + at, other.begin() + from,
                         other.begin() + std::min(from + length, static_cast<std::ptrdiff_t>(other.size())));
        else if (input.empty())
            continue;
        else if (kind == 2)
            input.erase(input.begin() + at,
                        input.begin() + std::min(at + length, static_cast<std::ptrdiff_t>(input.size())));
        else
            input[static_cast<std::size_t>(at)] = value;
    }
    if (input.size() > longest) input.resize(longest);
}

} // namespace

int main(int count, char** words) {
    const auto inputs = count == 3 ? inputsIn(words[2]) : std::vector<Input>();
    if (inputs.empty()) return 1; // an empty corpus proves nothing
    for (const auto& input : inputs) LLVMFuzzerTestOneInput(input.data(), input.size());
    std::mt19937 chance(1);
    for (long run = std::atol(words[1]); run > 0; --run) {
        Input input = inputs[chance() % inputs.size()];
        mutate(input, inputs, chance);
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    return 0;
}
