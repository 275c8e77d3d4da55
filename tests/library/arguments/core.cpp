// Life cycle, version, engine. Each row leaves the library as it found it.
#include "walk.h"

#include <orva/orva.h>

#include <cstring>

namespace arguments
{

const Row core[] = {
    {"ORVA_Initialize",
     [](Walk &walk) {
         for (int uses = walk.pick({1, 3}); uses > 0; --uses) {
             walk.call([] { ORVA_Initialize(); });
             ORVA_Finalize();
         }
         walk.expect(ORVA_FFTProcDestroy(ORVA_FFTProcCreate(8)), "the library is up");
     }},
    {"ORVA_Finalize",
     [](Walk &walk) {
         const int more = walk.pick({0, 1, 2});
         for (int i = 0; i < more; ++i)
             ORVA_Initialize();
         for (int i = 0; i < more + 2; ++i) // to the end and beyond
             walk.call([] { ORVA_Finalize(); });
         ORVA_Initialize();
         walk.expect(ORVA_FFTProcDestroy(ORVA_FFTProcCreate(8)), "the library is up again");
     }},
    {"ORVAVERSION_String",
     [](Walk &walk) {
         const char *const text = walk.call([] { return ORVAVERSION_String(); });
         walk.expect(std::strncmp(text, "liborva version 3.7.18.0 (built in ", 35) == 0, "the text");
     }},
    {"ORVAVERSION_Number",
     [](Walk &walk) {
         int32_t *number[4];
         for (auto &n : number)
             n = walk.out<int32_t>(1);
         walk.call([&] { ORVAVERSION_Number(number[0], number[1], number[2], number[3]); });
         constexpr int32_t version[] = {3, 7, 18, 0};
         for (int i = 0; i < 4; ++i)
             walk.expect(number[i] == nullptr || *number[i] == version[i], "the numbers");
     }},
    {"ORVA_InitializeFFT",
     [](Walk &walk) {
         const bool stops = walk.pick({false, true});
         if (stops)
             ORVA_FinalizeFFT();
         walk.expect(walk.call([] { return ORVA_InitializeFFT(); }), "true");
     }},
    {"ORVA_FinalizeFFT",
     [](Walk &walk) {
         walk.expect(walk.call([] { return ORVA_FinalizeFFT(); }), "true");
         ORVA_InitializeFFT();
     }},
    {"ORVA_OptimizeFFT",
     [](Walk &walk) {
         const bool wait = walk.pick({false, true});
         walk.expect(walk.call([&] { return ORVA_OptimizeFFT(wait); }), "true");
         if (!wait)
             ORVA_OptimizeFFT(true);
     }},
    {},
};

} // namespace arguments
