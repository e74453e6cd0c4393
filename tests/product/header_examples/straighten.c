// Calls the undistortion's example: a flat image stays flat, and what lies beyond the lens becomes black.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus straighten(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 64,
    Height = 48
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u straight[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            image[y][x] = 200;
            straight[y][x] = 77;
        }

    const LumiSize size = {Width, Height};
    const LumStatus status = straighten(&image[0][0], Width, &straight[0][0], Width, size);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    int black = 0;
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            // weights that are rounded towards zero may lack a little to 1
            const int value = straight[y][x];
            black += value == 0;
            if (value != 0 && value != 199 && value != 200) {
                printf("pixel (%d, %d) is %d\n", x, y, value);
                return 1;
            }
        }
    if (straight[Height / 2][Width / 2] == 0 || straight[Height - 1][Width - 1] != 0 || black > Width * Height / 4) {
        printf("%d pixels are black\n", black);
        return 1;
    }
    return 0;
}
