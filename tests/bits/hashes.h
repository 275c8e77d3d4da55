// The hashes of exact results, the same on every system. Made by the program in bits.cpp; rebuild with:
//     build/release/tests/bits/bits table > tests/bits/hashes.h
#pragma once

namespace bits
{

struct Hash {
    const char *family;
    const char *hash;
};

inline constexpr Hash hashes[] = {
    {"kett vectors", "ed3326e617b4c64e7ff1436a2d55c22d12d8a16ddda66205298d80d41f418944"},
    {"kett samples", "46d73404baeb9f93d3b54758d41eff26c80c3240b966a720232599e0aa20c71f"},
    {"kett filter", "24796f6ff12c2fe2faa35e5afdaf1e0dafc7a02ad0243f3e10bcbd7287511682"},
    {"kett numbers", "8ff83b61e44f36abf4d2d38ee3f5d90a8af34f92c87eb7a2cc59796b8247374d"},
    {"fft", "72ffd22e4f13db708f54cb3eb51c83afe4a74ac64ee1526fb81043303876e148"},
    {"xcorr", "811ce3b08d2b69f60f23463b621626f786f3d72778420ef043e239d22c0e6f88"},
    {"fmclt", "06ecbd0c5c79ba8a9b38534315dea1d3a90d6ee4083be65049795d6ef1d9cede"},
    {"filter direct", "f70ccf704558cef4fc2087cfa8671cab490a9d81d69dbc40f9f8c2dec62fbd06"},
    {"filter biquads", "433d241ea19196a451cdd2b81c14a80edf6ba40b7780da0f903f164af90eeb84"},
    {"filter text", "8b0b1ab47787fcb55400f2ac41fea73f24781b882785540cce400f0a48e7f908"},
    {"resample sums", "916119422ee1296790896f629f7309724cb0c243954e2e686df88b45791430e0"},
    {"resample hold", "9fcd5b7ddbb8c41789d28d2ac2323d64577029d2f30313a433477bf19702c404"},
    {"solafs", "9c0099459729bb9ee0081c521b0dcd3bc64d63ed58641fdf92e3bf5511e2ef78"},
    {"interpolate", "841b1c93eb2aae2255f840a088eb9e86bdc9c27fffb8df9e07133aa69f1c7405"},
    {"measures", "9a4fac0212df0b323e3c5f252e6244e48ac34b1bd933c8b92ebb8e3a2686a70a"},
    {"noisesup", "6f7c1f17f728a0c6f5eefa116af06d94a28e784058faf0f1ac5f97c3e79118d9"},
    {"window", "3dcb08b22b1be8f6b3d26db1f97c64f480fcc06adba43deca5b8964cd02a05d3"},
};

} // namespace bits
