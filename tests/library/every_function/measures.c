#include "host.h"

void use_measures(void)
{
    const float square[] = {1, -1, 1, -1}, constant[] = {1, 1, 1, 1};
    float filtered[4] = {0};
    check(near((double) ORVA_CalcEnergy(square, 4), 4.8455, 1e-3), "energy of a square wave");
    check(ORVA_CalcEnergy(constant, 4) == 0, "none of a constant");
    check(ORVA_CalcZeroCrossRate(square, 4) == 0.75f, "crossings of a square wave");
    ORVA_RemoveDC(constant, filtered, 4);
    check(near((double) filtered[0], 0.9272743463516235, 1e-7) && filtered[3] < filtered[0],
          "less of a constant");
    check(near(ORVAUTIL_Freq2Mels(700), 781.18, 0.01), "mels");
    check(near(ORVAUTIL_Mels2Freq(ORVAUTIL_Freq2Mels(700)), 700, 1e-9), "and back");
    check(near(ORVAUTIL_Freq2Bark(1000), 8.51, 0.01), "Bark");
    check(ORVAUTIL_Bark2Freq(1.5) == 105, "and hertz from the table");
}
