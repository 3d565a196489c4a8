/* Entry point: no C runtime, the board's loader jumps here. */
#include "app.h"

#ifndef NO_PRODUCT
#ifndef PRODUCT
#define PRODUCT "@(#)LQZ9990001 R2B krd test application"
#endif
__attribute__((used)) const char app_product[] = PRODUCT;
#endif

static volatile int app_result;

static int app_start_value(void)
{
    return 3;
}

void _start(void)
{
    app_result = app_dispatch(app_start_value());
    for (;;)
        ;
}
