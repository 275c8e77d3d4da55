#include "colormap.h"

namespace orva
{
namespace
{

// "Magma" by S. van der Walt and N. Smith (2015, released under CC0; github.com/BIDS/colormap): every 17th of its 256
// colours. Between them, straight lines differ from the whole table by less than two levels of 255.
const double table[][3] = {
    {0.001462, 0.000466, 0.013866}, {0.043830, 0.033830, 0.141886}, {0.123833, 0.067295, 0.295879},
    {0.232077, 0.059889, 0.437695}, {0.341482, 0.080564, 0.492631}, {0.445163, 0.122724, 0.506901},
    {0.550287, 0.161158, 0.505719}, {0.658483, 0.196027, 0.490253}, {0.767398, 0.233705, 0.457755},
    {0.868793, 0.287728, 0.409303}, {0.944006, 0.377643, 0.365136}, {0.981000, 0.498428, 0.369734},
    {0.994738, 0.624350, 0.427397}, {0.997228, 0.747981, 0.516859}, {0.993170, 0.870024, 0.626189},
    {0.987053, 0.991438, 0.749504}};
const int steps = sizeof table / sizeof *table - 1;

} // namespace

uint32_t colormapColor(double level)
{
    const double place = level > 0 ? (level < 1 ? level * steps : steps) : 0;
    const int below = place < steps ? static_cast<int>(place) : steps - 1;
    uint32_t color = 0;
    for (int i = 0; i < 3; ++i) {
        const double part = table[below][i] + (place - below) * (table[below + 1][i] - table[below][i]);
        color = color << 8 | static_cast<uint32_t>(255 * part + 0.5);
    }
    return color;
}

} // namespace orva
