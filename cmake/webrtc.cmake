# orva_webrtc: the WebRTC audio processing library, of release 0.3. It installs no header for the functions that the
# noise suppressor calls, so what is looked for is the functions themselves.
include(CheckLibraryExists)
find_library(WEBRTC_LIBRARY webrtc_audio_processing)
foreach(function
    WebRtcNs_Create
    WebRtcNs_Free
    WebRtcNs_Init
    WebRtcNs_Process
    WebRtcNs_set_policy
    WebRtcSpl_AnalysisQMF
    WebRtcSpl_SynthesisQMF
)
    if(WEBRTC_LIBRARY)
        check_library_exists(${WEBRTC_LIBRARY} ${function} "" HAVE_${function})
    endif()
    if(NOT HAVE_${function})
        message(FATAL_ERROR
            "No WebRTC audio processing 0.3 with ${function}: install Debian's libwebrtc-audio-processing-dev.")
    endif()
endforeach()
add_library(orva_webrtc INTERFACE)
target_link_libraries(orva_webrtc INTERFACE ${WEBRTC_LIBRARY})
