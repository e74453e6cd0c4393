// Calls the pyramids' example: a flat image stays as it is, and a checkerboard of single pixels becomes gray.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus coarsen(const Lum8u* pSrc, Lum8u* pDst, Lum32s step, LumiSize size);

enum
{
    Width = 37,
    Height = 22
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u coarse[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = (Lum8u)(x < 16 ? 77 : 100 + 40 * ((x + y) % 2));

    LumiSize size = {Width, Height};
    LumStatus status = coarsen(&image[0][0], &coarse[0][0], Width, size);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 4; y < Height - 4; y++)
        for (int x = 0; x < Width - 4; x++) {
            const int expected = x < 12 ? 77 : 120;
            if ((x < 12 || x > 20) && coarse[y][x] != expected) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, coarse[y][x], expected);
                return 1;
            }
        }
    return 0;
}
