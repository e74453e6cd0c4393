// Calls the example of segments on a part of a row: it is found with its ends, and nothing else.
#include <lumcv/lumcv.h>
#include <stdio.h>

LumStatus findSegments(const Lum8u* pEdges, Lum32s step, LumiSize size, Lum32s (*segments)[4], Lum32s maxCount,
                       Lum32s* pCount);

enum
{
    Width = 150,
    Height = 80,
    Row = 37,
    First = 20,
    Last = 99,
    MaxCount = 8
};

int main(void)
{
    static Lum8u edges[Height][Width];
    for (int x = First; x <= Last; x++)
        edges[Row][x] = x != 50 ? 255 : 0;

    LumiSize size = {Width, Height};
    Lum32s segments[MaxCount][4];
    Lum32s count = -1;
    LumStatus status = findSegments(&edges[0][0], Width, size, segments, MaxCount, &count);
    if (status != lumOk || count != 1) {
        printf("status %d, %d segments\n", status, count);
        return 1;
    }
    const Lum32s* s = segments[0];
    int left = s[0] < s[2] ? 0 : 2;
    if (s[left] != First || s[2 - left] != Last || s[1] != Row || s[3] != Row) {
        printf("(%d, %d) to (%d, %d)\n", s[0], s[1], s[2], s[3]);
        return 1;
    }
    return 0;
}
