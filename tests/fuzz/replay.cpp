// Without libFuzzer: hands every file of a folder to the target, naming it first, so that an abort tells
// whose it was.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    const std::filesystem::directory_iterator folder(argv[1]);
    std::vector<std::filesystem::path> seeds(begin(folder), end(folder));
    std::sort(seeds.begin(), seeds.end());
    for (const std::filesystem::path& seed : seeds) {
        std::printf("%s\n", seed.filename().c_str());
        std::fflush(stdout);
        std::ifstream file(seed, std::ios::binary);
        const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    return seeds.empty() ? 1 : 0;
}
