"""What the figures of the documents share: the library, a sound, one look, one way to save.

A script that draws, docs/figures/NAME.py, declares the functions that it needs and saves what it draws:

    from figures import FLOATS, axes, c_bool, c_int32, c_uint32, function, save, zeros

    create_window = function("ORVA_CreateWindow", c_bool, c_int32, FLOATS, c_uint32)

    window = zeros(1024)
    create_window(3, window, 1024)
    figure, plot = axes()
    plot.plot(window)
    save(figure, "hanning")                 # docs/images/hanning.png

script/figures builds the library and runs it. Equal versions of matplotlib draw equal files.
"""
import ctypes
import wave
from ctypes import c_bool, c_char_p, c_double, c_float, c_int32, c_int64, c_uint32, c_void_p  # for the scripts
from io import BytesIO
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as pyplot
import numpy
from cycler import cycler
from PIL import Image

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/release"
RECORDING = "/usr/share/sounds/alsa/Front_Center.wav"   # of Debian's alsa-utils

_kett = ctypes.CDLL(BUILD / "kett/libkett.so", mode=ctypes.RTLD_GLOBAL)
_orva = ctypes.CDLL(BUILD / "src/liborva.so")

FLOATS = numpy.ctypeslib.ndpointer(numpy.float32, flags="C,A")


def function(name, result, *arguments):
    """A function of liborva or libkett; of one that takes more arguments, as printf does, the leading ones are given."""
    found = getattr(_kett if name.startswith("KT") else _orva, name)
    found.restype = result
    found.argtypes = arguments
    return found


def zeros(count, kind=numpy.float32):
    """An array aligned to 16 bytes, as transforms need it."""
    size = numpy.dtype(kind).itemsize
    raw = numpy.zeros(count * size + 16, numpy.uint8)
    start = -raw.ctypes.data % 16
    return raw[start:start + count * size].view(kind)


def recording():
    """The recorded voice, 48000 samples a second, full scale 1.0."""
    with wave.open(RECORDING) as file:
        samples = numpy.frombuffer(file.readframes(file.getnframes()), "<i2")
    voice = zeros(len(samples))
    voice[:] = samples / 32768
    return voice


# One look: 800 points wide, dark lines on white, a light grid, no frame above and to the right.
BLUE, ORANGE, GREEN, RED, GREY = "#1f4e9c", "#d9731a", "#2b8a4b", "#b3262e", "#8a8f98"
WIDTH, HEIGHT, DPI = 8, 3.6, 100
matplotlib.rcParams.update({
    "figure.dpi": DPI, "figure.figsize": (WIDTH, HEIGHT), "figure.constrained_layout.use": True,
    "font.family": "DejaVu Sans", "font.size": 10, "axes.titlesize": 11, "axes.titlelocation": "left",
    "axes.labelsize": 10, "axes.labelcolor": "#303030", "legend.fontsize": 9, "legend.frameon": False,
    "axes.prop_cycle": cycler(color=[BLUE, ORANGE, GREEN, RED, GREY]), "lines.linewidth": 1.4,
    "axes.grid": True, "grid.color": "#e3e5e8", "grid.linewidth": 0.8, "axes.axisbelow": True,
    "axes.spines.top": False, "axes.spines.right": False, "axes.edgecolor": GREY,
    "xtick.color": "#505050", "ytick.color": "#505050",
})


def axes(rows=1, columns=1, height=HEIGHT, **options):
    """A figure of the common width, and its axes: one, or an array of them."""
    return pyplot.subplots(rows, columns, figsize=(WIDTH, height), **options)


def save(figure, name):
    """Writes docs/images/NAME.png, in 256 colours and without a date."""
    drawn = BytesIO()
    figure.savefig(drawn, format="png")
    pyplot.close(figure)
    save_picture(drawn, name)


def save_picture(file, name):
    """The same for a picture that is drawn already."""
    path = ROOT / "docs/images" / (name + ".png")
    colours = Image.open(file).convert("RGB").quantize(256, kmeans=1, dither=Image.Dither.NONE)
    colours.save(path, optimize=True)
    print(f"figures: wrote {path.relative_to(ROOT)}, {path.stat().st_size // 1024} KB")
