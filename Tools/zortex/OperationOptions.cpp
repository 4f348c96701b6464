#include "OperationOptions.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "Refusal.h"
#include "Text.h"

namespace zortex
{
using namespace zortexture;

namespace
{
constexpr unsigned int kMaxSide = 65536;
/// As many as a native file holds.
constexpr unsigned int kMaxLevels = 256;
constexpr const char* kGroup = "Operations, in the order given";
constexpr const char* kAllLevels = "all";

/// Reads text from front to back.
class Scanner
{
public:
	explicit Scanner(const std::string& text) : m_position(text.data()), m_end(text.data() + text.size())
	{
	}

	bool isAtEnd() const
	{
		return m_position == m_end;
	}

	/// Takes one of two characters, if it comes next.
	bool take(char character, char other)
	{
		const bool isNext = !isAtEnd() && (*m_position == character || *m_position == other);
		m_position += isNext ? 1 : 0;
		return isNext;
	}

	/// Takes a whole number without a sign, up to `maximum`.
	bool takeNumber(unsigned int& number, unsigned int maximum)
	{
		const auto [next, error] = std::from_chars(m_position, m_end, number);
		m_position = next;
		return error == std::errc() && number <= maximum;
	}

	/// Takes two or three numbers with an 'x' between them. Without the third, it stays what it is.
	bool takeSides(ImageSize& size, unsigned int minimum)
	{
		if (!takeNumber(size.width, kMaxSide) || !take('x', 'X') || !takeNumber(size.height, kMaxSide))
		{
			return false;
		}
		const bool isWhole = !take('x', 'X') || (takeNumber(size.depth, kMaxSide) && size.depth >= minimum);
		return isWhole && size.width >= minimum && size.height >= minimum;
	}

