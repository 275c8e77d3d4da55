// What a compiler would fuse if it were let, for the test that looks for it. Samples and results keep their
// width as well: a wider intermediate result would round twice elsewhere.
#include <cfloat>

static_assert(FLT_EVAL_METHOD == 0, "every operation rounds to the type of its operands");

double plain(double a, double b, double c);

double plain(double a, double b, double c)
{
    return a * b + c;
}
