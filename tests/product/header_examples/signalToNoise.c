// Calls the deviation's example on a surface of two brightnesses within a dark image.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus signalToNoise(const Lum16u* pSrc, Lum32s srcStep, LumiRect surface, Lum64f* pRatio);

enum
{
    Width = 50,
    Height = 20
};

int main(void)
{
    static Lum16u image[Height][Width];
    for (int y = 4; y < 16; y++)
        for (int x = 7; x < 41; x++)
            image[y][x] = (x + y) % 2 ? 3300 : 2700;

    LumiRect surface = {7, 4, 34, 12};
    Lum64f ratio = 0.0;
    LumStatus status = signalToNoise(&image[0][0], sizeof image[0], surface, &ratio);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    // mean 3000, deviation 300
    if (ratio < 9.999999 || ratio > 10.000001) {
        printf("ratio %g, expected 10\n", ratio);
        return 1;
    }
    return 0;
}
