/* Uses one function that needs nothing of the library but its own code. */
#include <orva/ORVAwinfnc.h>

int main(void)
{
    float window[8];
    return ORVA_CreateWindow(0, window, 8) ? 0 : 1;
}
