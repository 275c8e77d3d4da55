// Damaged stores by thousands. FFTW aborts the process on some texts, so each batch runs in a process of its
// own.
#include "fft/ORVAfft_internal.h"
#include "fft/ORVAfft_reference.h"
#include "fft/ORVAfft_store.h"
#include "fft/ORVAfft_wisdom_grammar.h"
#include "support/process.h"
#include "support/random.h"

#include <cstdio>
#include <string>

#include <fcntl.h>

using namespace orva;

using store::Store;

namespace
{

constexpr int batches = 8;
constexpr int damagesInABatch = 2500;

using support::Random;

size_t anyPosition(const std::string &text, Random &random)
{
    return static_cast<size_t>(random.integer(0, static_cast<int64_t>(text.size()) - 1));
}

std::string anyBytes(Random &random)
{
    std::string some(static_cast<size_t>(random.integer(1, 12)), '\0');
    for (char &c : some)
        c = static_cast<char>(random.integer(0, 255));
    return some;
}

char anyDigit(Random &random)
{
    return "0123456789abcdef"[random.integer(0, 15)];
}

// A piece of a text.
struct Piece {
    size_t begin, length;

    std::string in(const std::string &text) const
    {
        return text.substr(begin, length);
    }
};

Piece anyLine(const std::string &text, Random &random)
{
    const size_t i = anyPosition(text, random);
    const size_t begin = i == 0 ? 0 : text.rfind('\n', i - 1) + 1; // npos + 1 is 0
    const size_t end = std::min(text.find('\n', i), text.size() - 1) + 1;
    return {begin, end - begin};
}

// From the first `opening` at or after `from` to before the next `closing`; to the end where there is none.
Piece pieceBetween(const std::string &text, size_t from, char opening, char closing)
{
    const size_t begin = std::min(text.find(opening, from), text.size());
    const size_t end = std::min(text.find(closing, begin), text.size());
    return {begin, end - begin};
}

void replace(std::string &text, Piece piece, const std::string &by)
{
    text.replace(piece.begin, piece.length, by);
}

// The second half keeps to what stands in wisdom, to get past the first looks.
constexpr void (*damages[])(std::string &, Random &) = {
    [](std::string &text, Random &random) {
        text[anyPosition(text, random)] = static_cast<char>(random.integer(0, 255));
    },
    [](std::string &text, Random &random) {
        char &c = text[anyPosition(text, random)];
        c = static_cast<char>(c ^ (1 << random.integer(0, 7)));
    },
    [](std::string &text, Random &random) {
        text.erase(anyPosition(text, random), static_cast<size_t>(random.integer(1, 100)));
    },
    [](std::string &text, Random &random) { text.insert(anyPosition(text, random), anyBytes(random)); },
    [](std::string &text, Random &random) { text.resize(anyPosition(text, random)); },
    [](std::string &text, Random &random) {
        text.insert(anyPosition(text, random), 1, " \n\r\t-+\0"[random.integer(0, 6)]);
    },
    // a line doubled, replaced by another, taken away
    [](std::string &text, Random &random) {
        const std::string line = anyLine(text, random).in(text);
        text.insert(anyLine(text, random).begin, line);
    },
    [](std::string &text, Random &random) {
        const std::string line = anyLine(text, random).in(text);
        replace(text, anyLine(text, random), line);
    },
    [](std::string &text, Random &random) { replace(text, anyLine(text, random), ""); },
    // a digit more, another digit
    [](std::string &text, Random &random) {
        const Piece number = pieceBetween(text, anyPosition(text, random), 'x', ' ');
        text.insert(number.begin + number.length, 1, anyDigit(random));
    },
    [](std::string &text, Random &random) {
        const Piece number = pieceBetween(text, anyPosition(text, random), 'x', ' ');
        if (number.length > 1)
            text[number.begin + 1] = anyDigit(random);
    },
    // another line's solver, a solver that ran out of time
    [](std::string &text, Random &random) {
        const std::string solver = pieceBetween(text, anyPosition(text, random), '(', '#').in(text);
        replace(text, pieceBetween(text, anyPosition(text, random), '(', '#'), solver);
    },
    [](std::string &text, Random &random) {
        replace(text, pieceBetween(text, anyPosition(text, random), '(', '#'), "(TIMEOUT 0 ");
    },
    // other flags, once or twice
    [](std::string &text, Random &random) {
        const std::string number =
            "#x" + std::string(static_cast<size_t>(random.integer(1, 6)), anyDigit(random));
        const Piece first = pieceBetween(text, anyPosition(text, random), '#', ' ');
        replace(text, first, number);
        if (random.integer(0, 1) == 0)
            replace(text, pieceBetween(text, first.begin + 1, '#', ' '), number);
    },
};

void damage(std::string &text, Random &random)
{
    if (text.empty())
        text = anyBytes(random);
    damages[random.integer(0, std::size(damages) - 1)](text, random);
}

struct Known {
    int32_t length;
    std::vector<float> x;
    reference::Bins bins;
};

void expectRightTransform(const Known &known, bool inverse)
{
    ORVA_FFT *fft = __FFTW_CreatePlan(known.length, inverse);
    ASSERT_NE(fft->plan, nullptr);
    EXPECT_LT(reference::deviation(fft, inverse, known.x, known.bins), reference::tolerance);
    ORVA_FFTProcDestroy(fft);
}

void load(const Store &store, const std::string &text)
{
    std::filesystem::remove(store.path); // writing over a file takes some file systems to the disk
    support::writeFile(store.path, text);
    __FFTW_WisdomLoaded = false;
    EXPECT_TRUE(__FFTW_LoadWisdom());
    EXPECT_TRUE(__FFTW_WisdomLoaded);
}

// A batch on damages of the genuine text, each loaded over wisdom gathered before.
void runBatch(const std::string &genuine, const std::string &before, const std::vector<Known> &known,
              Random &random)
{
    const Store store;
    store.announce();
    fftwf_import_wisdom_from_string(before.c_str());
    for (int i = 0; i < damagesInABatch && !testing::Test::HasFailure(); ++i) {
        std::string text = genuine;
        for (int64_t changes = random.integer(1, 3); changes > 0; --changes)
            damage(text, random);
        const bool fits = fitsWisdomGrammar({text.data(), text.size()});
        const bool compares = !fits && i % 32 == 0; // an export takes longer than all else here
        const std::string asItWas = compares ? store::wisdom() : "";
        load(store, text);
        if (compares) {
            EXPECT_EQ(store::wisdom(), asItWas);
        }
        expectRightTransform(known[static_cast<size_t>(random.integer(0, std::ssize(known) - 1))],
                             random.integer(0, 1) == 1);
        if (fits) {
            fftwf_forget_wisdom();
            fftwf_import_wisdom_from_string(before.c_str());
        }
    }
}

// Whatever the process writes from here on goes to a file.
void divertOutput(const std::filesystem::path &path)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    ASSERT_GE(file, 0);
    std::fflush(nullptr);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    close(file);
}

} // namespace

TEST(WisdomDamage, NoDamagedStoreAbortsPrintsOrSpoilsATransform)
{
    Random random;
    std::vector<Known> known;
    for (const int32_t length : {16, 30, 64, 127}) {
        known.push_back({length, random.noise(static_cast<size_t>(length)), {}});
        known.back().bins = reference::forward(known.back().x);
    }
    const std::string genuine = store::wisdomOf({16, 30, 64, 127});
    const std::string before = store::wisdomOf({12, 16});
    const support::Folder outputs;
    for (int batch = 0; batch < batches; ++batch) {
        const auto start = static_cast<uint64_t>(random.integer(0, INT64_MAX));
        const auto output = outputs.path / std::to_string(batch);
        support::inOwnProcess([&] {
            divertOutput(output);
            Random own(start);
            runBatch(genuine, before, known, own);
        });
        EXPECT_EQ(support::readFile(output), "") << "batch " << batch;
    }
}
