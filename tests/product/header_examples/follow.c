// Calls the optical flow's example on a wavy picture that has moved by (2, 1).
#include <lumcv/lumcv.h>
#include <math.h>
#include <stdio.h>

LumStatus follow(Lum8u* pFirst, Lum8u* pSecond, Lum32s step, LumiSize size, const Lum32f* pPrev, Lum32f* pNext,
                 Lum8s* pStatus, Lum32f* pError, Lum32s count);

enum
{
    Width = 70,
    Height = 60,
    Count = 3
};

static Lum8u shade(int x, int y)
{
    return (Lum8u)(128.5 + 60 * sin(0.2 * x + 0.1 * y) + 50 * cos(0.25 * y - 0.1 * x));
}

int main(void)
{
    static Lum8u first[Height][Width];
    static Lum8u second[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            first[y][x] = shade(x, y);
            second[y][x] = shade(x - 2, y - 1);
        }
    // the last point lies far outside
    const Lum32f prev[2 * Count] = {30.0f, 25.0f, 41.5f, 33.25f, 500.0f, 20.0f};
    Lum32f next[2 * Count] = {0};
    Lum8s lost[Count];
    Lum32f error[Count];
    LumiSize size = {Width, Height};
    LumStatus status = follow(&first[0][0], &second[0][0], Width, size, prev, next, lost, error, Count);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int i = 0; i < Count; i++) {
        if (lost[i] != (i == Count - 1)) {
            printf("point %d has the status %d\n", i, lost[i]);
            return 1;
        }
        if (!lost[i] && (fabsf(next[2 * i] - prev[2 * i] - 2) > 0.02f ||
                         fabsf(next[2 * i + 1] - prev[2 * i + 1] - 1) > 0.02f || error[i] > 1)) {
            printf("point %d went to (%g, %g), error %g\n", i, next[2 * i], next[2 * i + 1], error[i]);
            return 1;
        }
    }
    return 0;
}
