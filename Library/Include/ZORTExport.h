/// @file ZORTExport.h
/// Marks what the library exports: everything else stays hidden in the shared library.
#ifndef ZORTEXPORT_H
#define ZORTEXPORT_H

#if defined(__GNUC__) || defined(__clang__)
#define ZORT_API __attribute__((visibility("default")))
#else
#define ZORT_API
#endif

#endif // ZORTEXPORT_H
