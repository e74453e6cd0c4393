// Calls the guide's example for each of several bands, and holds the result against one call over the whole picture.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

LumStatus blurBand(const Lum8u* pSrc, Lum32s srcStep, Lum8u* pDst, Lum32s dstStep, LumiSize size, int band, int bands,
                   const LumFilterGaussianSpec* pSpec, Lum8u* pScratch);

enum
{
    Width = 70,
    Height = 53,
    Bands = 4,
    KernelSize = 7
};

int main(void)
{
    static Lum8u image[Height][Width];
    static Lum8u whole[Height][Width];
    static Lum8u parts[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            image[y][x] = (Lum8u)(x * x * 7 + y * y * 3 + x * y);

    LumiSize size = {Width, Height};
    Lum32s specBytes = 0, bufferBytes = 0;
    LumStatus status = lumiFilterGaussianGetBufferSize(size, KernelSize, lumType8u, 1, &specBytes, &bufferBytes);
    if (status != lumOk)
        return 1;
    LumFilterGaussianSpec* spec = malloc((size_t)specBytes);
    Lum8u* buffer = malloc((size_t)bufferBytes);
    status = lumiFilterGaussianInit(size, KernelSize, 1.5f, lumBorderReplicate, lumType8u, 1, spec, buffer);
    if (status == lumOk)
        status = lumiFilterGaussian_8u_C1R(&image[0][0], Width, &whole[0][0], Width, size, lumBorderReplicate, NULL,
                                           spec, buffer);
    for (int band = 0; band < Bands && status == lumOk; band++)
        status = blurBand(&image[0][0], Width, &parts[0][0], Width, size, band, Bands, spec, buffer);
    free(buffer);
    free(spec);
    if (status != lumOk || memcmp(whole, parts, sizeof whole) != 0) {
        printf("status %d, the bands %s\n", status, memcmp(whole, parts, sizeof whole) ? "differ" : "fit");
        return 1;
    }
    return 0;
}