	/// Takes a number with a sign.
	bool takeOffset(int& offset)
	{
		const bool isNegative = !isAtEnd() && *m_position == '-';
		unsigned int distance = 0;
		if (!take('+', '-') || !takeNumber(distance, kMaxSide))
		{
			return false;
		}
		offset = isNegative ? -static_cast<int>(distance) : static_cast<int>(distance);
		return true;
	}

private:
	const char* m_position;
	const char* m_end;
};

[[noreturn]] void refuse(const std::string& option, const std::string& text, const std::string& reason)
{
	throw UsageError(option + ": '" + text + "' is " + reason);
}

EResizeMode parseFilter(const std::string& option, const std::string& text)
{
	const std::string name = lowerCase(text);
	if (name != "nearest" && name != "linear" && name != "cubic")
	{
		refuse(option, text, "none of nearest, linear and cubic");
	}
	return name == "nearest" ? eResizeNearest : name == "linear" ? eResizeLinear : eResizeCubic;
}

Operation parseResize(const std::string& text, EResizeMode mode)
{
	ImageSize size = {};
	Scanner scanner(text);
	if (!scanner.takeSides(size, 1) || !scanner.isAtEnd())
	{
		refuse("--resize", text, "no size such as 256x128 or 64x64x8, with sides of 1 to " + std::to_string(kMaxSide));
	}
	return resizeOperation(size, mode);
}

Operation parseMips(const std::string& text, EResizeMode mode)
{
	unsigned int levels = kFullMIPChain;
	Scanner scanner(text);
	if (text != kAllLevels && (!scanner.takeNumber(levels, kMaxLevels) || !scanner.isAtEnd() || levels == 0))
	{
		refuse("--mips", text, "no number of levels from 1 to " + std::to_string(kMaxLevels));
	}
	return mipsOperation(levels, mode);
}

Operation parseNormalMap(const std::string& text)
{
	const std::size_t colon = text.find(':');
	const std::string order = colon == std::string::npos ? "xyz" : lowerCase(text.substr(colon + 1));
	const std::string number = text.substr(0, colon);
	char* end = nullptr;
	const float scale = std::strtof(number.c_str(), &end);
	if (number.empty() || *end != '\0' || !std::isfinite(scale) || scale == 0.0f || order.empty() || order.size() > 4 ||
	    order.find_first_not_of("xyzh1") != std::string::npos)
	{
		refuse("--normal-map", text,
		       "no steepness (a number other than 0) with an order such as 2:xyz, of up to four of x, y, z, h (the height) and 1");
	}
	return normalMapOperation(scale, order);
}

Operation parseFlip(const std::string& text)
{
	const std::string axis = lowerCase(text);
	if (axis != "x" && axis != "y" && axis != "z")
	{
		refuse("--flip", text, "none of the axes x, y and z");
	}
	return flipOperation(static_cast<EZORTAxis>(axis[0] - 'x'));
}

Operation parseRotate(const std::string& text)
{
	if (text != "90" && text != "180" && text != "270" && text != "-90")
	{
		refuse("--rotate", text, "none of 90, 180, 270 and -90 degrees");
	}
	return rotateOperation(text == "90" ? 1 : text == "180" ? 2 : 3);
}

Operation parseCanvas(const std::string& text)
{
	ImageSize size = {};
	ImageOffset offset = {};
	Scanner scanner(text);
	bool isWhole = scanner.takeSides(size, 1);
	if (isWhole && !scanner.isAtEnd())
	{
		isWhole = scanner.takeOffset(offset.x) && scanner.takeOffset(offset.y) && (scanner.isAtEnd() || scanner.takeOffset(offset.z));
	}
	if (!isWhole || !scanner.isAtEnd())
	{
		refuse("--canvas", text,
		       "no size with an offset such as 512x256, 512x256+16-8 or 64x64x8+0+0+2, with sides of 1 to " + std::to_string(kMaxSide));
	}
	return canvasOperation(size, offset);
}

Operation parseBorder(const std::string& text)
{
	ImageSize border = {};
	Scanner one(text);
	if (one.takeNumber(border.width, kMaxSide) && one.isAtEnd())
	{
		border.height = border.width;
		return borderOperation(border);
	}
	Scanner sides(text);
	if (!sides.takeSides(border, 0) || !sides.isAtEnd())
	{
		refuse("--border", text, "no width in pixels such as 4, 4x2 or 4x4x1, of 0 to " + std::to_string(kMaxSide));
	}
	return borderOperation(border);
}

/// Whether text is one to four letters out of `allowed`.
bool areChannels(const std::string& letters, const char* allowed)
{
	return !letters.empty() && letters.size() <= 4 && letters.find_first_not_of(allowed) == std::string::npos;
}

Operation parseSetChannel(const std::string& text)
{
	const std::size_t equals = text.find('=');
	const std::string channels = lowerCase(text.substr(0, equals));
	const std::string number = equals == std::string::npos ? "" : text.substr(equals + 1);
	char* end = nullptr;
	const float value = std::strtof(number.c_str(), &end);
	if (!areChannels(channels, "rgba") || number.empty() || *end != '\0' || !std::isfinite(value))
	{
		refuse("--set-channel", text, "no assignment such as a=1 or rgb=0.5, of channels r, g, b and a");
	}
	return setChannelOperation(channels, value);
}

Operation parseCopyChannel(const std::string& text)
{
	const std::size_t equals = text.find('=');
	const std::string destination = lowerCase(text.substr(0, equals));
	const std::string rest = equals == std::string::npos ? "" : text.substr(equals + 1);
	const std::size_t colon = rest.find(':');
	std::string source = lowerCase(rest.substr(0, colon));
	if (source.size() == 1)
	{
		source.assign(destination.size(), source[0]);
	}
	const std::string file = colon == std::string::npos ? "" : rest.substr(colon + 1);
	if (!areChannels(destination, "rgba") || !areChannels(source, "rgbali") || destination.size() != source.size() ||
	    (colon != std::string::npos && file.empty()))
	{
		refuse("--copy-channel", text,
		       "no assignment such as rgb=bgr or a=l:mask.png, from channels r, g, b, a, l (luminance) and i (intensity)");
	}
	return copyChannelOperation(destination, source, file);
}
} // namespace

OperationOptions::OperationOptions(CLI::App& command) : m_app(command)
{
	add("--resize", "WxH[xD]", "Scale to a size in pixels",
	    [this](const std::string& text) { return parseResize(text, parseFilter("--filter", m_filter)); });
	m_app.add_option("--filter", m_filter, "Filter of --resize: nearest, linear or cubic")
	    ->type_name("NAME")
	    ->capture_default_str()
	    ->group(kGroup);
	add("--canvas", "WxH[xD][+X+Y[+Z]]", "Change the frame, not the pixels; the picture moves by the offset (such as -8+4)", parseCanvas);
	add("--border", "N or XxY[xZ]", "Add a mirrored border on both sides", parseBorder);
	add("--flip", "AXIS", "Mirror along x, y or z", parseFlip);
	add("--rotate", "DEGREES", "Turn clockwise: 90, 180, 270 or -90", parseRotate);
	addFlag("--premultiply", "Multiply colour by alpha (8 bits a channel)", premultiplyOperation);
	addFlag("--bleed", "Fill transparent areas with the colour around them (8 bits a channel)", bleedOperation);
	add("--set-channel", "CHANNELS=VALUE", "Set channels of r, g, b and a to a value, where 1 is full", parseSetChannel);
	add("--copy-channel", "TO=FROM[:FILE]", "Copy channels, also from another file: rgb=bgr, a=l:mask.png", parseCopyChannel);
	add("--normal-map", "SCALE[:ORDER]", "Turn heights (r) into normals; ORDER of x, y, z, h and 1, such as xyz", parseNormalMap);
	add("--mips", "[N]", "Make MIP levels: N of them, or all down to one pixel",
	    [this](const std::string& text) { return parseMips(text, parseFilter("--mip-filter", m_mipFilter)); });
	m_app.add_option("--mip-filter", m_mipFilter, "Filter of --mips: nearest, linear or cubic")
	    ->type_name("NAME")
	    ->capture_default_str()
	    ->group(kGroup);
	addFlag("--colour-mips", "Tint each MIP level below the top, so that a viewer shows which one it samples", colourMipsOperation);
}

void OperationOptions::add(const std::string& name, const std::string& typeName, const std::string& help, Maker make)
{
	m_entries.push_back({nullptr, {}, std::move(make)});
	Entry& entry = m_entries.back();
	entry.option = m_app.add_option(name, entry.values, help)
	                   ->type_name(typeName)
	                   ->expected(1)
	                   ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
	                   ->allow_extra_args(false)
	                   ->group(kGroup);
}

void OperationOptions::addFlag(const std::string& name, const std::string& help, const std::function<Operation()>& make)
{
	m_entries.push_back({m_app.add_flag(name, help)->group(kGroup),
	                     {},
	                     [make](const std::string&)
	                     {
		                     return make();
	                     }});
}

std::vector<Operation> OperationOptions::operations() const
{
	parseFilter("--filter", m_filter);
	parseFilter("--mip-filter", m_mipFilter);
	std::vector<Operation> operations;
	std::vector<std::size_t> used(m_entries.size());
	for (const CLI::Option* option : m_app.parse_order())
	{
		for (std::size_t i = 0; i < m_entries.size(); ++i)
		{
			const Entry& entry = m_entries[i];
			if (entry.option == option)
			{
				operations.push_back(entry.make(entry.values.empty() ? std::string() : entry.values.at(used[i]++)));
			}
		}
	}
	return operations;
}

void OperationOptions::completeArguments(std::vector<std::string>& arguments)
{
	for (std::size_t i = 0; i < arguments.size(); ++i)
	{
		const bool hasNumber =
		    i + 1 < arguments.size() && !arguments[i + 1].empty() && arguments[i + 1].find_first_not_of("0123456789") == std::string::npos;
		if (arguments[i] == "--mips" && !hasNumber)
		{
			arguments[i] += std::string("=") + kAllLevels;
		}
	}
}
} // namespace zortex
