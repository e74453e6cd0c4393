// Calls the features' example on a bright square: marks stand around its four corners and nowhere else.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <stdlib.h>

LumStatus markCorners(const Lum8u* pSrc, Lum32s srcStep, LumiSize size, Lum32f threshold, Lum32f* pResponse,
                      Lum8u* pCorners);

enum
{
    Width = 48,
    Height = 40,
    Left = 12,
    Right = 35,  // the last bright column
    Top = 9,
    Bottom = 28
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum32f response[Height][Width];
    static Lum8u corners[Height][Width];
    for (int y = Top; y <= Bottom; y++)
        for (int x = Left; x <= Right; x++)
            image[y][x] = 200;
    const LumiSize size = {Width, Height};
    LumStatus status = markCorners(&image[0][0], Width, size, 1e-3f, &response[0][0], &corners[0][0]);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    int near[4] = {0, 0, 0, 0};
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            if (corners[y][x] == 0)
                continue;
            int which = (x > Width / 2 ? 1 : 0) + (y > Height / 2 ? 2 : 0);
            int dx = x > Width / 2 ? x - Right : x - Left;
            int dy = y > Height / 2 ? y - Bottom : y - Top;
            if (abs(dx) > 4 || abs(dy) > 4) {
                printf("a corner at (%d, %d)\n", x, y);
                return 1;
            }
            near[which]++;
        }
    for (int i = 0; i < 4; i++)
        if (near[i] == 0) {
            printf("corner %d is missing\n", i);
            return 1;
        }
    return 0;
}
