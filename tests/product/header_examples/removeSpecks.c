// Calls the opening's example on a gray image with a speck and a block: the speck vanishes and the block stays as it
// is.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus removeSpecks(const Lum8u* pSrc, Lum64s srcStep, Lum8u* pDst, Lum64s dstStep, LumiSizeL roiSize, Lum64s speck);

enum
{
    Width = 50,
    Height = 20,
    Gray = 90
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u clean[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int isSpeck = x >= 5 && x < 8 && y >= 5 && y < 16;
            int isBlock = x >= 20 && x < 27 && y >= 10 && y < 14;
            image[y][x] = (Lum8u)(isSpeck ? 255 : isBlock ? 200 : Gray);
        }

    LumiSizeL roiSize = {Width, Height};
    LumStatus status = removeSpecks(&image[0][0], Width, &clean[0][0], Width, roiSize, 3);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int expected = image[y][x] == 255 ? Gray : image[y][x];
            if (clean[y][x] != expected) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, clean[y][x], expected);
                return 1;
            }
        }
    return 0;
}
