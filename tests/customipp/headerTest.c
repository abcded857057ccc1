/* The public header compiles as C, and C code can call the library. */
#include <customipp/customipp.h>

int sumFromC(int left, int right);

int sumFromC(int left, int right)
{
    const Ipp8u first = (Ipp8u)left;
    const Ipp8u second = (Ipp8u)right;
    const IppiSize size = {1, 1};
    Ipp8u sum = 0;
    const IppStatus status = ippiAdd_8u_C1RSfs(&first, 1, &second, 1, &sum, 1, size, 0);
    return status == ippStsNoErr ? sum : -1;
}
