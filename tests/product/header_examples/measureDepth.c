// Calls the chamfer distance's example on a wide bar: a pixel's depth is its distance from the nearer long side.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus measureDepth(const Lum8u* pSrc, Lum32s srcStep, Lum32f* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 61,
    Height = 25,
    First = 4,
    Last = 20
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum32f depth[Height][Width];
    for (int y = First; y <= Last; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = 255;

    LumiSize roiSize = {Width, Height};
    LumStatus status = measureDepth(&image[0][0], Width, &depth[0][0], Width * (int)sizeof(Lum32f), roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int fromTop = y - First + 1, fromBottom = Last + 1 - y;
            int expected = fromTop < fromBottom ? fromTop : fromBottom;
            if (depth[y][x] != (Lum32f)(expected > 0 ? expected : 0)) {
                printf("pixel (%d, %d) is %g\n", x, y, (double)depth[y][x]);
                return 1;
            }
        }
    return 0;
}
