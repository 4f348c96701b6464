/// @file Pixel.h
/// One pixel of a standard layout.
#ifndef ZORT_PIXEL_H
#define ZORT_PIXEL_H

namespace zortexture
{
/// Four elements of `unsigned char`, `unsigned short`, `unsigned int` or `float`. Images of them are stored x fastest,
/// then y, then z.
template<typename T>
struct Pixel
{
	T r;
	T g;
	T b;
	T a;
};
} // namespace zortexture

#endif // ZORT_PIXEL_H
