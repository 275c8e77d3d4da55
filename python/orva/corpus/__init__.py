# SPDX-License-Identifier: GPL-2.0-or-later
"""Recipes over whole corpora of recordings, on Dask: one machine, or a cluster.

A recipe in TOML names steps and what is kept; `run` makes it of every recording, block by block in a bounded memory:

    steps = [
        { do = "remove_dc" },
        { do = "resample", fs = 16000 },
        { do = "measures", frame_ms = 25, hop_ms = 10 },
    ]
    outputs = { sound = "flac", arrays = "npz" }

============  ========================================================================================================
remove_dc     takes a constant offset away
resample      to the rate ``fs``; ``order``, ``kind`` as for `orva.Resampler`
filter        by ``text``, with edges in Hz, or ``sos``, rows of six
stretch       by ``speed``; ``frame_ms``
measures      energy and zero crossings in frames of ``frame_ms``, one each ``hop_ms``
mel           decibels in ``bands`` of the mel scale from ``low_hz`` to ``high_hz``, not below ``floor``
delay         by how much channel 0 is later than each other one, up to ``most_ms``; ``phat``
============  ========================================================================================================

What measures, measures the sound as it is where the step stands; ``name`` tells two of one kind apart. ``sound`` is
"wav", "flac" or "w64", with a ``subtype`` of "PCM_16", "PCM_24" or, in w64, "FLOAT"; ``arrays`` is "npz" or "zarr".

    python3 -m orva.corpus RECIPE.toml IN... --out FOLDER [--scheduler tcp://...]

is the same at the command line. Needed are the packages soundfile and dask, for a cluster distributed, for Zarr zarr.
"""
from .execution import CutOff
from .recipe import Recipe, read_recipe
from .running import Report, run

__all__ = ["CutOff", "Recipe", "Report", "read_recipe", "run"]
