// Calls the watershed's example on two basins with a ridge between them: each keeps to its side of the ridge.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus separate(const Lum8u* pHeight, Lum32s heightStep, Lum8u* pMarker, Lum32s markerStep, LumiSize roiSize);

enum
{
    Width = 61,
    Height = 25,
    Ridge = 23
};

int main(void)
{
    static Lum8u height[Height][Width];
    static Lum8u marker[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            height[y][x] = (Lum8u)(200 - 3 * (x < Ridge ? Ridge - x : x - Ridge));
    marker[12][2] = 1;
    marker[5][50] = 2;

    LumiSize roiSize = {Width, Height};
    LumStatus status = separate(&height[0][0], Width, &marker[0][0], Width, roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++) {
        int boundaries = 0;
        for (int x = 0; x < Width; x++) {
            int found = marker[y][x];
            boundaries += found == 255;
            int isRight = found == (x < Ridge ? 1 : 2) || (found == 255 && x >= Ridge - 1 && x <= Ridge + 1);
            if (x != Ridge && !isRight) {
                printf("pixel (%d, %d) is %d\n", x, y, found);
                return 1;
            }
        }
        if (boundaries == 0) {
            printf("no boundary in row %d\n", y);
            return 1;
        }
    }
    return 0;
}
