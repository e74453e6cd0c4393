// Calls the subpixel copies' example on a ramp, inside the image and at its corner.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus cutPatch(const Lum8u* pSrc, Lum32s srcStep, LumiSize srcSize, LumiPoint32f feature, Lum8u patch[31][32],
                   int* pIsWhole);

enum
{
    Width = 100,
    Height = 60
};

static Lum8u image[Height][Width];
static Lum8u patch[31][32];

static int expectPixel(int x, int y, int expected)
{
    if (patch[y][x] == expected)
        return 0;
    printf("pixel (%d, %d) is %d, expected %d\n", x, y, patch[y][x], expected);
    return 1;
}

int main(void)
{
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = (Lum8u)(2 * x);

    const LumiSize size = {Width, Height};
    int isWhole = 0;
    const LumiPoint32f inside = {40.5f, 30};
    if (cutPatch(&image[0][0], Width, size, inside, patch, &isWhole) != lumOk || !isWhole) {
        printf("the patch inside is not whole\n");
        return 1;
    }
    int failed = expectPixel(0, 0, 51) | expectPixel(15, 15, 81) | expectPixel(30, 30, 111);

    const LumiPoint32f corner = {99, 59};
    if (cutPatch(&image[0][0], Width, size, corner, patch, &isWhole) != lumOk || isWhole) {
        printf("the patch at the corner is whole\n");
        return 1;
    }
    failed |= expectPixel(0, 0, 168) | expectPixel(15, 0, 198) | expectPixel(30, 30, 198);
    return failed;
}
