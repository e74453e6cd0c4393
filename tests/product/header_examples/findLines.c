// Calls the example of lines on a column and a row of points: both are found, and the rest are neighbours of theirs.
#include <lumcv/lumcv.h>
#include <math.h>
#include <stdio.h>

LumStatus findLines(const Lum8u* pEdges, Lum32s step, LumiSize size, LumiPointPolar lines[10], Lum32s* pCount);

enum
{
    Width = 120,
    Height = 90,
    Column = 33,
    Row = 57
};

int main(void)
{
    static Lum8u edges[Height][Width];
    for (int y = 0; y < Height; y++)
        edges[y][Column] = 255;
    for (int x = 0; x < Width; x++)
        edges[Row][x] = 255;

    LumiSize size = {Width, Height};
    LumiPointPolar lines[10];
    Lum32s count = -1;
    LumStatus status = findLines(&edges[0][0], Width, size, lines, &count);
    if (status != lumOk || count < 2) {
        printf("status %d, %d lines\n", status, count);
        return 1;
    }
    // with a point for each column, the row has the most votes
    if (fabsf(lines[0].theta - 1.5708f) > 0.01f || fabsf(lines[0].rho - Row) > 1 || lines[1].theta != 0 ||
        fabsf(lines[1].rho - Column) > 1) {
        printf("rho %f, theta %f; rho %f, theta %f\n", lines[0].rho, lines[0].theta, lines[1].rho, lines[1].theta);
        return 1;
    }
    const float away = 0.06f;
    for (int i = 0; i < count; i++)
        if (lines[i].theta > away && lines[i].theta < 3.1416f - away && fabsf(lines[i].theta - 1.5708f) > away) {
            printf("a line with theta %f\n", lines[i].theta);
            return 1;
        }
    return 0;
}
