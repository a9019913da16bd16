// The bit stream against the cheapest pass over the same bytes: one Crc16 over 64 KB. Reading or
// writing a list touches every byte through ReadBits/WriteBits once, so this ratio is what a load
// or save costs over the bare minimum.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <vector>

#include "bench/BenchRatio.h"
#include "roaming_list/RLFile.h"

namespace {

constexpr size_t kBytes = 64 * 1024;

struct Field {
    int width;
    uint32_t value;
};

// Widths as a roaming list mixes them (flags, types, indices, SIDs, channels, 32-bit words),
// filled with values from a fixed generator, until exactly 64 KB of bits.
const std::vector<Field>& Fields() {
    static const std::vector<Field> fields = [] {
        const int widths[] = {1, 4, 8, 16, 3, 15, 1, 12, 7, 9, 32, 2, 5, 11, 24, 6};
        std::vector<Field> out;
        uint64_t state = 0x9E3779B97F4A7C15ull;
        uint64_t bits = 0;
        for (size_t i = 0; bits < kBytes * 8; ++i) {
            int width = widths[i % std::size(widths)];
            if (bits + width > kBytes * 8) width = static_cast<int>(kBytes * 8 - bits);
            state = state * 6364136223846793005ull + 1442695040888963407ull;
            const uint32_t value = static_cast<uint32_t>(state >> 32) &
                                   (width == 32 ? 0xFFFFFFFFu : (1u << width) - 1u);
            out.push_back({width, value});
            bits += static_cast<uint64_t>(width);
        }
        return out;
    }();
    return fields;
}

const std::vector<uint8_t>& Image() {
    static const std::vector<uint8_t> image = [] {
        Tarn::CRLFile file;
        for (const Field& f : Fields()) file.WriteBits(f.width, f.value);
        return file.TakeBytes();
    }();
    return image;
}

void Crc16Pass(benchmark::State& state) {
    const std::vector<uint8_t>& image = Image();
    for (auto _ : state) benchmark::DoNotOptimize(Tarn::Bench::BytewiseCrc16(image.data(), image.size()));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}

void ReadFields(benchmark::State& state) {
    const std::vector<Field>& fields = Fields();
    Tarn::CRLFile file(Image());
    for (auto _ : state) {
        file.SeekToBegin();
        file.SetBitOffset(0);
        uint32_t sum = 0;
        for (const Field& f : fields) sum += file.ReadBits(f.width);
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}

void WriteFields(benchmark::State& state) {
    const std::vector<Field>& fields = Fields();
    for (auto _ : state) {
        // A save starts from an empty file and grows it, so the growth is part of the cost.
        Tarn::CRLFile file;
        for (const Field& f : fields) file.WriteBits(f.width, f.value);
        benchmark::DoNotOptimize(file.Bytes().data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * kBytes));
}

BENCHMARK(Crc16Pass);
BENCHMARK(ReadFields);
BENCHMARK(WriteFields);

}  // namespace

int main(int argc, char** argv) {
    if (Image().size() != kBytes) {
        std::fprintf(stderr, "bench_bitstream: the field list made %zu bytes, not %zu\n",
                     Image().size(), kBytes);
        return 1;
    }
    return Tarn::Bench::RunWithRatios(argc, argv, "Crc16Pass", "Crc16 pass");
}
