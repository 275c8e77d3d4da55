// Holds what the scan looks for, written as such: what a compiler makes of products and sums is its own choice.
void found();

void found()
{
    asm volatile("fmadd d0, d1, d2, d3\n"
                 "fmsub d0, d1, d2, d3\n"
                 "fnmadd s0, s1, s2, s3\n"
                 "fnmsub s0, s1, s2, s3\n"
                 "fmla v0.4s, v1.4s, v2.4s\n"
                 "fmls v0.2d, v1.2d, v2.2d\n"
                 "frecpe v0.4s, v1.4s\n"
                 "frsqrte d0, d1\n" ::
                     : "d0");
}
