// Runs a fuzz target on every file of a folder: what the normal test run does with the seeds.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    int seeds = 0;
    for (int argument = 1; argument < argc; ++argument)
        for (const auto& entry : std::filesystem::directory_iterator(argv[argument])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(file), {});
            // A copy of just this size, so that a read past its end is seen.
            const std::basic_string<std::uint8_t> input(bytes.begin(), bytes.end());
            static_cast<void>(LLVMFuzzerTestOneInput(input.data(), input.size()));
            ++seeds;
        }
    std::printf("%d seeds\n", seeds);
    return seeds == 0 ? 1 : 0;
}
