// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds every file of a directory to a fuzz target, whole and cut at every length up to 4 KiB.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s DIRECTORY\n", argv[0]);
        return 2;
    }
    constexpr std::size_t longestCut = 4096;
    std::size_t inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
        for (std::size_t size = 0; size <= std::min(bytes.size(), longestCut); ++size) {
            // A copy of the exact size, so that a sanitizer sees a read past its end.
            const std::vector<std::uint8_t> cut(bytes.begin(),
                                                bytes.begin() + static_cast<long>(size));
            LLVMFuzzerTestOneInput(cut.data(), cut.size());
        }
        const std::vector<std::uint8_t> whole(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(whole.data(), whole.size());
        ++inputs;
    }
    std::printf("%zu inputs replayed\n", inputs);
    return inputs == 0 ? 1 : 0;
}
