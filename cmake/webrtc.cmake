# orva_webrtc: the WebRTC audio processing library, of release 0.3. It installs no header for the functions that the
# noise suppressor calls, so what is looked for is the functions themselves. WEBRTC_FOUND tells whether all are there.
include(CheckLibraryExists)
find_library(WEBRTC_LIBRARY webrtc_audio_processing)
set(WEBRTC_FOUND ${WEBRTC_LIBRARY})
foreach(function
    WebRtcNs_Create
    WebRtcNs_Free
    WebRtcNs_Init
    WebRtcNs_Process
    WebRtcNs_set_policy
    WebRtcSpl_AnalysisQMF
    WebRtcSpl_SynthesisQMF
)
    if(WEBRTC_FOUND)
        check_library_exists(${WEBRTC_LIBRARY} ${function} "" HAVE_${function})
        set(WEBRTC_FOUND ${HAVE_${function}})
    endif()
endforeach()
if(WEBRTC_FOUND)
    add_library(orva_webrtc INTERFACE)
    target_link_libraries(orva_webrtc INTERFACE ${WEBRTC_LIBRARY})
endif()
