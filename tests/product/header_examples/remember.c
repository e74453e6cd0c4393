// Calls the motion history's example: a dot that moves on by a pixel each half second leaves a trail of two seconds.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus remember(const Lum8u* pMask, Lum32s maskStep, Lum32f* pHistory, Lum32s historyStep, LumiSize roiSize,
                   Lum32f seconds);

enum
{
    Width = 40
};

int main(void)
{
    static Lum32f history[Width];
    LumiSize roiSize = {Width, 1};
    for (int i = 0; i < Width; i++) {
        Lum8u mask[Width] = {0};
        mask[i] = 255;
        LumStatus status = remember(mask, Width, history, Width * (int)sizeof(Lum32f), roiSize, (Lum32f)i / 2 + 1);
        if (status != lumOk) {
            printf("status %d\n", status);
            return 1;
        }
    }
    for (int x = 0; x < Width; x++) {
        const Lum32f expected = x < Width - 5 ? 0.0f : (Lum32f)x / 2 + 1;
        if (history[x] != expected) {
            printf("pixel %d is %g\n", x, (double)history[x]);
            return 1;
        }
    }
    return 0;
}
