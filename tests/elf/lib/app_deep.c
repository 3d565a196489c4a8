/* The innermost frame, from a sub-folder so the line table has a directory. */
#include "../app.h"

static int app_deep_step(int v)
{
    return (v << 1) | 1;
}

int app_deep(int n)
{
    int v = n;

    while (v < 100)
        v = app_deep_step(v);
    return v;
}
