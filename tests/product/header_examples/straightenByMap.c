// Calls the geometry's example with maps of a camera without distortion, which leave a picture as it is, and with those
// of one that looks beside it.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <string.h>

LumStatus straightenByMap(const Lum32u* pSrc, Lum32u* pDst, LumiSize size, const Lum32f* pMapX, const Lum32f* pMapY);

enum
{
    Width = 33,
    Height = 17
};

int main(void)
{
    static Lum32u picture[Height][Width];
    static Lum32u result[Height][Width];
    static Lum32f mapX[Height][Width];
    static Lum32f mapY[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            picture[y][x] = (Lum32u)(1 + x + 100 * y);

    const LumiSize size = {Width, Height};
    LumStatus status = lumiCreateMapCameraUndistort_32f_C1R(&mapX[0][0], Width * 4, &mapY[0][0], Width * 4, size, 30.0f,
                                                            30.0f, 16.0f, 8.0f, 0.0f, 0.0f, 0.0f, 0.0f, NULL);
    if (status == lumOk)
        status = straightenByMap(&picture[0][0], &result[0][0], size, &mapX[0][0], &mapY[0][0]);
    if (status != lumOk || memcmp(picture, result, sizeof picture) != 0) {
        printf("status %d, or the picture has changed\n", status);
        return 1;
    }
    // the corners of a barrel come from beyond the picture
    status = lumiCreateMapCameraUndistort_32f_C1R(&mapX[0][0], Width * 4, &mapY[0][0], Width * 4, size, 30.0f, 30.0f,
                                                  16.0f, 8.0f, 1.0f, 0.0f, 0.0f, 0.0f, NULL);
    if (status == lumOk)
        status = straightenByMap(&picture[0][0], &result[0][0], size, &mapX[0][0], &mapY[0][0]);
    if (status != lumOk || result[0][0] != 0 || result[8][16] != picture[8][16]) {
        printf("status %d, corner %u, centre %u\n", status, (unsigned)result[0][0], (unsigned)result[8][16]);
        return 1;
    }
    return 0;
}
