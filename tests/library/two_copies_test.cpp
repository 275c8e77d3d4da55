// Two copies of the library in one process, as two plug-ins bring them, and a host that plans with FFTW itself: all plan at
// once, each without knowing of the others. FFTW's own lock keeps its planner whole.
#include "host.h"

#include "support/process.h"

#include <fftw3.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace host;

namespace
{

// The functions of one copy.
struct Copy {
    explicit Copy(const std::string &path) : handle(support::openLibrary(path.c_str()))
    {
        create = reinterpret_cast<void *(*) (int32_t)>(support::functionOf(handle, "ORVA_FFTProcCreate"));
        destroy = reinterpret_cast<bool (*)(void *)>(support::functionOf(handle, "ORVA_FFTProcDestroy"));
    }

    void plan(int32_t length) const
    {
        EXPECT_TRUE(destroy(create(length)));
    }

    void *handle;
    void *(*create)(int32_t);
    bool (*destroy)(void *);
};

void planByHand(int32_t length)
{
    float *const real = fftwf_alloc_real(static_cast<size_t>(length));
    fftwf_complex *const bins = fftwf_alloc_complex(static_cast<size_t>(length));
    fftwf_destroy_plan(fftwf_plan_dft_r2c_1d(length, real, bins, FFTW_ESTIMATE));
    fftwf_free(bins);
    fftwf_free(real);
}

} // namespace

TEST(TwoCopies, AndTheHostPlanAtOnce)
{
    support::unsetVariable("KT_DATA_PATH");
    support::inOwnProcess([] {
        const support::Folder folder;
        const std::string other = folder / "other_" + std::filesystem::path(LIBORVA).filename().string();
        std::filesystem::copy_file(LIBORVA, other);
        const Copy one(LIBORVA);
        const Copy two(other);
        ASSERT_NE(one.create, two.create);
        std::atomic<bool> isToEnd = false;
        const auto repeat = [&](const auto &plan) {
            for (int32_t length = 16; !isToEnd; length = length % 2000 + 7)
                plan(length);
        };
        std::vector<std::thread> threads;
        for (const Copy *copy : {&one, &two, &one, &two})
            threads.emplace_back(repeat, [copy](int32_t length) { copy->plan(length); });
        threads.emplace_back(repeat, planByHand);
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        isToEnd = true;
        for (auto &thread : threads)
            thread.join();
        EXPECT_TRUE(support::closeLibrary(two.handle));
        EXPECT_TRUE(support::closeLibrary(one.handle));
        EXPECT_FALSE(isMapped("liborva.so"));
        EXPECT_FALSE(isMapped("other_liborva.so"));
        planByHand(64); // FFTW's lock outlives both
    });
}
