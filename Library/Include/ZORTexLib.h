/// @file ZORTexLib.h
/// Includes every public header of the library.
#ifndef ZORTEXLIB_H
#define ZORTEXLIB_H

#include "ASTCCodec.h"
#include "Channels.h"
#include "Comparison.h"
#include "DXTCodec.h"
#include "ETCCodec.h"
#include "FormatMaps.h"
#include "Geometry.h"
#include "LegacyTexture.h"
#include "MIPMaps.h"
#include "NormalMap.h"
#include "Pixel.h"
#include "PixelEncoder.h"
#include "PixelType.h"
#include "Resampling.h"
#include "SimpleCodecs.h"
#include "StringUtils.h"
#include "TesselCodec.h"
#include "TesselCompressor.h"
#include "TesselIICompressor.h"
#include "Transcode.h"
#include "ZORTDefines.h"
#include "ZORTMetaData.h"
#include "ZORTUtilities.h"
#include "ZORTVersion.h"
#include "ZORTexture.h"
#include "ZORTextureHeader.h"

#endif // ZORTEXLIB_H
