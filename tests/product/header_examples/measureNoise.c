// Calls the accumulation's example on frames that alternate between two values at each pixel: the mean lies in the
// middle, the deviation is half of the difference.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus measureNoise(const Lum8u* pFrames, int count, LumiSize size, Lum32f* pMean, Lum32f* pDeviation);

enum
{
    Width = 21,
    Height = 5,
    Count = 8
};

int main(void)
{
    static Lum8u frames[Count][Height][Width];
    static Lum32f mean[Height][Width];
    static Lum32f deviation[Height][Width];
    for (int i = 0; i < Count; i++)
        for (int y = 0; y < Height; y++)
            for (int x = 0; x < Width; x++)
                frames[i][y][x] = (Lum8u)(100 + (i % 2 ? x : -x));

    LumiSize size = {Width, Height};
    LumStatus status = measureNoise(&frames[0][0][0], Count, size, &mean[0][0], &deviation[0][0]);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            if (mean[y][x] != 100.0f || deviation[y][x] != (Lum32f)x) {
                printf("pixel (%d, %d): mean %f, deviation %f\n", x, y, mean[y][x], deviation[y][x]);
                return 1;
            }
    return 0;
}
