// Runs a fuzzer over the files that are named as arguments, where there is no libFuzzer.

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        std::printf("%s\n", argv[i]);
        std::fflush(stdout);
        std::ifstream file(argv[i], std::ios::binary);
        if (!file)
            return 1;
        // A vector of the exact size, so that a sanitizer sees one byte too many.
        const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
        const std::vector<uint8_t> data(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
    return argc > 1 ? 0 : 1;
}
