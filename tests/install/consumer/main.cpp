// Uses the installed libraries as somebody else's program would: a functor, with no graph.
#include <customipp/customipp.h>
#include <cstdio>
#include <tarnbase/tarnbase.h>
#include <tarnflow/tarnflow.h>
#include <tarnimg/tarnimg.h>
#include <utility>

int main()
{
    cImg a(cImgType::UInt8, 4, 2, 1);
    cImg b(cImgType::UInt8, 4, 2, 1);
    a.getImgType().fill(a, QVariant(200));
    b.getImgType().fill(b, QVariant(100));

    const cImg sum = cAddImagesFunctor()(std::as_const(a), std::as_const(b));
    const int pixel = sum.getPixel<unsigned char>(3, 1);
    std::printf("200 + 100 = %d, saturated; stations known: %d; status text: %s\n", pixel,
        int(cStation::getIdentifiers().size()), ippGetStatusString(ippStsNoErr));
    return pixel == 255 && !cStation::getIdentifiers().isEmpty() ? 0 : 1;
}
