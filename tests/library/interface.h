// The whole interface of liborva, 72 functions by family, written out once more beside the list from which
// the library is linked, so that no name can be lost there.
#pragma once

#include <string>
#include <vector>

struct Family {
    std::string name;
    std::vector<std::string> functions;
};

inline const std::vector<Family> interfaceFamilies = {
    {"lifecycle and version",
     {"ORVA_Initialize", "ORVA_Finalize", "ORVAVERSION_String", "ORVAVERSION_Number"}},
    {"windows",
     {"ORVA_CreateWindow", "ORVA_ApplyWindow", "ORVA_GetWindowType", "ORVA_GetWindowName",
      "ORVA_GetWindowNormFactor", "ORVA_GetTwoWindowNormFactor", "ORVA_GetWindowTypeFromStringConfig"}},
    {"FFT engine", {"ORVA_InitializeFFT", "ORVA_FinalizeFFT", "ORVA_OptimizeFFT"}},
    {"FFT processors",
     {"ORVA_FFTProcCreate", "ORVA_IFFTProcCreate", "ORVA_FFTProcExecute", "ORVA_IFFTProcExecuteEx",
      "ORVA_FFTProcExecutePSDEx", "ORVA_FFTProcDestroy"}},
    {"spectrum utilities",
     {"ORVA_CreateComplexVector", "ORVA_DestroyComplexVector", "ORVA_CreatePreEmphAdjust", "ORVA_PSDtoDB",
      "ORVA_ComplexVectorMultiply"}},
    {"correlation",
     {"ORVA_XcorrProcCreate", "ORVA_XcorrVectorLength", "ORVA_XcorrProcExecute", "ORVA_XcorrPhatProcess",
      "ORVA_XcorrProcDestroy", "ORVA_XcorrCoef"}},
    {"filters",
     {"ORVA_Filter", "ORVA_FilterEx", "ORVA_ResetFilter", "ORVA_CopyFilterMemories",
      "ORVA_UpdateFilterBiquads", "ORVA_DestroyFilter", "ORVA_CreateFilterFromCoefs",
      "ORVA_CreateFilterFromBiquads", "ORVA_CreateFilter"}},
    {"resampling",
     {"ORVA_ResampleInit", "ORVA_Resample", "ORVA_ResampleFlushBufferSize", "ORVA_ResampleFlushBuffersEx",
      "ORVA_ResampleDestroy"}},
    {"interpolation", {"ORVASPLINE_Estimate", "ORVASPLINE_Interpolate", "ORVAINTERPOLATE_Linear"}},
    {"lapped transform",
     {"ORVA_FMCLTProcCreate", "ORVA_FMCLTProcDestroy", "ORVA_FMCLTFreqWindow", "ORVA_FMCLTDirect",
      "ORVA_FMCLTInverse", "ORVA_FMCLTCDTiv"}},
    {"time scaling",
     {"ORVA_SolafsCreate", "ORVA_SolafsInputData", "ORVA_SolafsOutputData",
      "ORVA_SolafsTranslateCursorPosition", "ORVA_SolafsDestroy"}},
    {"noise suppression",
     {"ORVA_CreateNoiseSupEx", "ORVA_NoiseSupBufferSize", "ORVA_SetNoiseSupIntensity", "ORVA_DoNoiseSup",
      "ORVA_DoNoiseSup16", "ORVA_DestroyNoiseSup"}},
    {"measures and scales",
     {"ORVA_CalcEnergy", "ORVA_CalcZeroCrossRate", "ORVA_RemoveDC", "ORVAUTIL_Freq2Mels",
      "ORVAUTIL_Mels2Freq", "ORVAUTIL_Freq2Bark", "ORVAUTIL_Bark2Freq"}},
};
