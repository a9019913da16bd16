// Runs the real tarn-cli binary with a fixed locale and an empty environment otherwise, captures
// what it printed and its exit status, and holds what the command-line tests share.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Files.h"

namespace Tarn::Test {

inline const std::string kExamples = TARN_EXAMPLES_DIR;
inline const std::string kData = TARN_TEST_DATA_DIR;
inline const std::string kMmss = kData + "/mmss/";
inline const std::string kListA = kExamples + "/example-is683a.prl";
inline const std::string kListE = kExamples + "/example-is683e.prl";
inline const std::string kJsonE = kExamples + "/example-is683e.json";

struct CliResult {
    int status = -1;
    std::string out;
    std::string err;
};

inline bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

inline std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

inline CliResult RunCli(const std::vector<std::string>& args) {
    TempDir io;
    const auto outPath = io / "stdout";
    const auto errPath = io / "stderr";
    CliResult result;
    pid_t pid = ::fork();
    if (pid == 0) {
        FILE* o = std::freopen(outPath.c_str(), "w", stdout);
        FILE* e = std::freopen(errPath.c_str(), "w", stderr);
        if (!o || !e) ::_exit(127);
        std::vector<char*> argv;
        std::string exe = TARN_CLI_PATH;
        argv.push_back(exe.data());
        std::vector<std::string> copy = args;
        for (auto& a : copy) argv.push_back(a.data());
        argv.push_back(nullptr);
        // Only what the sanitizers need survives, so no user setting can change the output.
        std::vector<std::string> envs = {"LC_ALL=C", "HOME=/nonexistent"};
        for (const char* keep : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"})
            if (const char* v = std::getenv(keep)) envs.push_back(std::string(keep) + "=" + v);
        std::vector<char*> envp;
        for (auto& e2 : envs) envp.push_back(e2.data());
        envp.push_back(nullptr);
        ::execve(exe.c_str(), argv.data(), envp.data());
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = Slurp(outPath);
    result.err = Slurp(errPath);
    return result;
}

// Runs `args`, expecting the exit status `status` and every one of `parts` in what it printed
// (stdout or stderr).
inline CliResult Expect(const std::vector<std::string>& args, int status,
                        const std::vector<std::string>& parts = {}) {
    std::string line = "tarn-cli";
    for (const auto& a : args) line += " " + a;
    CliResult r = RunCli(args);
    EXPECT_EQ(r.status, status) << line << "\n" << r.out << r.err;
    for (const auto& part : parts)
        EXPECT_TRUE(Has(r.out + r.err, part)) << line << "\n" << part << "\n" << r.out << r.err;
    return r;
}

// The two example lists joined into one concatenated file, IS-683A first.
inline std::string JoinedExamples(const TempDir& dir) {
    const std::string joined = dir.File("joined.prl");
    EXPECT_EQ(RunCli({"join", kListA, kListE, "-o", joined}).status, 0);
    return joined;
}

}  // namespace Tarn::Test
