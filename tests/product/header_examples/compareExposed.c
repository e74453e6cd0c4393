// Calls the statistics' example: what is overexposed does not count, and what does differs by a tenth.
#include <lumcv/lumcv.h>
#include <math.h>
#include <stdio.h>

LumStatus compareExposed(const Lum8u* pFirst, const Lum8u* pSecond, Lum32s step, LumiSize size, Lum8u* pMask,
                         Lum64f* pDifference);

enum
{
    Width = 33,
    Height = 7
};

int main(void)
{
    static Lum8u first[Height][Width];
    static Lum8u second[Height][Width];
    static Lum8u mask[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            first[y][x] = x % 5 == 0 ? 255 : 110;
            second[y][x] = 100;
        }
    LumiSize size = {Width, Height};
    Lum64f difference = -1.0;
    LumStatus status = compareExposed(&first[0][0], &second[0][0], Width, size, &mask[0][0], &difference);
    if (status != lumOk || fabs(difference - 0.1) > 1e-12) {
        printf("status %d, difference %f\n", status, difference);
        return 1;
    }
    // black pictures: nothing is exposed well
    static const Lum8u black[Height][Width];
    status = compareExposed(&black[0][0], &black[0][0], Width, size, &mask[0][0], &difference);
    if (status != lumOk || difference != 0.0) {
        printf("of black pictures: status %d, difference %f\n", status, difference);
        return 1;
    }
    return 0;
}
