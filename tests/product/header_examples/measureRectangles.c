// Calls the integral images' example on rectangles of a picture whose means are easily told.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus measureRectangles(const Lum8u* pSrc, Lum32s srcStep, LumiSize size, const LumiRect* pRects, int count,
                            Lum64f* pMeans);

enum
{
    Width = 50,
    Height = 31
};

int main(void)
{
    static Lum8u image[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = (Lum8u)(4 * x + y);

    const LumiSize size = {Width, Height};
    const LumiRect rects[4] = {{0, 0, Width, Height}, {0, 0, 1, 1}, {49, 30, 1, 1}, {10, 4, 7, 3}};
    const Lum64f expected[4] = {4 * 24.5 + 15, 0, 4 * 49 + 30, 4 * 13 + 5};
    Lum64f means[4];
    LumStatus status = measureRectangles(&image[0][0], Width, size, rects, 4, means);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int i = 0; i < 4; i++)
        if (means[i] != expected[i]) {
            printf("mean %d is %f, expected %f\n", i, means[i], expected[i]);
            return 1;
        }
    return 0;
}
