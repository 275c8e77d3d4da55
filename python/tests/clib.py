"""The library by another way than the package takes: ctypes, with types written out by hand."""
import ctypes
import os
from ctypes import POINTER, c_bool, c_char_p, c_double, c_float, c_int32, c_int64, c_uint32, c_void_p

import numpy

_library = ctypes.CDLL(os.environ.get("ORVA_LIBRARY", "liborva.so.3"))
FLOATS = numpy.ctypeslib.ndpointer(numpy.float32, flags="C,A")
DOUBLES = numpy.ctypeslib.ndpointer(numpy.float64, flags="C,A")
COMPLEXES = numpy.ctypeslib.ndpointer(numpy.complex64, flags="C,A")

SIGNATURES = {
    "ORVA_CreateWindow": (c_bool, c_int32, FLOATS, c_uint32),
    "ORVA_GetWindowNormFactor": (c_double, FLOATS, c_int32),
    "ORVA_GetTwoWindowNormFactor": (c_double, FLOATS, FLOATS, c_int32),
    "ORVA_ApplyWindow": (c_bool, FLOATS, FLOATS, c_int32),
    "ORVA_FFTProcCreate": (c_void_p, c_int32),
    "ORVA_IFFTProcCreate": (c_void_p, c_int32),
    "ORVA_FFTProcExecute": (c_int32, c_void_p, FLOATS, COMPLEXES),
    "ORVA_IFFTProcExecuteEx": (c_int32, c_void_p, COMPLEXES, FLOATS, c_bool),
    "ORVA_FFTProcExecutePSDEx": (c_int32, c_void_p, FLOATS, FLOATS, c_void_p),
    "ORVA_FFTProcDestroy": (c_bool, c_void_p),
    "ORVA_PSDtoDB": (c_bool, c_int32, FLOATS, FLOATS, c_void_p, c_double, c_double),
    "ORVA_CreatePreEmphAdjust": (c_bool, FLOATS, c_int32, c_double),
    "ORVA_CreateFilter": (c_void_p, c_char_p),
    "ORVA_CreateFilterFromBiquads": (c_void_p, c_int32, c_uint32, DOUBLES),
    "ORVA_CreateFilterFromCoefs": (c_void_p, c_uint32, c_int32, DOUBLES, c_uint32, DOUBLES),
    "ORVA_Filter": (c_int32, c_void_p, FLOATS, FLOATS, c_uint32),
    "ORVA_DestroyFilter": (c_int32, c_void_p),
    "ORVA_ResampleInit": (c_void_p, c_int32, c_int32, c_char_p),
    "ORVA_Resample": (c_int32, c_void_p, FLOATS, FLOATS, c_int32),
    "ORVA_ResampleFlushBufferSize": (c_int32, c_void_p),
    "ORVA_ResampleFlushBuffersEx": (c_int32, c_void_p, FLOATS, c_int32),
    "ORVA_ResampleDestroy": (c_int32, c_void_p),
    "ORVA_SolafsCreate": (c_void_p, c_int32, c_int32, c_int32),
    "ORVA_SolafsInputData": (c_int32, c_void_p, c_int32, FLOATS, c_int32, c_float),
    "ORVA_SolafsOutputData": (c_int32, c_void_p, c_int32, FLOATS, c_int32),
    "ORVA_SolafsTranslateCursorPosition": (c_int64, c_void_p, c_int64),
    "ORVA_SolafsDestroy": (None, c_void_p),
    "ORVA_XcorrProcCreate": (c_void_p, c_int32, c_int32),
    "ORVA_XcorrProcExecute": (c_int32, c_void_p, FLOATS, FLOATS, FLOATS),
    "ORVA_XcorrPhatProcess": (c_int32, c_void_p, FLOATS, FLOATS, FLOATS),
    "ORVA_XcorrProcDestroy": (c_bool, c_void_p),
    "ORVA_XcorrCoef": (c_double, FLOATS, c_int32, FLOATS, c_int32, POINTER(c_int32)),
    "ORVA_FMCLTProcCreate": (c_void_p, c_int32),
    "ORVA_FMCLTFreqWindow": (None, FLOATS, c_int32),
    "ORVA_FMCLTDirect": (None, c_void_p, FLOATS, FLOATS, FLOATS, FLOATS, FLOATS),
    "ORVA_FMCLTInverse": (None, c_void_p, FLOATS, FLOATS, FLOATS, FLOATS, FLOATS),
    "ORVA_FMCLTProcDestroy": (c_int32, c_void_p),
    "ORVA_CreateNoiseSupEx": (c_void_p, c_int32, c_int32),
    "ORVA_DoNoiseSup": (c_int32, c_void_p, FLOATS, FLOATS),
    "ORVA_DestroyNoiseSup": (c_bool, c_void_p),
    "ORVASPLINE_Estimate": (None, FLOATS, FLOATS, c_int32, c_float, c_float, FLOATS),
    "ORVASPLINE_Interpolate": (c_float, FLOATS, FLOATS, FLOATS, c_int32, c_float),
    "ORVAINTERPOLATE_Linear": (c_float, FLOATS, FLOATS, c_int32, c_float),
    "ORVA_CalcEnergy": (c_float, FLOATS, c_int32),
    "ORVA_CalcZeroCrossRate": (c_float, FLOATS, c_int32),
    "ORVA_RemoveDC": (None, FLOATS, FLOATS, c_int32),
    "ORVAUTIL_Freq2Mels": (c_double, c_double),
    "ORVAUTIL_Mels2Freq": (c_double, c_double),
    "ORVAUTIL_Freq2Bark": (c_double, c_double),
    "ORVAUTIL_Bark2Freq": (c_double, c_double),
}

for _name, (_result, *_arguments) in SIGNATURES.items():
    _function = getattr(_library, _name)
    _function.restype, _function.argtypes = _result, _arguments
    globals()[_name] = _function


def same_bits(first, second):
    """Equal shapes, types and bits; any not-a-number equals any other."""
    first, second = numpy.asarray(first), numpy.asarray(second)
    if first.shape != second.shape or first.dtype != second.dtype:
        return False
    if first.dtype.kind == "c":
        return same_bits(first.real.copy(), second.real.copy()) and same_bits(first.imag.copy(), second.imag.copy())
    bits = f"u{first.dtype.itemsize}"
    numbers = ~numpy.isnan(first)
    return bool((numbers == ~numpy.isnan(second)).all()) and \
        bool((first[numbers].view(bits) == second[numbers].view(bits)).all())


def noise(*shape, seed=1, height=1.0):
    """Random samples within -height .. height."""
    return numpy.random.default_rng(seed).uniform(-height, height, shape).astype(numpy.float32)


def aligned(array):
    """A copy that stands where transforms want it."""
    raw = numpy.empty(array.nbytes + 64, numpy.uint8)
    start = -raw.ctypes.data % 64
    copy = raw[start:start + array.nbytes].view(array.dtype).reshape(array.shape)
    copy[...] = array
    return copy
