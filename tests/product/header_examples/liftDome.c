// Calls the gray-element example on a plane with a pit: around it, the dome's flank decides.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus liftDome(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 37,
    Height = 11,
    PitX = 20,
    PitY = 5
};

int main(void)
{
    static const int dome[5][5] = {{0, 1, 2, 1, 0}, {1, 3, 4, 3, 1}, {2, 4, 5, 4, 2}, {1, 3, 4, 3, 1}, {0, 1, 2, 1, 0}};
    static Lum8u image[Height][Width];
    static Lum8u lifted[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = 100;
    image[PitY][PitX] = 50;

    LumiSize roiSize = {Width, Height};
    LumStatus status = liftDome(&image[0][0], Width, &lifted[0][0], Width, roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int i = PitX - x + 2, j = PitY - y + 2;
            int expected = i >= 0 && i < 5 && j >= 0 && j < 5 ? 50 - dome[j][i] : 95;
            if (lifted[y][x] != expected) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, lifted[y][x], expected);
                return 1;
            }
        }
    return 0;
}
