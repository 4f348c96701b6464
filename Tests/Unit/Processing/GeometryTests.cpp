#include <climits>

#include "ImagingTextures.h"

using namespace imaging;

namespace
{
/// Images of a shape as letters, before and after an operation.
struct Case
{
	Shape before;
	const char* lettersBefore;
	unsigned int arguments[3];
	int offsets[3];
	const char* lettersAfter;
};

template<typename Operation>
void checkCases(const std::vector<Case>& cases, Operation&& operation)
{
	for (const Layout& layout : kLayouts)
	{
		for (const Case& c : cases)
		{
			CZORTexture texture = makeTexture(layout, c.before);
			setLetters(texture, c.lettersBefore);
			EXPECT_TRUE(operation(texture, c));
			EXPECT_EQ(letters(texture), c.lettersAfter) << c.lettersBefore << layout.channelType;
			EXPECT_EQ(texture.getNumMIPLevels(), 1u);
		}
	}
}

TEST(Geometry, KnownAnswersOfFlip)
{
	const Shape shape = {3, 2, 2};
	checkCases({{shape, "abcdefghijkl", {eAxis_X}, {}, "cbafedihglkj"},
	            {shape, "abcdefghijkl", {eAxis_Y}, {}, "defabcjklghi"},
	            {shape, "abcdefghijkl", {eAxis_Z}, {}, "ghijklabcdef"},
	            {shape, "abcdefghijkl", {3}, {}, "abcdefghijkl"}},
	           [](CZORTexture& texture, const Case& c) { return Flip(texture, EZORTAxis(c.arguments[0])); });
}

TEST(Geometry, KnownAnswersOfRotate90)
{
	checkCases({{{2, 1, 1}, "ab", {true}, {}, "ab"},
	            {{3, 2, 2}, "abcdefghijkl", {true}, {}, "daebfcjgkhli"},
	            {{3, 2, 2}, "abcdefghijkl", {false}, {}, "cfbeadilhkgj"}},
	           [](CZORTexture& texture, const Case& c)
	           {
		           const bool result = Rotate90(texture, eAxis_Z, c.arguments[0] != 0);
		           return result && texture.getWidth() == c.before.height && texture.getHeight() == c.before.width;
	           });
}

TEST(Geometry, Rotate90TakesEveryPixelOfSeveralSquares)
{
	constexpr unsigned int kWidth = 37;
	constexpr unsigned int kHeight = 50;
	std::vector<Pixel<float>> source(kWidth * kHeight * 2);
	for (std::size_t i = 0; i < source.size(); ++i)
	{
		source[i].r = static_cast<float>(i);
	}
	for (const bool isForward : {false, true})
	{
		std::vector<Pixel<float>> turned(source.size());
		ASSERT_TRUE(Rotate90(source.data(), turned.data(), kWidth, kHeight, 2, eAxis_Z, isForward));
		for (unsigned int i = 0; i < source.size(); ++i)
		{
			const unsigned int x = i % kWidth;
			const unsigned int y = i / kWidth % kHeight;
			const unsigned int row = i / (kWidth * kHeight) * kWidth + (isForward ? x : kWidth - 1 - x);
			ASSERT_EQ(turned[row * kHeight + (isForward ? kHeight - 1 - y : y)].r, source[i].r) << i;
		}
	}
}

TEST(Geometry, KnownAnswersOfResizeCanvas)
{
	const Shape shape = {3, 2, 1, 2};
	checkCases({{shape, "abcdef", {4, 3, 1}, {0, 0, 0}, "abc.def....."},
	            {shape, "abcdef", {4, 3, 1}, {1, 1, 0}, ".....abc.def"},
	            {shape, "abcdef", {2, 2, 1}, {-1, 0, 0}, "bcef"},
	            {shape, "abcdef", {3, 2, 1}, {0, -1, 0}, "def..."},
	            {shape, "abcdef", {3, 2, 2}, {0, 0, 1}, "......abcdef"},
	            {shape, "abcdef", {1, 1, 1}, {-2, -1, 0}, "f"},
	            {shape, "abcdef", {3, 2, 1}, {3, 0, 0}, "......"},
	            {shape, "abcdef", {2, 1, 1}, {INT_MAX, INT_MIN, INT_MIN}, ".."}},
	           [](CZORTexture& t, const Case& c)
	           { return ResizeCanvas(t, c.arguments[0], c.arguments[1], c.arguments[2], c.offsets[0], c.offsets[1], c.offsets[2]); });
}

TEST(Geometry, KnownAnswersOfBorder)
{
	checkCases({{{4, 1, 1, 3}, "abcd", {1, 0, 0}, {}, "aabcdd"},
	            {{1, 4, 1}, "abcd", {0, 1, 0}, {}, "aabcdd"},
	            {{2, 2, 1}, "abcd", {1, 1, 0}, {}, "aabbaabbccddccdd"},
	            // Wider than the image: the mirror goes on in the other border.
	            {{2, 1, 1}, "ab", {3, 0, 0}, {}, "bbaabbaa"},
	            {{1, 2, 1}, "ab", {0, 3, 0}, {}, "bbaabbaa"},
	            // In depth the front ends a slice short, and empty slices land on the image's last.
	            {{1, 1, 3}, "abc", {0, 0, 1}, {}, ".abc."},
	            {{1, 1, 3}, "abc", {0, 0, 2}, {}, ".ba.c.."},
	            {{1, 1, 2}, "ab", {0, 0, 3}, {}, "....b..."},
	            {{2, 1, 2}, "abcd", {1, 0, 1}, {}, "....aabbccdd...."}},
	           [](CZORTexture& t, const Case& c) { return Border(t, c.arguments[0], c.arguments[1], c.arguments[2]); });
}

TEST(Geometry, FlipsAndTurnsRestoreEveryImage)
{
	CZORTexture texture = makeTexture(kInt, {7, 4, 3, 3, 2, 6});
	fillLetters(texture);
	texture.setBorder(1, 2, 3);
	const std::string before = snapshot(texture);
	const std::string lastImage = letters(texture, 1, 1, 5); // 3 x 2 x 1
	const auto repeat = [&](int times, auto operation)
	{
		for (int i = 0; i < times; ++i)
		{
			EXPECT_NE(i > 0, snapshot(texture) == before);
			EXPECT_TRUE(operation(texture));
		}
		EXPECT_EQ(snapshot(texture), before);
	};
	repeat(2, [](CZORTexture& t) { return Flip(t, eAxis_X); });
	repeat(2, [](CZORTexture& t) { return Flip(t, eAxis_Y); });
	repeat(2, [](CZORTexture& t) { return Flip(t, eAxis_Z); });
	repeat(4, [](CZORTexture& t) { return Rotate90(t, eAxis_Z, true); });
	repeat(1, [](CZORTexture& t) { return Rotate90(t, eAxis_Z, true) && Rotate90(t, eAxis_Z, false); });
	EXPECT_TRUE(Flip(texture, eAxis_X));
	EXPECT_NE(letters(texture, 1, 1, 5), lastImage);
}

TEST(Geometry, TurnsAboutOtherAxesClear)
{
	const unsigned int sizes[4][3] = {{3, 2, 5}, {3, 3, 2}, {}, {3, 5, 2}};
	for (const unsigned int axis : {0u, 1u, 3u})
	{
		CZORTexture texture = makeTexture(kByte, {3, 5, 2, 2, 2, 1});
		fillLetters(texture);
		EXPECT_EQ(Rotate90(texture, EZORTAxis(axis), true), axis < 3);
		EXPECT_EQ(texture.getWidth(), sizes[axis][0]);
		EXPECT_EQ(texture.getHeight(), sizes[axis][1]);
		EXPECT_EQ(texture.getDepth(), sizes[axis][2]);
		EXPECT_EQ(texture.getNumMIPLevels(), 2u);
		EXPECT_EQ(letters(texture), std::string(pixelsIn(texture, 0), '.'));
	}
	// The worker copies backwards; in the square that a tall image becomes, two of its pixels have no place.
	CZORTexture tall = makeTexture(kByte, {2, 3, 1});
	CZORTexture square = makeTexture(kByte, {2, 2, 1});
	setLetters(tall, "uvwxyz");
	setLetters(square, "abcd");
	auto* source = pixelsOf<unsigned char>(tall, 0, 0, 0);
	EXPECT_TRUE(Rotate90(source, pixelsOf<unsigned char>(square, 0, 0, 0), 2, 3, 1, eAxis_Y, true));
	EXPECT_EQ(letters(tall), "dawbyc");
}

TEST(Geometry, CanvasCropOfABorderIsTheImage)
{
	for (const Layout& layout : kLayouts)
	{
		CZORTexture texture = makeTexture(layout, {5, 3, 1, 3, 2, 6});
		fillLetters(texture);
		const CZORTexture before = texture;
		EXPECT_TRUE(Border(texture, 0, 0, 0));
		EXPECT_TRUE(ResizeCanvas(texture, 5, 3, 1, 0, 0, 0));
		EXPECT_EQ(snapshot(texture), snapshot(before));

		unsigned int border[3];
		EXPECT_TRUE(Border(texture, 20, 0x80000001u, 0)); // twice y wraps to 2
		texture.getBorder(border[0], border[1], border[2]);
		EXPECT_EQ(border[0], 20u);
		EXPECT_EQ(border[1], 0x80000001u);
		EXPECT_TRUE(ResizeCanvas(texture, 5, 3, 1, -20, -1, 0));
		texture.getBorder(border[0], border[1], border[2]);
		EXPECT_EQ(border[0], 2u); // 5 * 20 / 45
		EXPECT_EQ(letters(texture), letters(before));
		EXPECT_EQ(letters(texture, 0, 1, 5), letters(before, 0, 1, 5));
	}
}
} // namespace
