/* Uses one function that needs the library to be up. */
#include <orva/ORVAfft.h>

int main(void)
{
    return ORVA_FFTProcDestroy(ORVA_FFTProcCreate(64)) ? 0 : 1;
}
