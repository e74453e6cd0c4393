// Calls the reconstruction's example on an image with two bright bars: the one with the seed is kept.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus keepObject(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize, LumiPoint seed);

enum
{
    Width = 41,
    Height = 17
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u kept[Height][Width];
    for (int y = 3; y < 14; y++)
        for (int x = 0; x < Width; x++)
            if ((x >= 5 && x < 9) || (x >= 20 && x < 38))
                image[y][x] = (Lum8u)(100 + y);

    LumiSize roiSize = {Width, Height};
    LumiPoint seed = {30, 13};
    LumStatus status = keepObject(&image[0][0], Width, &kept[0][0], Width, roiSize, seed);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int expected = x >= 20 ? image[y][x] : 0;
            if (kept[y][x] != expected) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, kept[y][x], expected);
                return 1;
            }
        }
    return 0;
}
