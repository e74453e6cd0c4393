// Calls the Canny example on a bright square: its outline comes out, one pixel wide, and nothing else.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <stdlib.h>

LumStatus drawEdges(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize roiSize);

enum
{
    Width = 41,
    Height = 23,
    First = 6,
    Last = 15
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u edges[Height][Width];
    for (int y = First; y <= Last; y++)
        for (int x = First; x <= Last; x++)
            image[y][x] = 100;

    LumiSize roiSize = {Width, Height};
    LumStatus status = drawEdges(&image[0][0], Width, &edges[0][0], Width, roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    // the gradients on both sides of an outline are alike, so that the first one of them stays
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            int isBetweenRows = y > First && y<Last, isBetweenColumns = x> First && x < Last;
            int isSide = isBetweenRows && (x == First - 1 || x == Last);
            int isEnd = isBetweenColumns && (y == First - 1 || y == Last);
            // a corner is rounded off; what becomes of the pixels right beside it does not matter here
            int isCorner = (abs(x - First) < 2 || abs(x - Last) < 2) && (abs(y - First) < 2 || abs(y - Last) < 2);
            if (!isCorner && edges[y][x] != (isSide || isEnd ? 255 : 0)) {
                printf("pixel (%d, %d) is %d\n", x, y, edges[y][x]);
                return 1;
            }
        }
    return 0;
}
