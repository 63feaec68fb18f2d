// Closes what `unicode/avx2.h` opened.
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
