// Calls the background model's example on a wall with a flicker and a square that enters in the last frame.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <string.h>

LumStatus watch(const Lum8u* const* pFrames, Lum8u* const* pMasks, int count, LumiSize roiSize, Lum8u* pBackground);

enum
{
    Width = 37,
    Height = 20,
    Count = 12,
    Left = 9,
    Right = 25,
    Top = 5,
    Bottom = 14
};

static Lum8u frames[Count][Height][Width][3];
static Lum8u masks[Count][Height][Width];
static Lum8u background[Height][Width][3];

int main(void)
{
    const Lum8u* pFrames[Count];
    Lum8u* pMasks[Count];
    for (int i = 0; i < Count; i++) {
        for (int y = 0; y < Height; y++)
            for (int x = 0; x < Width; x++) {
                const int enters = i == Count - 1 && x >= Left && x < Right && y >= Top && y < Bottom;
                const Lum8u wall[3] = {(Lum8u)(100 + x), (Lum8u)(80 + y), (Lum8u)(60 + i % 2)};
                const Lum8u square[3] = {20, 200, 240};
                memcpy(frames[i][y][x], enters ? square : wall, 3);
            }
        pFrames[i] = &frames[i][0][0][0];
        pMasks[i] = &masks[i][0][0];
    }
    LumiSize roiSize = {Width, Height};
    LumStatus status = watch(pFrames, pMasks, Count, roiSize, &background[0][0][0]);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            const int enters = x >= Left && x < Right && y >= Top && y < Bottom;
            if (masks[0][y][x] != 255 || masks[Count - 2][y][x] != 0 || masks[Count - 1][y][x] != (enters ? 255 : 0)) {
                printf("pixel (%d, %d) is %d, %d, %d\n", x, y, masks[0][y][x], masks[Count - 2][y][x],
                       masks[Count - 1][y][x]);
                return 1;
            }
            if (background[y][x][0] != 100 + x || background[y][x][1] != 80 + y || background[y][x][2] < 60 ||
                background[y][x][2] > 61) {
                printf("the background of (%d, %d) is %d, %d, %d\n", x, y, background[y][x][0], background[y][x][1],
                       background[y][x][2]);
                return 1;
            }
        }
    return 0;
}
