// Calls the labels' example on a ring around a dot, with a second dot that touches the ring at a corner alone.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus labelObjects(const Lum8u* pObjects, Lum32s objectsStep, Lum32s* pLabels, Lum32s labelsStep, LumiSize roiSize,
                       Lum32s* pNumber);

enum
{
    Width = 9,
    Height = 7
};

static const char* const drawing[Height] = {
    ".......#.",  //
    ".#####...",  //
    ".#...#...",  //
    ".#.#.#...",  //
    ".#...#...",  //
    ".#####...",  //
    "......#..",  //
};

// the dot on top comes first in raster order, then the ring with the dot at its corner, then the one inside
static const char* const expected[Height] = {
    ".......1.",  //
    ".22222...",  //
    ".2...2...",  //
    ".2.3.2...",  //
    ".2...2...",  //
    ".22222...",  //
    "......2..",  //
};

int main(void)
{
    static Lum8u objects[Height][Width];
    static Lum32s labels[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            objects[y][x] = drawing[y][x] == '#' ? (Lum8u)(1 + x) : 0;

    LumiSize roiSize = {Width, Height};
    Lum32s number = -1;
    LumStatus status =
        labelObjects(&objects[0][0], Width, &labels[0][0], Width * (int)sizeof(Lum32s), roiSize, &number);
    if (status != lumOk || number != 3) {
        printf("status %d, %d objects\n", status, number);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            if (labels[y][x] != (expected[y][x] == '.' ? 0 : expected[y][x] - '0')) {
                printf("pixel (%d, %d) is %d\n", x, y, labels[y][x]);
                return 1;
            }
    return 0;
}
