// Calls the distances' example on a disc: the circle is the disc itself.
#include <lumcv/lumcv.h>
#include <math.h>
#include <stdio.h>

LumStatus findLargestCircle(const Lum8u* pObject, Lum32s objectStep, LumiSize size, LumiPoint* pCentre,
                            Lum32f* pRadius);

enum
{
    Width = 60,
    Height = 45,
    CentreX = 33,
    CentreY = 20
};

int main(void)
{
    static Lum8u object[Height][Width];
    for (int y = 0; y < Height; y++)
        for (int x = 0; x < Width; x++)
            object[y][x] = (x - CentreX) * (x - CentreX) + (y - CentreY) * (y - CentreY) < 12 * 12;
    const LumiSize size = {Width, Height};
    LumiPoint centre = {0, 0};
    Lum32f radius = 0.0f;
    LumStatus status = findLargestCircle(&object[0][0], Width, size, &centre, &radius);
    if (status != lumOk || centre.x != CentreX || centre.y != CentreY || radius != 12.0f) {
        printf("status %d, a circle of %f around (%d, %d)\n", status, radius, centre.x, centre.y);
        return 1;
    }
    return 0;
}
