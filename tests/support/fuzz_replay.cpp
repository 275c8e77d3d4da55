// Runs a fuzz target without libFuzzer: each file of a corpus, then random mutations of them for some seconds.
// Usage: <program> <corpus folder> <seconds>
// The seed is printed; with it in ORVA_TEST_SEED the same mutations come again in the same order.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace
{

using Bytes = std::vector<uint8_t>;
using Clock = std::chrono::steady_clock;

constexpr size_t longestMutation = 4096;

// In the order of their names, so that a seed means the same on every file system.
std::vector<Bytes> readCorpus(const char *folder)
{
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(folder))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<Bytes> corpus;
    for (const auto &path : paths) {
        std::ifstream file(path, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return corpus;
}

class Mutator
{
public:
    Mutator(const std::vector<Bytes> &inputs, uint64_t seed) : corpus(inputs), engine(seed) {}

    Bytes next()
    {
        Bytes bytes = any();
        for (size_t changes = 1 + below(8); changes > 0; --changes)
            change(bytes);
        if (bytes.size() > longestMutation)
            bytes.resize(longestMutation);
        return bytes;
    }

private:
    size_t below(size_t limit)
    {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(engine);
    }

    const Bytes &any()
    {
        return corpus[below(corpus.size())];
    }

    void change(Bytes &bytes)
    {
        const size_t at = below(bytes.size() + 1);
        const size_t count = below(std::min<size_t>(bytes.size() - at, 16) + 1);
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const auto end = begin + static_cast<std::ptrdiff_t>(count);
        switch (below(4)) {
        case 0:
            bytes.erase(begin, end);
            break;
        case 1: {
            const Bytes copy(begin, end);
            bytes.insert(begin, copy.begin(), copy.end());
            break;
        }
        case 2: {
            const Bytes &other = any();
            const size_t from = below(other.size() + 1);
            const size_t length = below(std::min<size_t>(other.size() - from, 16) + 1);
            const auto piece = other.begin() + static_cast<std::ptrdiff_t>(from);
            bytes.insert(begin, piece, piece + static_cast<std::ptrdiff_t>(length));
            break;
        }
        default:
            if (at < bytes.size())
                bytes[at] = static_cast<uint8_t>(below(256));
        }
    }

    const std::vector<Bytes> &corpus;
    std::mt19937_64 engine;
};

// In a block of its exact size, so that a sanitizer sees a read after it.
void run(const Bytes &bytes)
{
    const std::unique_ptr<uint8_t[]> exact(new uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    LLVMFuzzerTestOneInput(exact.get(), bytes.size());
}

uint64_t seed()
{
    const char *given = std::getenv("ORVA_TEST_SEED");
    return given != nullptr ? std::strtoull(given, nullptr, 10) : std::random_device{}();
}

} // namespace

int main(int argumentCount, char **arguments)
{
    if (argumentCount != 3) {
        std::fprintf(stderr, "usage: %s <corpus folder> <seconds>\n", arguments[0]);
        return 2;
    }
    const auto corpus = readCorpus(arguments[1]);
    if (corpus.empty()) {
        std::fprintf(stderr, "%s: no corpus in %s\n", arguments[0], arguments[1]);
        return 1;
    }
    for (const auto &bytes : corpus)
        run(bytes);
    std::printf("%zu inputs of the corpus ran\n", corpus.size());

    const uint64_t chosen = seed();
    std::printf("mutations; repeat with: ORVA_TEST_SEED=%llu %s %s %s\n",
                static_cast<unsigned long long>(chosen), arguments[0], arguments[1], arguments[2]);
    std::fflush(stdout); // before a mutation ends the program
    Mutator mutator(corpus, chosen);
    const auto end = Clock::now() + std::chrono::duration<double>(std::atof(arguments[2]));
    uint64_t count = 0;
    for (; Clock::now() < end; ++count)
        run(mutator.next());
    std::printf("%llu mutations ran\n", static_cast<unsigned long long>(count));
    return 0;
}
