#include <customipp/customipp.h>

const char* ippGetStatusString(IppStatus stsCode)
{
    switch (stsCode) {
#define CUSTOMIPP_STATUS(value, name, text)                                                                  \
    case name:                                                                                               \
        return text;
#include <customipp/status.def>
#undef CUSTOMIPP_STATUS
    }
    return ippGetStatusString(ippStsUnknownStatusCodeErr);
}
