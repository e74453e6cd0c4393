// Calls the flood fill's example on a disc of uneven brightness with a hole: the disc turns white, all else stays.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus paintObject(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum8u* pBuffer,
                      Lum64f* pPixels);

enum
{
    Width = 37,
    Height = 31
};

static int isObject(int x, int y)
{
    const int dx = x - 17, dy = y - 15;
    const int squared = dx * dx + dy * dy;
    return squared <= 144 && squared > 16;
}

static int valueAt(int x, int y)
{
    return isObject(x, y) ? 100 + (x + y) % 8 : 60;
}

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u buffer[6 * Width * Height + 32];
    int pixels = 0;
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            image[y][x] = (Lum8u)valueAt(x, y);
            pixels += isObject(x, y);
        }

    LumiSize roiSize = {Width, Height};
    LumiPoint seed = {17, 7};
    Lum64f found = 0;
    LumStatus status = paintObject(&image[0][0], Width, roiSize, seed, buffer, &found);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    if (found != pixels) {
        printf("%g pixels, expected %d\n", found, pixels);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            const int expected = isObject(x, y) ? 255 : valueAt(x, y);
            if (image[y][x] != expected) {
                printf("pixel (%d, %d) is %d, expected %d\n", x, y, image[y][x], expected);
                return 1;
            }
        }
    return 0;
}
