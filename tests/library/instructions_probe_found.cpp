// Holds what the scan for fused multiply-adds and for arithmetic on x87 registers looks for.
double fused(double a, double b, double c);
long double wide(long double a, long double b);

double fused(double a, double b, double c)
{
    return __builtin_fma(a, b, c);
}

long double wide(long double a, long double b)
{
    return a * b;
}
