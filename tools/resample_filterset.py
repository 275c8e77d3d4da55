#!/usr/bin/python3
"""Prints src/resample/ORVAresample_filterset.cpp: the elliptic low-pass filters of the zero-order hold.

Rebuild from the top of the tree with Debian 12's python3-scipy:
    tools/resample_filterset.py > src/resample/ORVAresample_filterset.cpp
"""

import scipy
from scipy import signal

RIPPLE_DB = 1
ATTENUATION_DB = 60

# Hosts compare the bits of these two, so they are kept as they are; a design of today agrees with them to 2e-6.
GIVEN = {
    "fator_1_09": (
        """1.0 4.2885221720208655 8.017215251564679 8.305310755628911 5.0599138624699895 1.7436762341517453
        0.27677380690635406""",
        """0.41467523480641083 2.4269568048017307 5.978140847415679 7.931702161078539 5.978140847415678
        2.4269568048017307 0.4146752348064108""",
    ),
    "fator_2": (
        """1.0 -2.3056683587960736 5.24927421255284 -7.136731014201784 8.449562860884022 -7.358746357493317
        5.246281076434849 -2.7972268559911826 1.061405697971324 -0.2565358447867008""",
        """0.019462701211040254 0.04849688000503304 0.11488372743118357 0.17302708069602812
        0.21993731894370455 0.21993731894370455 0.17302708069602812 0.1148837274311836
        0.048496880005033056 0.01946270121104026""",
    ),
}

# Ending of the arrays' names, order, passband edge over rateLow / 2, and the pairs rateHigh, rateLow in the order
# of the table. The narrowest ends its passband early.
FILTERS = (
    ("fator_1_09", 6, 0.95, ((48000, 44100),)),
    ("fator_1_38", 8, 0.95, ((44100, 32000), (22050, 16000), (11025, 8000))),
    ("fator_1_45", 8, 0.95, ((32000, 22050), (16000, 11025))),
    ("fator_1_5", 8, 0.95, ((48000, 32000),)),
    ("fator_2", 9, 0.95, ((96000, 48000), (32000, 16000), (16000, 8000), (44100, 22050), (22050, 11025))),
    ("fator_2_18", 9, 0.95, ((96000, 44100), (48000, 22050))),
    ("fator_2_76", 9, 0.95, ((44100, 16000), (22050, 8000))),
    ("fator_2_9", 9, 0.95, ((32000, 11025),)),
    ("fator_3", 9, 0.95, ((96000, 32000), (48000, 16000))),
    ("fator_4", 9, 0.95, ((32000, 8000), (44100, 11025))),
    ("fator_4_35", 10, 0.95, ((96000, 22050), (48000, 11025))),
    ("fator_5_51", 10, 0.95, ((44100, 8000),)),
    ("fator_6", 10, 0.95, ((96000, 16000), (48000, 8000))),
    ("fator_8_71", 10, 0.95, ((96000, 11025),)),
    ("fator_12", 10, 0.8967, ((96000, 8000),)),
    ("11025to8k", 5, 0.95, ((11025, 8000),)),
    ("16to8", 5, 0.95, ((16000, 8000),)),
    ("22050to8k", 5, 0.95, ((22050, 8000),)),
    ("32kto8k", 5, 0.95, ((32000, 8000),)),
    ("44100to8k", 5, 0.95, ((44100, 8000),)),
    ("48kto8k", 5, 0.95, ((48000, 8000),)),
    ("96kto8k", 5, 0.95, ((96000, 8000),)),
)


def coefficients(name, order, edge, pairs):
    """Denominator and numerator as texts."""
    if name in GIVEN:
        return [text.split() for text in GIVEN[name]]
    high, low = pairs[0]
    b, a = signal.ellip(order, RIPPLE_DB, ATTENUATION_DB, edge * low / high)
    return [[f"{c:.17g}" if c != 1.0 else "1.0" for c in array] for array in (a, b)]


def array(name, values):
    lines = [", ".join(values[i:i + 4]) for i in range(0, len(values), 4)]
    return f"constexpr double {name}[] = {{\n    " + ",\n    ".join(lines) + "};"


def main():
    arrays, rows = [], []
    for name, order, edge, pairs in FILTERS:
        a, b = coefficients(name, order, edge, pairs)
        arrays += [array("a_coeffs_" + name, a), array("b_coeffs_" + name, b), ""]
        rows += [f"    {{{high}, {low}, a_coeffs_{name}, b_coeffs_{name}, {order + 1}}}," for high, low in pairs]
    print(f"""\
// Made by tools/resample_filterset.py with SciPy {scipy.__version__}; not edited by hand. Rebuild:
//     tools/resample_filterset.py > src/resample/ORVAresample_filterset.cpp
#include "resample/ORVAresample_filterset.h"

// clang-format off
namespace orva
{{
namespace
{{
""")
    print("\n".join(arrays))
    print("} // namespace\n")
    print("// Searched from the top. The last seven rows are never reached: rows above hold the same pairs.")
    print(f"const FilterSetRow FilterSet[{len(rows)}] = {{")
    print("\n".join(rows))
    print("};\n")
    print("} // namespace orva")


main()
