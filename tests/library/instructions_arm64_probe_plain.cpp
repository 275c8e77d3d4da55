// What a compiler would fuse if it were let, for the test that looks for it.
using Floats [[gnu::vector_size(16)]] = float;

double plain(double a, double b, double c);
Floats plainLanes(Floats a, Floats b, Floats c);

double plain(double a, double b, double c)
{
    return a * b + c;
}

Floats plainLanes(Floats a, Floats b, Floats c)
{
    return a * b + c;
}
