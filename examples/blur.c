#include <lumcv/lumcv.h>
#include <stdio.h>
#include <stdlib.h>

int main(void)
{
    Lum8u image[32][32] = {[16][16] = 255}, soft[32][32];
    LumiSize size = {32, 32};
    Lum32s specSize, bufferSize;
    lumiFilterGaussianGetBufferSize(size, 5, lumType8u, 1, &specSize, &bufferSize);
    void *spec = malloc(specSize), *buffer = malloc(bufferSize);
    lumiFilterGaussianInit(size, 5, 1.0f, lumBorderReplicate, lumType8u, 1, spec, buffer);
    LumStatus status = lumiFilterGaussian_8u_C1R(*image, 32, *soft, 32, size, lumBorderReplicate, NULL, spec, buffer);
    printf("status %d, centre %d, beside it %d\n", status, soft[16][16], soft[16][17]);
    free(spec), free(buffer);
    return status;
}
