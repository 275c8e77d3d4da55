/* Asks for the library's version before it uses anything of it, and counts a use of its own.
 *
 *     cc core.c $(pkg-config --cflags --libs orva) -o core
 */
#include <orva/orva.h>

#include <stdio.h>

int main(void)
{
    int32_t major, minor;
    ORVAVERSION_Number(&major, &minor, NULL, NULL); /* a null pointer skips its number */
    if (major != 3 || minor < 7) {
        fprintf(stderr, "core: needs liborva 3.7 or a later 3, and this is %s\n", ORVAVERSION_String());
        return 1;
    }

    ORVA_Initialize(); /* a second use: loading the library has counted the first */
    ORVA_FFT *fft = ORVA_FFTProcCreate(1024);
    puts(fft != NULL ? "the library is up" : "the library is down, or out of memory");
    ORVA_FFTProcDestroy(fft);
    ORVA_Finalize(); /* back to one use: the library is still up, and unloading takes it down */
    return fft != NULL ? 0 : 1;
}

/* $ ./core
 * the library is up
 */
