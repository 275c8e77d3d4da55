#!/usr/bin/python3
"""Prints tests/filter/ORVAfilter_scipy_table.h: what SciPy's iirfilter gives for texts of ORVA_CreateFilter.

Rebuild from the top of the tree with Debian 12's python3-scipy:
    tools/filter_scipy.py > tests/filter/ORVAfilter_scipy_table.h

Each design is asked of SciPy in SciPy's own terms. A Butterworth edge is where 3.01 dB are reached, so the edge is
moved from where Ap is reached; that of the second Chebyshev type is where the stopband begins, so it is moved there;
an elliptic design takes the stopband attenuation that belongs to its order, ripple and selectivity.
"""

import numpy as np
import scipy
from scipy import signal, special

FREQUENCIES = (0.04, 0.18, 0.255, 0.42, 0.62, 0.88)  # 1 is half the sampling rate
KINDS = ("lowpass", "highpass", "bandpass", "bandstop")
EDGES = {False: ((0.1,), (0.45,), (0.8,)), True: ((0.1, 0.3), (0.25, 0.26), (0.5, 0.9))}
RIPPLES_DB = (0.5, 1.0, 3.0)  # one for each of the bands
STOPBAND_DB = 50.0
# An elliptic filter of order 1 or 2 is another one here, see the description of ORVA_CreateFilter.
ORDERS = {
    "butterworth": (1, 2, 3, 5, 8, 12),
    "chebyshev": (1, 2, 3, 5, 8, 12),
    "chebyshev2": (1, 2, 3, 5, 8, 12),
    "ellip": (3, 4, 5, 8, 9, 12),
}
NAMES = {"butterworth": "butter", "chebyshev": "cheby1", "chebyshev2": "cheby2", "ellip": "ellip"}


def float32(number):
    """What the library makes of a number in its text."""
    return np.float32(f"{number:g}")


def stop_edge(kind, edges):
    """A key with its edge, and the selectivity that the library takes from it, in single precision."""
    p1 = float32(edges[0])
    p2 = float32(edges[-1])
    if kind == "lowpass":
        s = float32(min(2 * edges[0], 0.95))
        return "fstop", s, s / p1
    if kind == "highpass":
        s = float32(edges[0] / 2)
        return "fstop", s, p1 / s
    width = edges[1] - edges[0]
    if kind == "bandpass":
        s = float32(edges[0] - 0.375 * width)
        return "fstop1", s, (((p1 + p2) - s) - s) / (p2 - p1)
    s = float32(edges[0] + 0.25 * width)
    return "fstop1", s, (p2 - p1) / (((p2 - s) + p1) - s)


def edges_at(kind, edges, s):
    """Where the response is that of the low-pass prototype at s, when at the edges it is that at 1."""
    w = np.tan(np.pi / 2 * np.array([float(float32(e)) for e in edges]))
    if kind == "lowpass":
        moved = w * s
    elif kind == "highpass":
        moved = w / s
    else:
        width = (w[1] - w[0]) * (s if kind == "bandpass" else 1 / s)
        product = w[0] * w[1]
        low = 2 * product / (np.sqrt(width * width + 4 * product) + width)
        moved = np.array([low, low + width])
    return 2 / np.pi * np.arctan(moved)


def elliptic_attenuation(order, ripple_power, selectivity):
    """In dB: the modulus k1 of the nome q^order gives the power ratio."""
    m = 1 / (selectivity * selectivity)
    q = np.exp(-np.pi * special.ellipkm1(m) / special.ellipk(m)) ** order
    k1 = 4 * np.sqrt(q) * np.prod([((1 + q ** (2 * n)) / (1 + q ** (2 * n - 1))) ** 4 for n in range(1, 40)])
    return 10 * np.log10(1 + ripple_power / k1**2)


def design(kind, approximation, order, edges, ripple_db, selectivity):
    """Zeros, poles and gain; the selectivity is None where the text has no stopband edge."""
    ripple_power = 10 ** (ripple_db / 10) - 1
    scale, rp, rs = 1.0, None, None
    if approximation == "butterworth":
        scale = ripple_power ** (-0.5 / order)
    elif approximation == "chebyshev":
        rp = ripple_db
    elif approximation == "chebyshev2":
        ratio = (10 ** (STOPBAND_DB / 10) - 1) / ripple_power
        scale = selectivity or np.cosh(np.arccosh(np.sqrt(ratio)) / order)
        rs = STOPBAND_DB
    else:
        rp, rs = ripple_db, elliptic_attenuation(order, ripple_power, selectivity)
    return signal.iirfilter(order, edges_at(kind, edges, scale), rp=rp, rs=rs, btype=kind,
                            ftype=NAMES[approximation], output="zpk")


def attenuations(zeros, poles, gain):
    points = np.exp(1j * np.pi * np.array(FREQUENCIES))
    return [-20 * (np.log10(gain) + np.sum(np.log10(abs(z - zeros))) - np.sum(np.log10(abs(z - poles))))
            for z in points]


def row(kind, approximation, order, edges, ripple_db):
    text = f"type={kind} approximation={approximation} order={order} Ap={ripple_db:g}"
    text += "".join(f" fpass{i + 1}={edge:g}" for i, edge in enumerate(edges))
    selectivity = None
    if approximation == "chebyshev2":
        text += f" As={STOPBAND_DB:g}"
    if approximation == "ellip":
        text += " As=0.1"  # has to be there, and is not to raise the order
    if approximation == "ellip" or approximation == "chebyshev2" and order == 12:
        key, edge, selectivity = stop_edge(kind, edges)
        text += f" {key}={edge:g}"
        selectivity = float(selectivity)
    values = attenuations(*design(kind, approximation, order, edges, ripple_db, selectivity))
    numbers = ", ".join(f"{value:.17g}" for value in values)
    return f'    {{"{text}",\n     "{approximation}", {order}, {selectivity or 0:.9g}, {{{numbers}}}}},'


def main():
    rows = [row(kind, approximation, order, edges, ripple)
            for kind in KINDS
            for approximation, orders in ORDERS.items()
            for order in orders
            for edges, ripple in zip(EDGES[kind.startswith("band")], RIPPLES_DB)]
    print(f"""\
// Made by tools/filter_scipy.py with SciPy {scipy.__version__}; not edited by hand. Rebuild:
//     tools/filter_scipy.py > tests/filter/ORVAfilter_scipy_table.h
#pragma once

#include <string_view>

// clang-format off
// Where the responses are taken; 1 is half the sampling rate.
constexpr double scipyFrequencies[] = {{{", ".join(f"{f:g}" for f in FREQUENCIES)}}};

struct ScipyResponse {{
    const char *text; // for ORVA_CreateFilter()
    std::string_view approximation;
    int order;
    double selectivity; // of the text's stopband edge, 0 for none
    double attenuations[{len(FREQUENCIES)}]; // in dB
}};

constexpr ScipyResponse scipyResponses[] = {{""")
    print("\n".join(rows))
    print("};\n// clang-format on")


main()
