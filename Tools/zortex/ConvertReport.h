/// @file ConvertReport.h
/// What a conversion tells when it is done.
#ifndef ZORTEX_CONVERT_REPORT_H
#define ZORTEX_CONVERT_REPORT_H

#include <ZORTexLib.h>
#include <optional>
#include <string>
#include <vector>

#include "Measure.h"

namespace zortex
{
struct ConvertReport
{
	std::string inputPath;
	zortexture::CZORTextureHeader input;
	unsigned long long inputFileBytes = 0;

	std::string outputPath;
	zortexture::CZORTextureHeader output;
	unsigned long long outputFileBytes = 0;

	/// Bytes of pixels before and after the last conversion; their quotient is the ratio.
	unsigned long long bytesBefore = 0;
	unsigned long long bytesAfter = 0;
	/// Of the last conversion alone.
	double seconds = 0.0;
	int quality = 0;
	bool dither = false;
	/// Where the conversion can lose something.
	std::optional<Measurement> measurement;
	std::vector<std::string> notes;
};

std::string reportText(const ConvertReport& report);
std::string reportJson(const ConvertReport& report);
} // namespace zortex

#endif // ZORTEX_CONVERT_REPORT_H
