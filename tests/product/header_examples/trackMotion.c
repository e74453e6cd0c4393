// Calls the motion's example on a gray wall, before which a white square appears, with a white dot beside it.
#include <lumcv/lumcv.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

LumStatus trackMotion(const Lum8u* pFrame, LumiSize size, LumFGMMState* pState, Lum32f seconds, Lum8u* pClasses,
                      Lum8u* pClean, Lum32f* pHistory);

enum
{
    Width = 30,
    Height = 20,
    Frames = 60
};

static int isSquare(int x, int y)
{
    return x >= 10 && x < 16 && y >= 5 && y < 11;
}

int main(void)
{
    static Lum8u frame[Height][Width][3];
    static Lum8u classes[Height][Width];
    static Lum8u clean[Height][Width];
    static Lum32f history[Height][Width];
    const LumiSize size = {Width, Height};
    const LumFGMMModel model = {200, 5, 15.0f, 4.0f, 75.0f, 16.0f, 0.9f, 9.0f, 0.05f, 127, 1, 0.5f};
    Lum32s stateBytes = 0;
    LumStatus status = lumiFGMMGetBufferSize_8u_C3R(size, 5, &stateBytes);
    LumFGMMState* state = malloc((size_t)stateBytes);
    if (status == lumOk)
        status = lumiFGMMInit_8u_C3R(size, 5, &model, state);

    for (int i = 0; i < Frames && status == lumOk; i++) {
        memset(frame, 90, sizeof frame);
        if (i == Frames - 1)
            for (int y = 0; y < Height; y++)
                for (int x = 0; x < Width; x++)
                    if (isSquare(x, y) || (x == 25 && y == 15))
                        memset(frame[y][x], 250, 3);
        status = trackMotion(&frame[0][0][0], size, state, (Lum32f)i, &classes[0][0], &clean[0][0], &history[0][0]);
    }
    free(state);
    if (status != lumOk) {
        printf("status %d\n", status);
        return 1;
    }
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++) {
            const int isCorner = (x == 10 || x == 15) && (y == 5 || y == 10);
            const Lum32f expected = isSquare(x, y) && !isCorner ? (Lum32f)(Frames - 1) : 0.0f;
            if (history[y][x] != expected) {
                printf("stamp (%d, %d) is %f\n", x, y, history[y][x]);
                return 1;
            }
        }
    return 0;
}
