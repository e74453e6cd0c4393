// Calls the dilation's example on a black image with two bright pixels: each becomes a cross, cut off at the edge.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <stdlib.h>

LumStatus growBright(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 45,
    Height = 13
};

int main(void)
{
    static const LumiPoint bright[2] = {{0, 0}, {30, 7}};
    static Lum8u image[Height][Width];
    static Lum8u grown[Height][Width];
    for (int i = 0; i < 2; i++)
        image[bright[i].y][bright[i].x] = (Lum8u)(100 + i);

    LumiSize roiSize = {Width, Height};
    LumStatus status = growBright(&image[0][0], Width, &grown[0][0], Width, roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int expected = 0;
            for (int i = 0; i < 2; i++)
                if (abs(x - bright[i].x) + abs(y - bright[i].y) <= 1)
                    expected = 100 + i;
            if (grown[y][x] != expected) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, grown[y][x], expected);
                return 1;
            }
        }
    return 0;
}
