// Calls the eigenvalues' example on two bright squares: it finds their eight corners and nothing on their edges.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus findCorners(const Lum8u* pSrc, Lum32s srcStep, LumiSize roiSize, Lum32f threshold, LumiPoint* pCorner,
                      Lum32s maxCount, Lum32s* pCount);

enum
{
    Width = 70,
    Height = 40,
    MaxCount = 64
};

static int isInside(int x, int y)
{
    return y >= 10 && y < 30 && ((x >= 10 && x < 30) || (x >= 40 && x < 60));
}

int main(void)
{
    static Lum8u image[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = isInside(x, y) ? 200 : 50;

    LumiSize roiSize = {Width, Height};
    LumiPoint corners[MaxCount];
    Lum32s count = -1;
    LumStatus status = findCorners(&image[0][0], Width, roiSize, 1.0f, corners, MaxCount, &count);
    if (status != lumOk || count < 8) {
        printf("status %d, %d corners\n", status, count);
        return 1;
    }
    static const int xs[4] = {10, 29, 40, 59};
    static const int ys[2] = {10, 29};
    int found[4][2] = {{0}};
    for (int i = 0; i < count; i++) {
        int isNear = 0;
        for (int c = 0; c < 4; c++)
            for (int r = 0; r < 2; r++) {
                int dx = corners[i].x - xs[c];
                int dy = corners[i].y - ys[r];
                if (dx * dx <= 4 && dy * dy <= 4)
                    isNear = found[c][r] = 1;
            }
        if (!isNear) {
            printf("(%d, %d) is no corner\n", corners[i].x, corners[i].y);
            return 1;
        }
    }
    for (int c = 0; c < 4; c++)
        for (int r = 0; r < 2; r++)
            if (!found[c][r]) {
                printf("the corner (%d, %d) was missed\n", xs[c], ys[r]);
                return 1;
            }
    return 0;
}
