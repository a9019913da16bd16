// Whole-file reads and writes and a scratch folder, shared by every test that touches disk.
#pragma once

#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace Tarn::Test {

inline std::string Slurp(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

inline std::vector<uint8_t> SlurpBytes(const std::filesystem::path& p) {
    const std::string s = Slurp(p);
    return {s.begin(), s.end()};
}

inline void WriteText(const std::filesystem::path& p, const std::string& text) {
    std::ofstream(p, std::ios::binary) << text;
}

inline void WriteBytes(const std::filesystem::path& p, const std::vector<uint8_t>& bytes) {
    WriteText(p, std::string(bytes.begin(), bytes.end()));
}

// A scratch folder removed when the test ends.
class TempDir {
public:
    TempDir() {
        std::string tmpl = (std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string();
        path_ = ::mkdtemp(tmpl.data());
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    std::string File(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& Path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace Tarn::Test
