// Calls the segmentation's example on a ring with a gap and on one without: only the closed one is filled.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus fillHoles(Lum8u* pObjects, Lum32s step, LumiSize size, Lum8u* pBordered);

enum
{
    Width = 40,
    Height = 20
};

static Lum8u objects[Height][Width];

static void drawFrame(int left, int top, int right, int bottom)
{
    for (int y = top; y <= bottom; y++)
        for (int x = left; x <= right; x++)
            if (y == top || y == bottom || x == left || x == right)
                objects[y][x] = 255;
}

int main(void)
{
    static Lum8u bordered[Height + 2][Width + 2];
    drawFrame(0, 0, 12, 14);   // at the picture's edge, closed
    drawFrame(20, 3, 35, 18);  // with a gap
    objects[3][28] = 0;
    const LumiSize size = {Width, Height};
    LumStatus status = fillHoles(&objects[0][0], Width, size, &bordered[0][0]);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 1; y < 14; y++)
        for (int x = 1; x < 12; x++)
            if (objects[y][x] != 255) {
                printf("the hole is open at (%d, %d)\n", x, y);
                return 1;
            }
    for (int y = 4; y < 18; y++)
        for (int x = 21; x < 35; x++)
            if (objects[y][x] != 0) {
                printf("filled at (%d, %d)\n", x, y);
                return 1;
            }
    return 0;
}
