/* The public header compiles as C, and C code can call the library. */
#include <customipp/customipp.h>

int statusFromC(void);

int statusFromC(void)
{
    return ippGetStatusString(ippStsNullPtrErr)[0] == 'N' ? ippStsNullPtrErr : ippStsNoErr;
}
