// Calls the Gaussian's example on two images and compares with the weighted mean in double precision.
#include <lumcv/lumcv.h>
#include <math.h>
#include <stdio.h>

LumStatus blurFrames(const Lum8u* frames, Lum8u* blurred, int count, LumiSize roiSize);

enum
{
    Frames = 2,
    Width = 29,
    Height = 13
};

static int clamp(int value, int last)
{
    return value < 0 ? 0 : value > last ? last : value;
}

int main(void)
{
    static Lum8u frames[Frames][Height][Width];
    static Lum8u blurred[Frames][Height][Width];
    unsigned random = 1;
    for (int n = 0; n < Frames * Width * Height; n++) {
        random = random * 1664525u + 1013904223u;
        (&frames[0][0][0])[n] = (Lum8u)(random >> 24);
    }

    LumiSize roiSize = {Width, Height};
    LumStatus status = blurFrames(&frames[0][0][0], &blurred[0][0][0], Frames, roiSize);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int n = 0; n < Frames; n++)
        for (int y = 0; y < Height; y++)
            for (int x = 0; x < Width; x++) {
                double sum = 0.0;
                double weights = 0.0;
                for (int j = -2; j <= 2; j++)
                    for (int i = -2; i <= 2; i++) {
                        double weight = exp(-(i * i + j * j) / (2.0 * 1.2 * 1.2));
                        weights += weight;
                        sum += weight * frames[n][clamp(y + j, Height - 1)][clamp(x + i, Width - 1)];
                    }
                // half a step of rounding on store; 255 * 20 operations * 2^-24 stay far below the rest
                if (fabs(blurred[n][y][x] - sum / weights) > 0.5 + 0.001) {
                    printf("frame %d, pixel (%d, %d) is %d, expected %.3f\n", n, x, y, blurred[n][y][x], sum / weights);
                    return 1;
                }
            }
    return 0;
}
