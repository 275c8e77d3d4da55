// The commands of the program. Each adds itself with its options, its help and examples, and what is done when it is given.
#pragma once

#include "options.h"

namespace orva
{

void addCurve(CLI::App &program);
void addDelay(CLI::App &program);
void addDenoise(CLI::App &program);
void addFilter(CLI::App &program);
void addInfo(CLI::App &program);
void addLapped(CLI::App &program);
void addMeasures(CLI::App &program);
void addResample(CLI::App &program);
void addResponse(CLI::App &program);
void addSpectrogram(CLI::App &program);
void addStretch(CLI::App &program);
void addTwice(CLI::App &program);

} // namespace orva
