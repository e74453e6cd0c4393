// Calls the morphology's example: a small square and a thin line vanish, a large shape keeps even its thin tail.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus keepLargeObjects(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 60,
    Height = 40
};

static Lum8u image[Height][Width];
static Lum8u kept[Height][Width];

static void draw(int left, int top, int width, int height, Lum8u value)
{
    for (int y = top; y < top + height; y++)
        for (int x = left; x < left + width; x++)
            image[y][x] = value;
}

int main(void)
{
    draw(5, 5, 4, 4, 200);     // too small
    draw(2, 30, 50, 2, 150);   // too thin
    draw(30, 8, 12, 10, 180);  // large enough,
    draw(42, 12, 15, 1, 180);  // with a tail
    LumiSize roiSize = {Width, Height};
    LumStatus status = keepLargeObjects(&image[0][0], Width, &kept[0][0], Width, roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int expected = image[y][x] == 180 ? 180 : 0;
            if (kept[y][x] != expected) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, kept[y][x], expected);
                return 1;
            }
        }
    return 0;
}
