// What never returns: output of a record that has no hop.
#include <orva/ORVAsolafs.h>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/time.h>

TEST(SolafsHopZero, OutputAfterInputDoesNotReturn)
{
    const auto run = [] {
        ORVA_SOLAFS *solafs = ORVA_SolafsCreate(1, 7999, 1);
        float sample = 0.5f;
        ORVA_SolafsInputData(solafs, 0, &sample, 1, 1.0f);
        const itimerval soon = {{0, 0}, {0, 200000}};
        setitimer(ITIMER_VIRTUAL, &soon,
                  nullptr); // by the processor's time: a busy machine does not end it early
        ORVA_SolafsOutputData(solafs, 0, &sample, 1);
    };
    EXPECT_EXIT(run(), testing::KilledBySignal(SIGVTALRM), "");
}
