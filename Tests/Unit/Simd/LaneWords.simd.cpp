#include "Simd/LaneWords.h"

#include "Simd/Lanes.h"

namespace zortexture
{
template<ESimdLevel level>
unsigned int applyLaneWord(ELaneWord word, const LaneBytes& a, const LaneBytes& b, LaneBytes& result)
{
	const U8 a8 = U8::load(&a);
	const U8 b8 = U8::load(&b);
	const I16 a16 = as<std::int16_t>(a8);
	const I16 b16 = as<std::int16_t>(b8);
	const U16 ua16 = as<std::uint16_t>(a8);
	const U16 ub16 = as<std::uint16_t>(b8);
	const I32 a32 = as<std::int32_t>(a8);
	const I32 b32 = as<std::int32_t>(b8);
	const F32 aFloat = as<float>(a8);
	const F32 bFloat = as<float>(b8);
	switch (word)
	{
	case eAddSaturatedU8:
		addSaturated(a8, b8).store(&result);
		break;
	case eAddSaturatedI8:
		addSaturated(as<std::int8_t>(a8), as<std::int8_t>(b8)).store(&result);
		break;
	case eAddSaturatedU16:
		addSaturated(ua16, ub16).store(&result);
		break;
	case eAddSaturatedI16:
		addSaturated(a16, b16).store(&result);
		break;
	case eSubtractSaturatedU8:
		subtractSaturated(a8, b8).store(&result);
		break;
	case eSubtractSaturatedU16:
		subtractSaturated(ua16, ub16).store(&result);
		break;
	case eSubtractSaturatedI16:
		subtractSaturated(a16, b16).store(&result);
		break;
	case eMultiplyHighU16:
		multiplyHigh(ua16, ub16).store(&result);
		break;
	case eMultiplyHighI16:
		multiplyHigh(a16, b16).store(&result);
		break;
	case eRoundedMean:
		roundedMean(a8, b8).store(&result);
		break;
	case eSumsOfProducts:
		sumsOfProducts(a16, b16).store(&result);
		break;
	case eSumsOfDifferences:
		sumsOfDifferences(a8, b8).store(&result);
		break;
	case ePackSigned16:
		packSigned(a16, b16).store(&result);
		break;
	case ePackSigned32:
		packSigned(a32, b32).store(&result);
		break;
	case ePackUnsigned16:
		packUnsigned(a16, b16).store(&result);
		break;
	case eInterleaveLow8:
		interleaveLow(a8, b8).store(&result);
		break;
	case eInterleaveHigh16:
		interleaveHigh(a16, b16).store(&result);
		break;
	case eInterleaveLow32:
		interleaveLow(a32, b32).store(&result);
		break;
	case eTruncated:
		truncated(aFloat).store(&result);
		break;
	case eSquareRootF32:
		squareRoot(aFloat).store(&result);
		break;
	case eSquareRootF64:
		squareRoot(as<double>(a8)).store(&result);
		break;
	case eLeastF32:
		least(aFloat, bFloat).store(&result);
		break;
	case eGreatestI16:
		greatest(a16, b16).store(&result);
		break;
	case eBitsOfMask8:
		result.u32[0] = bitsOfMask(a8 < b8);
		break;
	case eBitsOfMask32:
		result.u32[0] = bitsOfMask(a32 < b32);
		break;
	default:
		break;
	}
	return kLanesBytes;
}

template unsigned int applyLaneWord<kLanesLevel>(ELaneWord, const LaneBytes&, const LaneBytes&, LaneBytes&);
} // namespace zortexture
