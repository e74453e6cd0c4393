// Calls the Haar example on an image with one vertical edge: dark on the left of it, bright on the right.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus keepEdges(const Lum8u* pSrc, Lum32s srcStep, LumiSize imageSize, Lum8u* pMask, Lum32s maskStep,
                    Lum32s* pCount);

enum
{
    Width = 40,
    Height = 19,
    Edge = 21,
    PlacesX = Width - 7,
    PlacesY = Height - 7
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u mask[PlacesY][PlacesX];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = x < Edge ? 30 : 200;
    for (int y = 0; y < PlacesY; y++)
        for (int x = 0; x < PlacesX; x++)
            mask[y][x] = 1;

    LumiSize imageSize = {Width, Height};
    Lum32s count = PlacesX * PlacesY;
    LumStatus status = keepEdges(&image[0][0], Width, imageSize, &mask[0][0], PlacesX, &count);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    if (count != PlacesY) {
        printf("%d places kept, expected %d\n", count, PlacesY);
        return 1;
    }
    for (int y = 0; y < PlacesY; y++)
        for (int x = 0; x < PlacesX; x++)
            if ((mask[y][x] != 0) != (x == Edge - 4)) {
                printf("mask byte (%d, %d) is %d\n", x, y, mask[y][x]);
                return 1;
            }
    return 0;
}
