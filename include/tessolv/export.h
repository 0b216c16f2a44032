#ifndef TESSOLV_EXPORT_H
#define TESSOLV_EXPORT_H

// Everything else in the shared library has hidden visibility.
#if defined(__GNUC__)
#define TESSOLV_API __attribute__((visibility("default")))
#else
#define TESSOLV_API
#endif

#endif
