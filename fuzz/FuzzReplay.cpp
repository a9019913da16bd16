// Runs a fuzz program's input function over saved inputs without the fuzzer: every file under the
// folders given (or the files themselves), in name order, so the test suite replays the corpus
// deterministically under the normal and the sanitizer builds.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    std::vector<fs::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const fs::path root(argv[i]);
        std::error_code ec;
        if (fs::is_directory(root, ec)) {
            for (const auto& entry : fs::recursive_directory_iterator(root))
                if (entry.is_regular_file()) inputs.push_back(entry.path());
        } else if (fs::is_regular_file(root, ec)) {
            inputs.push_back(root);
        } else {
            std::fprintf(stderr, "no such input: %s\n", argv[i]);
            return 2;
        }
    }
    std::sort(inputs.begin(), inputs.end());
    for (const auto& path : inputs) {
        std::ifstream in(path, std::ios::binary);
        const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                         std::istreambuf_iterator<char>());
        // An empty vector's data() may be null; the fuzzer never passes null, so neither do we.
        static const uint8_t kNothing = 0;
        LLVMFuzzerTestOneInput(bytes.empty() ? &kNothing : bytes.data(), bytes.size());
    }
    std::printf("replayed %zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
