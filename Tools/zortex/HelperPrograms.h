/// @file HelperPrograms.h
/// Programs that the library starts.
#ifndef ZORTEX_HELPER_PROGRAMS_H
#define ZORTEX_HELPER_PROGRAMS_H

#include <ZORTexLib.h>
#include <string>

namespace zortex
{
/// Puts the folder of the helper programs that came with this one first on the search path of this process, if it is there.
void putHelpersOnPath();

/// What a user should know when a conversion between two formats has failed: why the program behind one of them may be the reason. Starts
/// with ": "; empty when neither format needs a program.
std::string helperProblem(zortexture::PixelType source, zortexture::PixelType target);
} // namespace zortex

#endif // ZORTEX_HELPER_PROGRAMS_H
