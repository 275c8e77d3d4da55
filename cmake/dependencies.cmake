# Whatever this project uses from elsewhere is looked for here. What is missing is told in one message, with the Debian
# package that has it and, where there is one, the option that does without.
set(ORVA_MISSING "")
set(ORVA_MISSING_PACKAGES "")

# orva_need(<found> <what> <packages> [<options>]): <found> names a variable that is true if <what> was found. The
# <options> are those whose parts use it; without any, everything does.
macro(orva_need found what packages)
    if(NOT ${found})
        set(switches "")
        foreach(option ${ARGN})
            if(${option})
                string(APPEND switches " -D${option}=OFF")
            endif()
        endforeach()
        if(switches)
            string(PREPEND switches ", or do without it by")
        endif()
        string(APPEND ORVA_MISSING "\n  ${what}: Debian's ${packages}${switches}")
        string(APPEND ORVA_MISSING_PACKAGES " ${packages}")
    endif()
endmacro()

find_package(PkgConfig QUIET)
if(NOT PKG_CONFIG_FOUND)                                  # without it, everything else seems to be missing
    message(FATAL_ERROR "Not found:\n  pkg-config: Debian's pkg-config\nOn Debian:\n  sudo apt install pkg-config")
endif()

pkg_check_modules(FFTW QUIET IMPORTED_TARGET fftw3f)      # Debian's FFTW has no usable CMake package
orva_need(FFTW_FOUND "FFTW 3 in single precision (fftw3f)" libfftw3-dev)
if(NOT TARGET orva_webrtc)                                # a system may have its own way to it
    include(webrtc)
    orva_need(WEBRTC_FOUND "WebRTC audio processing 0.3, its noise suppressor included" libwebrtc-audio-processing-dev)
endif()

if(ORVA_BUILD_TESTS)
    find_package(GTest QUIET)
    orva_need(GTest_FOUND "GoogleTest" "libgtest-dev libgmock-dev" ORVA_BUILD_TESTS)
endif()
if(ORVA_BUILD_EXAMPLES OR ORVA_BUILD_PROGRAMS OR (ORVA_BUILD_TESTS AND NOT WIN32))    # where no test takes it
    pkg_check_modules(SNDFILE QUIET IMPORTED_TARGET sndfile)
    orva_need(SNDFILE_FOUND "libsndfile" libsndfile1-dev
        ORVA_BUILD_TESTS ORVA_BUILD_EXAMPLES ORVA_BUILD_PROGRAMS)
endif()
if(ORVA_BUILD_PROGRAMS)
    pkg_check_modules(CAIRO QUIET IMPORTED_TARGET cairo)
    orva_need(CAIRO_FOUND "Cairo" libcairo2-dev ORVA_BUILD_PROGRAMS)
    find_package(CLI11 QUIET)
    orva_need(CLI11_FOUND "CLI11" libcli11-dev ORVA_BUILD_PROGRAMS)
endif()
if(ORVA_BUILD_BENCHMARKS)
    find_package(benchmark QUIET)
    orva_need(benchmark_FOUND "Google Benchmark" libbenchmark-dev ORVA_BUILD_BENCHMARKS)
    find_library(LIQUID liquid)                           # Debian's package has no other way to find it
    orva_need(LIQUID "liquid-dsp" libliquid-dev ORVA_BUILD_BENCHMARKS)
    pkg_check_modules(SOX QUIET IMPORTED_TARGET sox)
    orva_need(SOX_FOUND "SoX" libsox-dev ORVA_BUILD_BENCHMARKS)
    find_library(ZITA zita-resampler)                     # so has this one
    orva_need(ZITA "zita-resampler" libzita-resampler-dev ORVA_BUILD_BENCHMARKS)
    pkg_check_modules(RESAMPLERS QUIET IMPORTED_TARGET samplerate soxr speexdsp)
    orva_need(RESAMPLERS_FOUND "libsamplerate, soxr and Speex DSP" "libsamplerate0-dev libsoxr-dev libspeexdsp-dev"
        ORVA_BUILD_BENCHMARKS)
    pkg_check_modules(GSL QUIET IMPORTED_TARGET gsl)
    orva_need(GSL_FOUND "GSL" libgsl-dev ORVA_BUILD_BENCHMARKS)
    pkg_check_modules(KISSFFT QUIET IMPORTED_TARGET kissfft-float)
    orva_need(KISSFFT_FOUND "KISS FFT" libkissfft-dev ORVA_BUILD_BENCHMARKS)
    pkg_check_modules(SLEEF QUIET IMPORTED_TARGET sleef)
    orva_need(SLEEF_FOUND "SLEEF" libsleef-dev ORVA_BUILD_BENCHMARKS)
    pkg_check_modules(RUBBERBAND QUIET IMPORTED_TARGET rubberband)
    orva_need(RUBBERBAND_FOUND "Rubber Band" librubberband-dev ORVA_BUILD_BENCHMARKS)
    if(ORVA_BUILD_TESTS)
        pkg_check_modules(SOUNDTOUCH QUIET IMPORTED_TARGET soundtouch)
        orva_need(SOUNDTOUCH_FOUND "SoundTouch" libsoundtouch-dev ORVA_BUILD_BENCHMARKS)
    endif()
endif()

if(ORVA_MISSING)
    message(FATAL_ERROR "Not found:${ORVA_MISSING}\nOn Debian:\n  sudo apt install${ORVA_MISSING_PACKAGES}")
endif()
