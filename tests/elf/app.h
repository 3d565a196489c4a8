/* A small program for symbol and call trace tests: a few frames deep,
   one function in a sub-folder, one with a C++ symbol name. */
#ifndef APP_H
#define APP_H

int app_dispatch(int n);
int app_level1(int n);
int app_level2(int n);
int app_deep(int n);
int app_probe(int n) __asm__("_ZN3krd5probeEi");

extern int app_table[8];

#endif
