// Calls the speckles' example on a slope of disparities with a hole in it, a small patch that stands out and a large
// one.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus dropSpeckles(Lum16s* pDisparity, Lum32s disparityStep, LumiSize roiSize, Lum32s largestSpeckle);

enum
{
    Width = 40,
    Height = 24
};

static int isIn(int x, int y, int left, int top, int width, int height)
{
    return x >= left && x < left + width && y >= top && y < top + height;
}

static Lum16s scene(int x, int y)
{
    if (isIn(x, y, 30, 3, 2, 2))
        return 0;
    if (isIn(x, y, 5, 5, 3, 4))
        return -700;
    if (isIn(x, y, 12, 10, 13, 1))
        return 2000;
    return (Lum16s)(100 + 16 * x);  // neighbours differ by the most that joins them
}

int main(void)
{
    static Lum16s disparity[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            disparity[y][x] = scene(x, y);

    LumiSize roiSize = {Width, Height};
    LumStatus status = dropSpeckles(&disparity[0][0], Width * (int)sizeof(Lum16s), roiSize, 12);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            // the small patch has twelve pixels, the large one thirteen
            Lum16s expected = isIn(x, y, 5, 5, 3, 4) ? 0 : scene(x, y);
            if (disparity[y][x] != expected) {
                printf("pixel (%d, %d) is %d\n", x, y, disparity[y][x]);
                return 1;
            }
        }
    return 0;
}
