// Calls the example of inpainting on a gray ramp with a scratch across it: the ramp comes back, and the rest stays.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <stdlib.h>

LumStatus repair(const Lum8u* pSrc, Lum32s srcStep, const Lum8u* pMask, Lum32s maskStep, Lum8u* pDst, Lum32s dstStep,
                 LumiSize roiSize, Lum32f radius);

enum
{
    Width = 70,
    Height = 40,
    Tolerance = 6
};

static int rampAt(int x, int y)
{
    return 40 + 2 * x + y;
}

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u mask[Height][Width];
    static Lum8u repaired[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            mask[y][x] = abs(x - y - 10) <= 1;
            image[y][x] = (Lum8u)(mask[y][x] ? 255 : rampAt(x, y));
        }

    LumiSize roiSize = {Width, Height};
    LumStatus status = repair(&image[0][0], Width, &mask[0][0], Width, &repaired[0][0], Width, roiSize, 4.0f);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            if (abs(repaired[y][x] - rampAt(x, y)) > (mask[y][x] ? Tolerance : 0)) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, repaired[y][x], rampAt(x, y));
                return 1;
            }
    return 0;
}
