// Without libFuzzer: hands every file of a folder to the target, as it is and damaged in some ways, naming it
// first, so that an abort tells whose it was.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using bytes = std::vector<std::uint8_t>;

bytes damaged(bytes sound, std::mt19937& random) {
    for (int flips = 0; flips < 8 && !sound.empty(); ++flips)
        sound[random() % sound.size()] ^= std::uint8_t(1u << random() % 8);
    if (random() % 4 == 0 && !sound.empty())
        sound.resize(random() % sound.size());
    return sound;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    const std::filesystem::directory_iterator folder(argv[1]);
    std::vector<std::filesystem::path> seeds(begin(folder), end(folder));
    std::sort(seeds.begin(), seeds.end());
    std::mt19937 random(1);
    for (const std::filesystem::path& seed : seeds) {
        std::ifstream file(seed, std::ios::binary);
        const bytes sound(std::istreambuf_iterator<char>(file), {});
        for (std::size_t round = 0; round <= 300 / seeds.size(); ++round) {
            std::printf("%s, round %zu\n", seed.filename().c_str(), round);
            std::fflush(stdout);
            const bytes input = round == 0 ? sound : damaged(sound, random);
            LLVMFuzzerTestOneInput(input.data(), input.size());
        }
    }
    return seeds.empty() ? 1 : 0;
}
