// Calls the filters' example on a slope: inside, the derivative of 3 a pixel is 3 times the sum of place times weight.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus deriveAlongRows(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 61,
    Height = 13
};

int main(void)
{
    static Lum8u slope[Height][Width];
    static Lum16s derivative[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            slope[y][x] = (Lum8u)(3 * x);

    LumiSize roiSize = {Width, Height};
    LumStatus status = deriveAlongRows(&slope[0][0], Width, &derivative[0][0], Width * 2, roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    // -1 -4 -5 0 5 4 1: 2 * (1 * 3 + 4 * 2 + 5 * 1) = 32 times the slope
    for (int y = 0; y < Height; y++)
        for (int x = 3; x < Width - 3; x++)
            if (derivative[y][x] != 96) {
                printf("pixel (%d, %d) is %d\n", x, y, derivative[y][x]);
                return 1;
            }
    // mirrored, the first column is a turning point
    if (derivative[5][0] != 0) {
        printf("the first column is %d\n", derivative[5][0]);
        return 1;
    }
    return 0;
}
