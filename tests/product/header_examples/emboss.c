// Calls the separable filter's example and compares with the same sums in integers.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus emboss(const Lum8u* pSrc, Lum32s srcStep, Lum16s* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 29,
    Height = 13
};

static int clamp(int value, int last)
{
    return value < 0 ? 0 : value > last ? last : value;
}

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum16s relief[Height][Width];
    unsigned random = 1;
    for (int n = 0; n < Width * Height; n++) {
        random = random * 1664525u + 1013904223u;
        (&image[0][0])[n] = (Lum8u)(random >> 24);
    }

    LumiSize roiSize = {Width, Height};
    LumStatus status = emboss(&image[0][0], Width, &relief[0][0], Width * (Lum32s)sizeof(Lum16s), roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int sum = 0;
            for (int j = -1; j <= 1; j++) {
                const Lum8u* row = image[clamp(y + j, Height - 1)];
                sum += (2 - j * j) * (row[clamp(x - 1, Width - 1)] - row[clamp(x + 1, Width - 1)]);
            }
            // a quarter of the sum, to the nearest integer, ties to even
            int rest = 4 * relief[y][x] - sum;
            if (rest < -2 || rest > 2 || ((rest == 2 || rest == -2) && relief[y][x] % 2 != 0)) {
                printf("pixel (%d, %d) is %d, expected a quarter of %d\n", x, y, relief[y][x], sum);
                return 1;
            }
        }
    return 0;
}
