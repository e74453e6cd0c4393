// Calls the pipelines' example on an image whose values make every step exact, and compares with the weights 1 2 1 / 1
// 2 1.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus smooth(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 37,
    Height = 11
};

static int clamp(int value, int last)
{
    return value < 0 ? 0 : value > last ? last : value;
}

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u smoothed[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = (Lum8u)(16 * ((x * 7 + y * 5 + x * y) % 16));

    LumiSize roiSize = {Width, Height};
    LumStatus status = smooth(&image[0][0], Width, &smoothed[0][0], Width, roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int sum = 0;
            for (int j = -1; j <= 1; j++)
                for (int i = -1; i <= 1; i++)
                    sum += (2 - j * j) * (2 - i * i) * image[clamp(y + j, Height - 1)][clamp(x + i, Width - 1)];
            if (smoothed[y][x] != sum / 16) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, smoothed[y][x], sum / 16);
                return 1;
            }
        }
    return 0;
}
