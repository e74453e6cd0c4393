// Calls the pyramids' example: sizes halve, a flat picture stays flat, and the levels end at one pixel.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <string.h>

LumStatus buildPyramid(const Lum8u* pSrc, Lum32s srcStep, LumiSize size, int mostLevels, Lum8u* pLevels,
                       LumiSize* pSizes, int* pCount);

enum
{
    Width = 64,
    Height = 32
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u levels[Height * Width];
    memset(image, 77, sizeof image);
    const LumiSize size = {Width, Height};
    LumiSize sizes[10];
    int count = 0;
    LumStatus status = buildPyramid(&image[0][0], Width, size, 10, levels, sizes, &count);
    if (status != lumOk || count != 6) {
        printf("status %d, %d levels\n", status, count);
        return 1;
    }
    size_t pixels = 0;
    for (int i = 0; i < count; i++) {
        const int height = Height >> (i + 1) ? Height >> (i + 1) : 1;
        if (sizes[i].width != Width >> (i + 1) || sizes[i].height != height) {
            printf("level %d has %d x %d pixels\n", i, sizes[i].width, sizes[i].height);
            return 1;
        }
        pixels += (size_t)sizes[i].width * (size_t)sizes[i].height;
    }
    for (size_t i = 0; i < sizeof levels; i++)
        if (levels[i] != (i < pixels ? 77 : 0)) {
            printf("byte %d of the levels is %d\n", (int)i, levels[i]);
            return 1;
        }
    return 0;
}
