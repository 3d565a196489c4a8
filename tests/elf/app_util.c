/* Middle frames: a switch, a loop and a helper that -O2 inlines. */
#include "app.h"

int app_table[8] = { 1, 2, 3, 5, 8, 13, 21, 34 };

static inline int app_scale(int v)
{
    if (v > 4)
        return v * 3;
    return v + app_table[v & 7];
}

int app_dispatch(int n)
{
    int sum = 0;

    switch (n) {
    case 0:
        sum = app_probe(n);
        break;
    case 1:
        sum = app_level1(n) + 1;
        break;
    default:
        for (int i = 0; i < n; i++)
            sum += app_level1(i);
        break;
    }
    return sum;
}

int app_level1(int n)
{
    int v = app_scale(n);

    if (v & 1)
        v = app_level2(v);
    return v + app_probe(n);
}

int app_level2(int n)
{
    return app_deep(n) - 1;
}

int app_probe(int n)
{
    return app_table[n & 7] ^ n;
}
