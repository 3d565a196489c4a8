/* A small board program for call trace tests. Each function has its own
   section so that app.ld can put it at a fixed address. */

#ifdef PRODUCT
const char product_string[] __attribute__((used)) = PRODUCT;
#endif

volatile int counter;

int leaf(int x) {
    counter += x;
    return counter * 2;
}

/* A C++ member function, spelled as the C++ compiler names it. */
int worker_handle(int x) __asm__("_ZN6Worker6handleEi");
int worker_handle(int x) {
    int r = leaf(x + 1);
    return r + 3;
}

int dispatch(int n) {
    int total = 0;
    for (int i = 0; i < n; i++)
        total += worker_handle(i);
    return total;
}

int main(void) {
    return dispatch(4);
}
