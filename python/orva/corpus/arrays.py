# SPDX-License-Identifier: GPL-2.0-or-later
"""Per-frame arrays on their way to a file: they grow on the disk, and so a recording may have any length."""
import math
import tempfile
import zipfile
from pathlib import Path
from shutil import copyfileobj
from types import TracebackType
from typing import Any, Dict, Iterator, List, Optional, Sequence, Tuple, Type

import numpy as np
import numpy.typing as npt

from .frames import Meter, Rows

SMALL = 1 << 18           # bytes of an array that stay in memory
CHUNK = 1 << 18           # values in a chunk of Zarr
_npy: Any = np.lib.format
_NO_DATE = (1980, 1, 1, 0, 0, 0)


class Column:
    """One array, row after row."""

    def __init__(self, tail: Tuple[int, ...], dtype: "np.dtype[Any]", folder: Path) -> None:
        self._tail, self.dtype, self._count = tail, dtype.newbyteorder("<"), 0
        self.file = tempfile.SpooledTemporaryFile(SMALL, "w+b", dir=str(folder))

    @property
    def shape(self) -> Tuple[int, ...]:
        """Frames first."""
        return (self._count, *self._tail)

    def append(self, rows: npt.NDArray[Any]) -> None:
        """Adds frames at the end."""
        self.file.write(np.ascontiguousarray(rows, self.dtype).tobytes())
        self._count += len(rows)

    def chunks(self, rows: int) -> Iterator[npt.NDArray[Any]]:
        """All rows again, some at a time."""
        self.file.seek(0)
        row = math.prod(self._tail)
        for first in range(0, self._count, rows):
            count = min(rows, self._count - first)
            yield np.frombuffer(self.file.read(count * row * self.dtype.itemsize), self.dtype).reshape(count, *self._tail)


class Arrays:
    """The arrays of some meters, by name of the step and of the array: ``"mel/decibels"``."""

    def __init__(self, meters: Tuple[Meter, ...], folder: Path) -> None:
        self._meters = meters
        self.columns: Dict[str, Column] = {}
        for meter in meters:
            self.columns[f"{meter.step.name}/times"] = Column((), np.dtype(np.float64), folder)
            for name, tail in meter.columns().items():
                self.columns[f"{meter.step.name}/{name}"] = Column(tail, np.dtype(np.float32), folder)

    def __enter__(self) -> "Arrays":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], value: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        for column in self.columns.values():
            column.file.close()

    def append(self, measured: Sequence[List[Rows]]) -> None:
        """Adds what each of the meters has measured."""
        for meter, parts in zip(self._meters, measured):
            for rows in parts:
                for name, values in rows.items():
                    self.columns[f"{meter.step.name}/{name}"].append(values)

    def constants(self) -> Rows:
        """What has no frames."""
        return {f"{meter.step.name}/{name}": values for meter in self._meters
                for name, values in meter.constants().items()}

    def write(self, kind: str, stem: Path) -> None:
        """Writes all of them, as a file of NumPy or a folder of Zarr; with equal bytes for equal values."""
        (self._write_npz if kind == "npz" else self._write_zarr)(stem.with_suffix(f".{kind}"))

    def _write_npz(self, path: Path) -> None:
        with zipfile.ZipFile(path, "w") as archive:
            for name, column in self.columns.items():
                with archive.open(_member(name), "w", force_zip64=True) as member:
                    header = {"descr": column.dtype.str, "fortran_order": False, "shape": column.shape}
                    _npy.write_array_header_1_0(member, header)
                    column.file.seek(0)
                    copyfileobj(column.file, member)
            for name, values in self.constants().items():
                with archive.open(_member(name), "w") as member:
                    _npy.write_array(member, values)

    def _write_zarr(self, path: Path) -> None:
        import zarr
        group: Any = zarr.open_group(str(path), mode="w")
        for name, column in self.columns.items():
            step = max(1, CHUNK // max(1, math.prod(column.shape[1:])))
            tail = tuple(max(1, size) for size in column.shape[1:])
            # Without a compressor: that of Zarr packs by threads, and not in one order.
            stored = group.create_dataset(name, shape=column.shape, chunks=(step, *tail), dtype=column.dtype.str,
                                          compressor=None)
            if math.prod(column.shape):
                for n, chunk in enumerate(column.chunks(step)):
                    stored[n * step:n * step + len(chunk)] = chunk
        for name, values in self.constants().items():
            group.create_dataset(name, data=values, compressor=None)


def _member(name: str) -> zipfile.ZipInfo:
    member = zipfile.ZipInfo(f"{name}.npy", _NO_DATE)
    member.external_attr = 0o644 << 16
    return member
