// Calls the FAST example on a bright square: it lists corners near each of the square's, and nowhere else.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <stdlib.h>

LumStatus listCorners(const Lum8u* pSrc, Lum32s srcStep, LumiSize size, Lum8u* pMap, Lum8u* pScore, Lum32s mapStep,
                      LumCornerFastN* pCorners, Lum32s maxCount, Lum32s* pCount);

enum
{
    Width = 61,
    Height = 43,
    First = 14,
    Last = 30,
    MaxCount = 64
};

int main(void)
{
    static Lum8u image[Height][Width], map[Height][Width], score[Height][Width];
    for (int y = First; y <= Last; y++)
        for (int x = First; x <= Last; x++)
            image[y][x] = 200;

    LumiSize size = {Width, Height};
    LumCornerFastN corners[MaxCount];
    Lum32s count = -1;
    LumStatus status =
        listCorners(&image[0][0], Width, size, &map[0][0], &score[0][0], Width, corners, MaxCount, &count);
    if (status != lumOk || count < 4 || count > MaxCount) {
        printf("status %d, %d corners\n", status, count);
        return 1;
    }
    int found[2][2] = {{0}};
    for (int i = 0; i < count; i++) {
        int right = corners[i].x > (First + Last) / 2, lower = corners[i].y > (First + Last) / 2;
        int dx = abs(corners[i].x - (right ? Last : First)), dy = abs(corners[i].y - (lower ? Last : First));
        if (dx > 2 || dy > 2 || corners[i].cornerType != 1 || corners[i].score != 200.0f) {
            printf("(%d, %d) is no corner\n", corners[i].x, corners[i].y);
            return 1;
        }
        found[lower][right] = 1;
    }
    if (!found[0][0] || !found[0][1] || !found[1][0] || !found[1][1]) {
        printf("a corner was missed\n");
        return 1;
    }
    return 0;
}
