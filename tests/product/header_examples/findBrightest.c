// Calls the extrema's example on an image whose brightest pixel is a broken one.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus findBrightest(const Lum32f* pSrc, Lum32s srcStep, const Lum8u* pGood, Lum32s goodStep, LumiSize roiSize,
                        LumiPoint* pPlace);

enum
{
    Width = 37,
    Height = 11
};

static int expectPlace(const char* what, LumStatus status, LumiPoint place, LumiPoint expected)
{
    if (status == lumOk && place.x == expected.x && (expected.x < 0 || place.y == expected.y))
        return 0;
    printf("%s: status %d, place (%d, %d), expected (%d, %d)\n", what, status, place.x, place.y, expected.x,
           expected.y);
    return 1;
}

int main(void)
{
    static Lum32f image[Height][Width];
    static Lum8u good[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            image[y][x] = (Lum32f)((x * 7 + y * 3) % 20);
            good[y][x] = 255;
        }
    image[2][3] = 1000.0f;
    good[2][3] = 0;
    image[8][31] = 500.0f;

    LumiSize roiSize = {Width, Height};
    LumiPoint place = {0, 0};
    LumiPoint expected = {31, 8};
    LumStatus status = findBrightest(&image[0][0], sizeof image[0], &good[0][0], Width, roiSize, &place);
    int failed = expectPlace("with good pixels", status, place, expected);

    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            good[y][x] = 0;
    expected.x = -1;
    status = findBrightest(&image[0][0], sizeof image[0], &good[0][0], Width, roiSize, &place);
    return failed | expectPlace("without", status, place, expected);
}
