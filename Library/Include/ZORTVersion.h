/// @file ZORTVersion.h
/// The library's version. The build reads its project version from these three lines.
#ifndef ZORTVERSION_H
#define ZORTVERSION_H

#define ZORTEXLIB_VERSION_MAJOR 0
#define ZORTEXLIB_VERSION_MINOR 1
#define ZORTEXLIB_VERSION_PATCH 0
#define ZORTEXLIB_VERSION_STRING "0.1.0"

#endif // ZORTVERSION_H
